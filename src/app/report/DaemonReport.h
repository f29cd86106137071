#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

#include "app/DaemonAgent.h"
#include "app/report/ReportKind.h"

namespace zelvar {

// `zelvar2 report daemon`: whether the daemon's agent is installed, loaded and current, the
// running daemon's pid, and each of its files with its size and the time of its newest line.
class DaemonReport {
public:
    struct FileState {
        QString path;
        std::optional<qint64> sizeBytes;  // none: the file doesn't exist
        std::optional<QDateTime> newest;  // the newest line's time, or the file's for JSON
    };
    struct Snapshot {
        DaemonAgent::Status agent;
        QList<FileState> files;
    };

    static ReportKind kind();
    static Snapshot sample(Monitors& monitors);
    static FileState fileState(const QString& path);
    static QString formatText(const Snapshot& snapshot);
    static QByteArray formatJson(const Snapshot& snapshot);
};

}  // namespace zelvar
