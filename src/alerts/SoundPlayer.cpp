#include "alerts/SoundPlayer.h"

#include <QDir>
#include <QFileInfo>

#include "common/Log.h"
#include "platform/Scheduler.h"
#include "platform/SoundOutput.h"

namespace zelvar {

SoundPlayer::SoundPlayer(SoundOutput& output, Scheduler& scheduler, QString soundsDirectory,
                         QObject* parent)
    : QObject(parent),
      m_output(output),
      m_scheduler(scheduler),
      m_soundsDirectory(std::move(soundsDirectory)) {}

void SoundPlayer::playAlertSound() {
    if (!m_output.playSystemSound(QString::fromLatin1(kAlertSoundName))) {
        playSystemBeep();
    }
}

void SoundPlayer::playSystemBeep() {
    m_output.beep();
}

void SoundPlayer::playTestSound() {
    for (const double delay : {0.0, 0.2, 0.4}) {
        m_scheduler.callAfter(delay, this, [this] { playSystemBeep(); });
    }
}

void SoundPlayer::playCustomSound(const QString& name) {
    const QString path = QDir(m_soundsDirectory).filePath(name);
    if (name.isEmpty() || !QFileInfo(path).isFile()) {
        logLine(QStringLiteral("Sound file not found: ") + name);
        playSystemBeep();
        return;
    }
    QString error;
    if (!m_output.playFile(path, error)) {
        logLine(QStringLiteral("Error playing custom sound: ") + error);
        playSystemBeep();
    }
}

}  // namespace zelvar
