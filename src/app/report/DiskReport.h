#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "app/report/ReportKind.h"
#include "disk/DiskIOReader.h"
#include "disk/DiskInfo.h"

namespace zelvar {

// `zelvar2 report disk`: the volumes and the daemon's disk I/O log as the Disk tab shows them.
class DiskReport {
public:
    struct Snapshot {
        QList<DiskInfo> volumes;
        DiskIORead diskIO;
        QString logFile;
    };

    static ReportKind kind();

    // One cycle of the real process monitor: volumes, and the log read and enriched from the
    // cycle's processes.
    static Snapshot sample(Monitors& monitors);

    // The windows the dashboard offers, in its order.
    static const QStringList& windows();

    static QString formatText(const Snapshot& snapshot);
    static QByteArray formatJson(const Snapshot& snapshot);
};

}  // namespace zelvar
