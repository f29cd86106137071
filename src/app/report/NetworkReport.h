#pragma once

#include <QByteArray>
#include <QString>

#include "app/report/ReportKind.h"
#include "network/NetworkUsage.h"

namespace zelvar {

class BandwidthMonitor;

// `zelvar2 report network`: the real bandwidth monitor, run for a few seconds.
class NetworkReport {
public:
    static ReportKind kind();

    // What the Network tab would show after the last sample.
    struct Snapshot {
        double seconds = 0.0;  // from the baseline to the end of the last sample
        int samples = 0;
        QString networkName;
        double downloadBytesPerSecond = 0.0;
        double uploadBytesPerSecond = 0.0;
        quint64 receivedBytes = 0;
        quint64 sentBytes = 0;
        quint64 wifiBytes = 0;
        quint64 wifiLimitBytes = 0;
        qint64 remainingWifiBytes = 0;
        QList<ProcessUsage> processes;
        QString date;
        QList<CachedAppUsage> dailyUsage;

        static Snapshot of(const BandwidthMonitor& monitor);
    };

    // Samples until `seconds` have passed and the sample under way has finished.
    static Snapshot sample(Monitors& monitors, double seconds);

    static QString formatText(const Snapshot& snapshot);
    static QByteArray formatJson(const Snapshot& snapshot);
};

}  // namespace zelvar
