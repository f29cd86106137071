#include "process/LimitEnforcer.h"

#include "alerts/AlertManager.h"
#include "common/Log.h"
#include "config/ConfigManager.h"
#include "platform/Clock.h"
#include "process/ProcessInfo.h"

namespace zelvar {

LimitEnforcer::LimitEnforcer(ConfigManager& config, AlertManager& alertManager,
                             ProcessSignaller& signaller, const Clock& clock, QObject* parent)
    : QObject(parent),
      m_config(config),
      m_alertManager(alertManager),
      m_processController(signaller, clock),
      m_clock(clock) {}

void LimitEnforcer::checkLimits(const QList<ProcessInfo>& processes) {
    const MonitorConfig config = m_config.snapshot();
    if (config.limits.isEmpty()) {
        return;
    }
    // The violations of each limit, in snapshot order; the limits are then taken in list
    // order, the order the rules give, while each process's name is matched only once.
    m_matcher.setRules(config.limits, config.whitelistedProcesses);
    std::vector<QList<qsizetype>> violationsByLimit(config.limits.size());
    for (qsizetype p = 0; p < processes.size(); ++p) {
        const LimitMatcher::Match& match = m_matcher.match(processes[p].name);
        if (match.whitelisted) {
            continue;
        }
        for (const qsizetype l : match.limitIndices) {
            // Per process and strictly greater: a process exactly at its limit is within it.
            if (config.limits[l].limitMB < processes[p].memoryMB) {
                violationsByLimit[l].append(p);
            }
        }
    }
    m_matcher.endCycle();

    for (qsizetype l = 0; l < config.limits.size(); ++l) {
        for (const qsizetype p : violationsByLimit[l]) {
            enforce(config.limits[l], processes[p]);
        }
    }
}

void LimitEnforcer::enforce(const ProcessLimit& limit, const ProcessInfo& process) {
    const bool killed = limit.autoKillEnabled && m_processController.killProcess(
                                                     {process.id, process.startTime, process.name});
    m_alertManager.handleLimitViolation(process.name, process.id, process.memoryMB, limit.limitMB,
                                        limit.autoKillEnabled);
    QMetaObject::invokeMethod(
        this, [this, limit, process, killed] { recordViolation(limit, process, killed); },
        Qt::QueuedConnection);
    if (killed) {
        logLine(
            QStringLiteral("Auto-killed process: %1 (PID: %2)").arg(process.name).arg(process.id));
    } else if (limit.autoKillEnabled) {
        logLine(QStringLiteral("Failed to kill process: %1 (PID: %2)")
                    .arg(process.name)
                    .arg(process.id));
    }
}

void LimitEnforcer::recordViolation(const ProcessLimit& limit, const ProcessInfo& process,
                                    bool killed) {
    m_config.markLimitTriggered(limit.id);
    AlertRecord record;
    record.processName = process.name;
    record.pid = process.id;
    record.memoryMB = process.memoryMB;
    record.limitMB = limit.limitMB;
    record.timestamp = m_clock.now();
    record.wasAutoKilled = killed;
    emit violationRecorded(record);
}

}  // namespace zelvar
