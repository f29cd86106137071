#pragma once

#include "platform/AudioDeviceState.h"

namespace zelvar {

// No sound service: no device ever runs, and nobody plays.
class NullAudioDeviceState final : public AudioDeviceState {
public:
    bool isDeviceRunning(Device) override { return false; }
    std::optional<QStringList> clientApplications(Device) override { return QStringList(); }
};

}  // namespace zelvar
