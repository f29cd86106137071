#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QTimeZone>
#include <optional>

#include "network/NetworkUsage.h"
#include "network/UsageCache.h"

namespace zelvar {

class ProcessNetworkSource;

// The daily usage file: per application and local calendar day, the bytes received and sent.
// Each pass adds, per socket where the source tells sockets apart and per process otherwise,
// the growth of its counters since the previous pass (one seen for the first time after the
// first pass counts from zero; a counter that went back counts 0; a socket or process that
// ended keeps what it counted). The file is loaded at start, so a
// restart goes on with the day, written whole and atomically at most once a minute and at
// flush(), and keeps 400 days.
class NetworkUsageSampler {
public:
    static constexpr double kSaveIntervalSeconds = 60.0;
    static constexpr int kKeptDays = 400;

    NetworkUsageSampler(ProcessNetworkSource& source, QString file,
                        QTimeZone zone = QTimeZone::systemTimeZone());

    // Reads the file's days; a missing or broken file starts empty. The error of a file that
    // exists but couldn't be read, else empty.
    QString load();
    void sample(const QDateTime& now);
    // Counts `counters` (per process, or per socket as SocketCounterSum::perSocket keys them)
    // as read at `now`; what sample() does after reading the source.
    void count(const ProcessCounterMap& counters, const QDateTime& now);
    // Writes the file when something changed; the error when it couldn't, else empty.
    QString flush();
    // Saves when the last save is a minute old; the error of a failed save, else empty.
    QString saveIfDue(const QDateTime& now);

    const UsageCache::Days& days() const { return m_days; }
    const QString& file() const { return m_file; }

private:
    ProcessNetworkSource& m_source;
    QString m_file;
    QTimeZone m_zone;
    UsageCache::Days m_days;
    std::optional<ProcessCounterMap> m_previous;
    std::optional<QDateTime> m_lastSave;
    bool m_dirty = false;
};

}  // namespace zelvar
