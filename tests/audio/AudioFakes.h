#pragma once

#include "platform/AudioDeviceState.h"

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

}  // namespace zelvar::test
