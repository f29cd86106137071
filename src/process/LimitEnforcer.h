#pragma once

#include <QList>
#include <QObject>

#include "alerts/AlertRecord.h"
#include "config/LimitMatcher.h"
#include "process/ProcessController.h"

namespace zelvar {

class AlertManager;
class Clock;
class ConfigManager;
class ProcessSignaller;
struct ProcessInfo;
struct ProcessLimit;

// Holds each sample against the configured memory limits. checkLimits() runs on the monitor's
// worker thread and does everything there that may block: it kills (when auto-kill is on) and
// alerts. The recording of each violation, which writes the configuration, is sent back to
// the thread this object lives on, the main thread, in the order the violations were found.
class LimitEnforcer final : public QObject {
    Q_OBJECT

public:
    LimitEnforcer(ConfigManager& config, AlertManager& alertManager, ProcessSignaller& signaller,
                  const Clock& clock, QObject* parent = nullptr);

    // Compares each process that a limit covers, and the whitelist does not, with that limit:
    // strictly greater is a violation. Per violation: the kill when auto-kill is on (SIGTERM,
    // SIGKILL only if SIGTERM could not be delivered, to the sampled process alone), the alert
    // (held back by its cooldown), then a queued recording. Every violation is recorded, whatever
    // the cooldown let through.
    void checkLimits(const QList<ProcessInfo>& processes);

signals:
    // On the main thread, once the limit is marked as triggered.
    void violationRecorded(const zelvar::AlertRecord& record);

private:
    // The kill (when auto-kill is on), the alert and the queued recording of one violation.
    void enforce(const ProcessLimit& limit, const ProcessInfo& process);
    void recordViolation(const ProcessLimit& limit, const ProcessInfo& process, bool killed);

    ConfigManager& m_config;
    AlertManager& m_alertManager;
    ProcessController m_processController;
    const Clock& m_clock;
    LimitMatcher m_matcher;  // used by checkLimits() alone, on the worker thread
};

}  // namespace zelvar
