#pragma once

#include <QTemporaryDir>

#include "platform/Ports.h"
#include "platform/SystemProfile.h"
#include "support/FakeClock.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeDesktop.h"
#include "support/FakeNetworkSources.h"
#include "support/FakePaths.h"
#include "support/FakeProcessSignaller.h"
#include "support/FakeProcessTable.h"
#include "support/FakeServiceJobs.h"
#include "support/FakeVolumeSource.h"

namespace zelvar::test {

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
