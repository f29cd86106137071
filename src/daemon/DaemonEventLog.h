#pragma once

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QString>

#include "daemon/JsonlFile.h"

namespace zelvar {

class Clock;

// The daemon's own log (the `--log-file`, events.jsonl): one JSON object per line with "ts",
// "iso" and "event" ("start", "stop", "memory_above", "memory_below", "write_failed") and the
// event's fields. A file that can't be written is reported once an hour at most, so a full disk
// doesn't fill the log with the same complaint; its own failures go to standard error.
class DaemonEventLog {
public:
    static constexpr qint64 kCapBytes = 16 * 1024 * 1024;
    static constexpr double kFailureReportSeconds = 3600.0;

    DaemonEventLog(const QString& path, const Clock& clock);

    void write(const QString& event, QJsonObject fields = {});
    // For every other file's JsonlFile::FailureHandler.
    void reportWriteFailure(const QString& path, const QString& error);
    JsonlFile::FailureHandler failureHandler();

private:
    const Clock& m_clock;
    JsonlFile m_file;
    QHash<QString, QDateTime> m_lastFailureReport;
};

}  // namespace zelvar
