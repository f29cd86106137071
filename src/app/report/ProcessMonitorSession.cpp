#include "app/report/ProcessMonitorSession.h"

#include <QEventLoop>

namespace zelvar {
namespace {

ConfigManager& lookOnly(ConfigManager& config, std::optional<double> intervalSeconds) {
    MonitorConfig changed = config.config();
    changed.limits.clear();
    if (intervalSeconds) {
        changed.checkIntervalSeconds = *intervalSeconds;
    }
    config.setConfig(changed);
    return config;
}

}  // namespace

ProcessMonitorSession::ProcessMonitorSession(SystemServices& services,
                                             std::optional<double> intervalSeconds)
    : m_config(ConfigManager::defaultFile(*services.paths), services.clock),
      m_notifications(m_silentCenter),
      m_sounds(m_silentOutput, services.scheduler, services.paths->dataDirectory(kZelvar2Folder)),
      m_alerts(m_notifications, m_sounds, services.clock, services.scheduler),
      m_provider(*services.processTable, services.commandRunner, *services.serviceJobs,
                 services.clock, currentSystemProfile().originNames),
      m_diskMonitor(*services.volumes, services.clock),
      m_diskIOReader(DiskIOReader::defaultFile(*services.paths)),
      m_monitor(lookOnly(m_config, intervalSeconds), m_alerts, m_provider,
                services.processSignaller, m_diskMonitor, m_diskIOReader, services.clock,
                services.scheduler) {}

void ProcessMonitorSession::run(int cycles) {
    QEventLoop loop;
    int finished = 0;
    QObject::connect(&m_monitor, &ProcessMonitor::cycleFinished, &loop, [&] {
        if (++finished >= cycles) {
            m_monitor.stopMonitoring();
            loop.quit();
        }
    });
    m_monitor.startMonitoring();
    loop.exec();
}

}  // namespace zelvar
