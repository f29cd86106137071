#pragma once

#include <QString>

namespace zelvar {

// Where this system's files live. The configuration sits in the home directory on every
// system; the data, log and power folders follow each system's conventions (Application
// Support and Logs on macOS, XDG data and state directories on Linux).
class Paths {
public:
    virtual ~Paths() = default;

    virtual QString homeDirectory() const = 0;
    // Files shared with the daemon: daily usage, disk events.
    virtual QString appDataDirectory() const = 0;
    // The daemon's logs: disk I/O, its own output, events.
    virtual QString logsDirectory() const = 0;
    // The power history's samples and cache.
    virtual QString powerDataDirectory() const = 0;

    QString configFile() const {
        return homeDirectory() + QStringLiteral("/.zel_var_2_config.json");
    }
    QString diskIOLogFile() const { return logsDirectory() + QStringLiteral("/diskio.jsonl"); }
    QString usageByDateFile() const {
        return appDataDirectory() + QStringLiteral("/usage-by-date.json");
    }
    QString diskEventsFile() const {
        return appDataDirectory() + QStringLiteral("/disk-events.jsonl");
    }
    QString batterySamplesFile() const {
        return powerDataDirectory() + QStringLiteral("/battery-samples.jsonl");
    }
    QString correlationSamplesFile() const {
        return powerDataDirectory() + QStringLiteral("/correlation/samples.jsonl");
    }
    QString powerHistoryCacheFile() const {
        return powerDataDirectory() + QStringLiteral("/cache.json");
    }
};

}  // namespace zelvar
