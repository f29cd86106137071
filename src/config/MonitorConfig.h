#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <set>

#include "config/ProcessLimit.h"

namespace zelvar {

// Everything the user can set. The defaults apply both to a new record and to each key that a
// configuration file leaves out.
struct MonitorConfig {
    double checkIntervalSeconds = 5.0;  // no floor here; the monitoring cycle applies one
    bool enableSoundAlerts = true;
    bool enableNotifications = true;
    bool launchAtLogin = false;    // stored only; nothing is registered for it
    qint64 swapThresholdMB = 100;  // stored only; kept so that the file round-trips
    QList<ProcessLimit> limits;
    std::set<QString> whitelistedProcesses;

    bool operator==(const MonitorConfig&) const = default;
};

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::MonitorConfig)
