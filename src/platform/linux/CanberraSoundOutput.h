#pragma once

#include <mutex>

#include "platform/SoundOutput.h"

struct ca_context;

namespace zelvar {

// Sounds through libcanberra and the desktop's freedesktop sound theme. Names of the other
// platform's system sounds are played as the theme's nearest event ("Glass" is "complete").
// The beep is the theme's "bell", or the terminal bell when no sound can be played at all.
// Sounds go through the desktop's sound server (the "pulse" driver, which PipeWire serves too).
// The libcanberra context opens on first use, so a process that never plays costs nothing.
class CanberraSoundOutput final : public SoundOutput {
public:
    CanberraSoundOutput() = default;
    ~CanberraSoundOutput() override;
    CanberraSoundOutput(const CanberraSoundOutput&) = delete;
    CanberraSoundOutput& operator=(const CanberraSoundOutput&) = delete;

    bool playSystemSound(const QString& name) override;
    void beep() override;
    bool playFile(const QString& path, QString& error) override;

    // The theme's event id for a system sound name.
    static QString eventId(const QString& name);

private:
    // 0 on success, otherwise a libcanberra error code. Caller holds m_mutex.
    int openLocked();
    int playEventLocked(const QString& eventId);

    std::mutex m_mutex;
    ca_context* m_context = nullptr;
    int m_openError = 0;
};

}  // namespace zelvar
