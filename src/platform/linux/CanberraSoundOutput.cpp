#include "platform/linux/CanberraSoundOutput.h"

#include <canberra.h>
#include <unistd.h>

#include <QHash>

namespace zelvar {

CanberraSoundOutput::~CanberraSoundOutput() {
    if (m_context) {
        ca_context_destroy(m_context);
    }
}

QString CanberraSoundOutput::eventId(const QString& name) {
    static const QHash<QString, QString> kEvents{
        {QStringLiteral("Glass"), QStringLiteral("complete")},
        {QStringLiteral("Ping"), QStringLiteral("message-new-instant")},
        {QStringLiteral("Basso"), QStringLiteral("dialog-error")},
        {QStringLiteral("Funk"), QStringLiteral("dialog-warning")},
    };
    return kEvents.value(name, name);
}

int CanberraSoundOutput::openLocked() {
    if (m_context || m_openError != 0) {
        return m_openError;
    }
    ca_context* context = nullptr;
    int result = ca_context_create(&context);
    if (result == CA_SUCCESS) {
        ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Zelvar+",
                                CA_PROP_APPLICATION_ID, "com.orlen.zelvar2", nullptr);
        // The sound server of today's desktops (PulseAudio, or PipeWire speaking its protocol).
        // Raw ALSA is left out: without a card it writes its errors to standard error on every
        // sound, and the bell fallback covers that case.
        ca_context_set_driver(context, "pulse");
        result = ca_context_open(context);
    }
    if (result != CA_SUCCESS) {
        if (context) {
            ca_context_destroy(context);
        }
        m_openError = result;
        return result;
    }
    m_context = context;
    return CA_SUCCESS;
}

int CanberraSoundOutput::playEventLocked(const QString& eventId) {
    if (const int opened = openLocked(); opened != CA_SUCCESS) {
        return opened;
    }
    return ca_context_play(m_context, 0, CA_PROP_EVENT_ID, eventId.toUtf8().constData(), nullptr);
}

bool CanberraSoundOutput::playSystemSound(const QString& name) {
    std::lock_guard lock(m_mutex);
    return playEventLocked(eventId(name)) == CA_SUCCESS;
}

void CanberraSoundOutput::beep() {
    std::lock_guard lock(m_mutex);
    if (playEventLocked(QStringLiteral("bell")) != CA_SUCCESS) {
        // No sound server: the terminal bell is the last resort.
        [[maybe_unused]] const auto written = ::write(STDERR_FILENO, "\a", 1);
    }
}

bool CanberraSoundOutput::playFile(const QString& path, QString& error) {
    std::lock_guard lock(m_mutex);
    int result = openLocked();
    if (result == CA_SUCCESS) {
        result = ca_context_play(m_context, 0, CA_PROP_MEDIA_FILENAME,
                                 path.toLocal8Bit().constData(), nullptr);
    }
    if (result != CA_SUCCESS) {
        error = QString::fromUtf8(ca_strerror(result));
        return false;
    }
    return true;
}

}  // namespace zelvar
