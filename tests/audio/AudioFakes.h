#pragma once

#include <QHash>

#include "platform/AudioDeviceState.h"
#include "platform/Workspace.h"

namespace zelvar::test {

// What the test sets between refreshes, which the monitor's pool reads after a queued hand-off.
// Output and input clients start as a sound server with no streams; nullopt is CoreAudio's way.
class FakeAudioDevices final : public AudioDeviceState {
public:
    bool isDeviceRunning(Device device) override {
        return device == Device::Output ? output : input;
    }
    std::optional<QStringList> clientApplications(Device device) override {
        return device == Device::Output ? outputClients : inputClients;
    }

    bool output = false;
    bool input = false;
    std::optional<QStringList> outputClients = QStringList();
    std::optional<QStringList> inputClients = QStringList();
};

// A desktop whose applications and names the test sets; activations are not used here.
class FakeWorkspace final : public Workspace {
public:
    std::optional<RunningApplication> frontmostApplication() override { return std::nullopt; }
    QList<RunningApplication> runningApplications() override { return apps; }
    void subscribeActivations(std::function<void(const RunningApplication&)>) override {}
    void unsubscribeActivations() override {}
    QString applicationNameForIdentifier(const QString& identifier) override {
        return names.value(identifier);
    }

    QList<RunningApplication> apps;
    QHash<QString, QString> names;
};

}  // namespace zelvar::test
