#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QSet>
#include <optional>

#include "common/SerialWorker.h"
#include "network/NetworkUsage.h"
#include "network/UsageFileReader.h"

namespace zelvar {

class Clock;
class InterfaceCounters;
class NetworkNameSource;
struct ProcessNetworkReading;
class ProcessNetworkSource;
class ProcessSignaller;
class Scheduler;

// The network's observable model. Every 2 seconds plus the time of a sample it reads the
// interfaces' byte counters and works out smoothed download and upload rates (time constant
// 10 s), the totals since a baseline, and the Wi-Fi-like interfaces' traffic against a limit;
// within the same sample it refreshes the network's name, the per-process table and today's
// daily usage. The name, the per-process tool and the daily usage file are read on a worker
// thread; everything else, and every property, lives on the main thread.
//
// "Today" and "month" are labels: both count from the baseline, taken at start() and by
// resetToday(), and no calendar boundary resets them. Nothing here is persisted.
class BandwidthMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(double downloadBytesPerSecond READ downloadBytesPerSecond NOTIFY
                   downloadBytesPerSecondChanged)
    Q_PROPERTY(
        double uploadBytesPerSecond READ uploadBytesPerSecond NOTIFY uploadBytesPerSecondChanged)
    Q_PROPERTY(quint64 todayReceivedBytes READ todayReceivedBytes NOTIFY todayReceivedBytesChanged)
    Q_PROPERTY(quint64 todaySentBytes READ todaySentBytes NOTIFY todaySentBytesChanged)
    Q_PROPERTY(quint64 monthWifiBytes READ monthWifiBytes NOTIFY monthWifiBytesChanged)
    Q_PROPERTY(QString networkName READ networkName NOTIFY networkNameChanged)
    Q_PROPERTY(double monthlyWifiLimitGB READ monthlyWifiLimitGB WRITE setMonthlyWifiLimitGB NOTIFY
                   monthlyWifiLimitGBChanged)

public:
    static constexpr double kSampleIntervalSeconds = 2.0;
    static constexpr double kMinimumElapsedSeconds = 0.5;
    static constexpr double kSmoothingTimeConstantSeconds = 10.0;
    static constexpr qsizetype kMaximumRows = 18;
    // The rate samples kept for the dashboard's graph: five minutes of samples.
    static constexpr qsizetype kRateHistoryLength = 150;

    // The smoothed rates as one interface sample left them.
    struct RateSample {
        QDateTime at;
        double download = 0.0;
        double upload = 0.0;
    };

    struct Sources {
        InterfaceCounters& interfaces;
        NetworkNameSource& networkName;
        ProcessNetworkSource& processes;
        ProcessSignaller& processSignaller;
        const Clock& clock;
        Scheduler& scheduler;
        QString usageFile;  // the daemon's usage-by-date.json
    };

    explicit BandwidthMonitor(Sources sources, QObject* parent = nullptr);
    ~BandwidthMonitor() override;

    double downloadBytesPerSecond() const { return m_downloadBytesPerSecond; }
    double uploadBytesPerSecond() const { return m_uploadBytesPerSecond; }
    quint64 todayReceivedBytes() const { return m_todayReceivedBytes; }
    quint64 todaySentBytes() const { return m_todaySentBytes; }
    quint64 monthWifiBytes() const { return m_monthWifiBytes; }
    const QList<ProcessUsage>& processUsages() const { return m_processUsages; }
    const QList<CachedAppUsage>& cachedAppUsages() const { return m_cachedAppUsages; }
    const QString& networkName() const { return m_networkName; }
    const QSet<qint32>& blockedProcessIDs() const { return m_blockedProcessIDs; }
    double monthlyWifiLimitGB() const { return m_monthlyWifiLimitGB; }
    AppUsageMode appUsageMode() const { return m_appUsageMode; }
    // The rates of the last kRateHistoryLength interface samples, oldest first. A reset
    // leaves it as it is.
    const QList<RateSample>& rateHistory() const { return m_rateHistory; }

    void setMonthlyWifiLimitGB(double gigabytes);
    void setAppUsageMode(AppUsageMode mode);

    // Received plus sent, saturating.
    quint64 todayTotalBytes() const;
    // The limit in decimal bytes, at least 0.1 GB; the largest value when it can't be held.
    quint64 monthlyWifiLimitBytes() const;
    // Negative once the limit is exceeded.
    qint64 remainingMonthlyWifiBytes() const;

    // Takes the baseline and starts sampling; later calls do nothing.
    void start();
    // A new baseline from now on: the totals and rates go to zero.
    void resetToday();
    // Stops the process (SIGSTOP) and hides it from the table for as long as this runs. A
    // signal that can't be sent changes nothing.
    void blockNetworkAccess(const ProcessUsage& usage);

    // Turns one reading of the per-process counters into the table: a process shows from its
    // second reading on, with rates smoothed per key; blocked pids are left out; busiest first,
    // at most 18 rows. Remembers the reading for the next call.
    QList<ProcessUsage> buildProcessUsages(const ProcessCounterMap& counters, const QDateTime& now);

    // Reads the per-process counters once (a tool's output, parsed, or socket records, summed)
    // and logs the source's note, if any. Blocks.
    static ProcessCounterMap readProcessCounters(ProcessNetworkSource& source);
    // The same of a reading in hand.
    static ProcessCounterMap processCounters(const ProcessNetworkReading& reading);

signals:
    void downloadBytesPerSecondChanged();
    void uploadBytesPerSecondChanged();
    void todayReceivedBytesChanged();
    void todaySentBytesChanged();
    void monthWifiBytesChanged();
    void processUsagesChanged();
    void cachedAppUsagesChanged();
    void networkNameChanged();
    void blockedProcessIDsChanged();
    void monthlyWifiLimitGBChanged();
    void appUsageModeChanged();
    void rateHistoryChanged();
    // After the last step of a sample, before the wait for the next one.
    void sampleFinished();

private:
    struct Totals {
        quint64 received = 0;
        quint64 sent = 0;
    };
    struct PreviousCounter {
        quint64 inBytes = 0;
        quint64 outBytes = 0;
        QDateTime date;
    };
    struct SmoothedRates {
        double download = 0.0;
        double upload = 0.0;
    };

    void sample();
    void applyInterfaceSample(const QDateTime& now, const InterfaceMap& current,
                              Totals previousTotals, Totals currentTotals, const QString& name);
    // `usages` has no value when the usage file and the day are as at the previous sample.
    void finishSample(const QDateTime& now, const ProcessCounterMap& counters,
                      const std::optional<QList<CachedAppUsage>>& usages);
    InterfaceMap readInterfaces();
    static Totals aggregate(const InterfaceMap& interfaces);
    static quint64 wifiDelta(const InterfaceMap& current, const InterfaceMap& baseline);
    static double smoothed(double old, double raw, double elapsed);

    void setRates(double download, double upload);
    void setTotals(quint64 received, quint64 sent, quint64 wifi);

    Sources m_sources;

    double m_downloadBytesPerSecond = 0.0;
    double m_uploadBytesPerSecond = 0.0;
    quint64 m_todayReceivedBytes = 0;
    quint64 m_todaySentBytes = 0;
    quint64 m_monthWifiBytes = 0;
    QList<ProcessUsage> m_processUsages;
    QList<CachedAppUsage> m_cachedAppUsages;
    QString m_networkName = QStringLiteral("Wi-Fi");
    QSet<qint32> m_blockedProcessIDs;
    double m_monthlyWifiLimitGB = 1.0;
    AppUsageMode m_appUsageMode = AppUsageMode::current;
    QList<RateSample> m_rateHistory;

    bool m_started = false;
    InterfaceMap m_baselineInterfaces;
    InterfaceMap m_previousInterfaces;
    QHash<QString, PreviousCounter> m_previousProcessCounters;
    QHash<QString, SmoothedRates> m_smoothedProcessRates;
    std::optional<QDateTime> m_previousInterfaceSampleDate;

    UsageFileReader m_usageFile{m_sources.usageFile};            // read on the worker only
    SerialWorker m_worker{QStringLiteral("zelvar2.bandwidth")};  // the blocking reads, in turn
};

}  // namespace zelvar
