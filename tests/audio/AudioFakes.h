#pragma once

#include <QHash>
#include <atomic>

#include "platform/AudioDeviceState.h"
#include "platform/Workspace.h"
#include "support/Guarded.h"

namespace zelvar::test {

// Device states set by the test, read from the monitor's threads.
class FakeAudioDevices final : public AudioDeviceState {
public:
    // Like a sound server with no streams; set a client list to nullopt for CoreAudio's way.
    FakeAudioDevices() {
        *outputClients.lock() = QStringList();
        *inputClients.lock() = QStringList();
    }
    bool isDeviceRunning(Device device) override {
        return device == Device::Output ? output.load() : input.load();
    }
    std::optional<QStringList> clientApplications(Device device) override {
        return device == Device::Output ? *outputClients.lock() : *inputClients.lock();
    }

    std::atomic<bool> output{false};
    std::atomic<bool> input{false};
    Guarded<std::optional<QStringList>> outputClients;
    Guarded<std::optional<QStringList>> inputClients;
};

// A desktop whose applications and names the test sets; activations are not used here.
class FakeWorkspace final : public Workspace {
public:
    std::optional<RunningApplication> frontmostApplication() override {
        for (const RunningApplication& app : *apps.lock()) {
            if (app.isActive) {
                return app;
            }
        }
        return std::nullopt;
    }
    QList<RunningApplication> runningApplications() override { return *apps.lock(); }
    void subscribeActivations(std::function<void(const RunningApplication&)>) override {}
    void unsubscribeActivations() override {}
    QString applicationNameForIdentifier(const QString& identifier) override {
        return names.lock()->value(identifier);
    }

    Guarded<QList<RunningApplication>> apps;
    Guarded<QHash<QString, QString>> names;
};

}  // namespace zelvar::test
