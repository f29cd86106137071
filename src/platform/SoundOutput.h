#pragma once

#include <QString>

namespace zelvar {

// The desktop's sounds. Each call returns quickly; playing goes on in the background.
class SoundOutput {
public:
    virtual ~SoundOutput() = default;

    // Plays the system sound of that name; false when the system has no such sound.
    virtual bool playSystemSound(const QString& name) = 0;
    // The system's alert beep.
    virtual void beep() = 0;
    // Plays an audio file. Returns false with `error` set when it can't be played.
    virtual bool playFile(const QString& path, QString& error) = 0;
};

}  // namespace zelvar
