#include "platform/macos/CoreAudioDeviceState.h"

#include <CoreAudio/CoreAudio.h>

namespace zelvar {

bool CoreAudioDeviceState::isDeviceRunning(Device device) {
    AudioObjectPropertyAddress address{device == Device::Output
                                           ? kAudioHardwarePropertyDefaultOutputDevice
                                           : kAudioHardwarePropertyDefaultInputDevice,
                                       kAudioObjectPropertyScopeGlobal, 0};
    AudioDeviceID deviceID = 0;
    UInt32 size = sizeof(deviceID);
    if (AudioObjectGetPropertyData(kAudioObjectSystemObject, &address, 0, nullptr, &size,
                                   &deviceID) != noErr ||
        deviceID == 0) {
        return false;
    }
    address.mSelector = kAudioDevicePropertyDeviceIsRunningSomewhere;
    UInt32 running = 0;
    size = sizeof(running);
    return AudioObjectGetPropertyData(deviceID, &address, 0, nullptr, &size, &running) == noErr &&
           running != 0;
}

}  // namespace zelvar
