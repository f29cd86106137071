#pragma once

#include <optional>

#include "alerts/AlertManager.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "app/SystemServices.h"
#include "config/ConfigManager.h"
#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "platform/null/NullNotificationCenter.h"
#include "platform/null/NullSoundOutput.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"

namespace zelvar {

// The real process monitor, composed as the app composes it, for reports that run it headless
// for a few cycles. Reads the user's configuration but never writes it back, and only looks:
// it enforces no limit, so it neither alerts nor kills.
class ProcessMonitorSession {
public:
    // `intervalSeconds` replaces the configured interval in memory only.
    explicit ProcessMonitorSession(SystemServices& services,
                                   std::optional<double> intervalSeconds = std::nullopt);

    // Runs the monitor until `cycles` cycles have reached the main thread, then stops it.
    void run(int cycles);

    const ProcessMonitor& monitor() const { return m_monitor; }
    const DiskIOReader& diskIOReader() const { return m_diskIOReader; }

private:
    ConfigManager m_config;
    NullNotificationCenter m_silentCenter;
    NullSoundOutput m_silentOutput;
    NotificationHelper m_notifications;
    SoundPlayer m_sounds;
    AlertManager m_alerts;
    ProcessInfoProvider m_provider;
    DiskMonitor m_diskMonitor;
    DiskIOReader m_diskIOReader;
    ProcessMonitor m_monitor;
};

}  // namespace zelvar
