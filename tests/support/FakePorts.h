#pragma once

#include <QTemporaryDir>

#include "platform/Paths.h"
#include "platform/Ports.h"
#include "platform/SystemProfile.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/FakeNetworkSources.h"
#include "support/FakeSystem.h"

namespace zelvar::test {

// Every location under one root, a folder per kind: <root>/data/<App>, <root>/state/<App>, ...,
// so that a file put in the wrong kind of folder is found missing.
class FakePaths final : public Paths {
public:
    explicit FakePaths(QString root) : m_root(std::move(root)) {}

    QString homeDirectory() const override { return m_root; }
    QString dataDirectory(const QString& app) const override { return in("data", app); }
    QString stateDirectory(const QString& app) const override { return in("state", app); }
    QString configDirectory(const QString& app) const override { return in("config", app); }
    QString runtimeDirectory(const QString& app) const override { return in("runtime", app); }

private:
    QString in(const char* kind, const QString& app) const {
        return QStringLiteral("%1/%2/%3").arg(m_root, QLatin1String(kind), app);
    }

    QString m_root;
};

// A fake of every port under a temporary home, for tests that compose whole monitors. The
// process table holds init alone, and "/" has a capacity.
struct FakePorts {
    FakePorts() {
        processTable.setProcesses({{1, 0, "init", 4 << 20, 0}});
        volumes.setCapacity("/", qint64(100) << 30, qint64(40) << 30);
    }

    Ports ports() {
        return {clock,     clock,         commands,    processTable,   paths,
                volumes,   interfaces,    networkName, processNetwork, serviceJobs,
                signaller, notifications, sounds,      activation,     profile};
    }

    QTemporaryDir home;
    FakePaths paths{home.path()};
    SystemProfile profile = linuxSystemProfile();
    FakeClock clock;
    FakeCommandRunner commands;
    FakeProcessTable processTable;
    FakeVolumeSource volumes;
    FakeInterfaceCounters interfaces;
    FakeNetworkNameSource networkName;
    FakeProcessNetworkSource processNetwork;
    FakeServiceJobs serviceJobs;
    FakeProcessSignaller signaller;
    FakeNotificationCenter notifications;
    FakeSoundOutput sounds;
    FakeActivationPolicy activation;
};

}  // namespace zelvar::test
