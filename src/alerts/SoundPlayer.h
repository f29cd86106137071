#pragma once

#include <QObject>
#include <QString>

namespace zelvar {

class Scheduler;
class SoundOutput;

// The alert sounds. Every failure falls back to the system beep; nothing reaches the caller.
// Lives on the main thread; playAlertSound may be called from any thread.
class SoundPlayer final : public QObject {
    Q_OBJECT

public:
    static constexpr const char* kAlertSoundName = "Glass";

    // Custom sounds are files in `soundsDirectory`, the application's data directory.
    SoundPlayer(SoundOutput& output, Scheduler& scheduler, QString soundsDirectory,
                QObject* parent = nullptr);

    // The "Glass" system sound, or the beep when the system has no such sound.
    void playAlertSound();
    void playSystemBeep();
    // Three beeps, 0.2 seconds apart, on the main thread.
    void playTestSound();
    // A sound file by its full name, from the sounds directory.
    void playCustomSound(const QString& name);

private:
    SoundOutput& m_output;
    Scheduler& m_scheduler;
    QString m_soundsDirectory;
};

}  // namespace zelvar
