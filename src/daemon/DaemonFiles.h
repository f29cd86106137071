#pragma once

#include <QString>
#include <QStringList>

namespace zelvar {

class Paths;

// Where the daemon writes, each file named by the subsystem that reads it, plus its own lock.
struct DaemonFiles {
    QString diskIO;
    QString batterySamples;
    QString correlationSamples;
    QString usageByDate;
    QString diskEvents;
    QString eventLog;
    QString lock;

    // The readers' files; the event log is the `--log-file`, the lock lies in the runtime folder.
    static DaemonFiles standard(const Paths& paths, const QString& eventLog);
    // Every file the daemon appends to or rewrites, the lock left out.
    QStringList written() const;
    // daemon.lock in Zelvar2's runtime folder: one daemon per user.
    static QString lockFile(const Paths& paths);
    // The folder of the `--log-file` and the daemon's output files.
    static QString logDirectory(const Paths& paths);
};

}  // namespace zelvar
