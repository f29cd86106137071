#pragma once

#include "platform/AudioDeviceState.h"

namespace zelvar {

// The default devices' "running somewhere" flag from CoreAudio. CoreAudio keeps no list of
// its clients that an application may read, so clientApplications() has no value.
class CoreAudioDeviceState final : public AudioDeviceState {
public:
    bool isDeviceRunning(Device device) override;
    std::optional<QStringList> clientApplications(Device) override { return std::nullopt; }
};

}  // namespace zelvar
