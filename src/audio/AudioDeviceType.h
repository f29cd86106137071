#pragma once

#include <QList>
#include <QString>

namespace zelvar {

// The two default devices whose use is watched.
enum class AudioDeviceType { Output, Input };

// "Speaker" or "Microphone".
inline QString rawValue(AudioDeviceType type) {
    return type == AudioDeviceType::Output ? QStringLiteral("Speaker")
                                           : QStringLiteral("Microphone");
}

inline QList<AudioDeviceType> allAudioDeviceTypes() {
    return {AudioDeviceType::Output, AudioDeviceType::Input};
}

}  // namespace zelvar
