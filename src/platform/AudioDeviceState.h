#pragma once

#include <QStringList>
#include <optional>

namespace zelvar {

// The system's default audio devices as its sound service sees them. Linux asks PulseAudio
// (or PipeWire's pulse server) through pactl; macOS asks CoreAudio. Every call may block for
// a short command or property read: call them off the main thread. A failing read answers
// false or an empty list.
class AudioDeviceState {
public:
    enum class Device { Output, Input };

    virtual ~AudioDeviceState() = default;

    // Whether the default device of this kind is running for some client now.
    virtual bool isDeviceRunning(Device device) = 0;
    // The applications that the sound server lists as playing to (Output) or recording from
    // (Input) a device, newest stream first, by their own name (or their binary's when they
    // give none). No value where the service keeps no such list (CoreAudio: its clients
    // are found with lsof on the audio daemon instead).
    virtual std::optional<QStringList> clientApplications(Device device) = 0;
};

}  // namespace zelvar
