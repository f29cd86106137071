#pragma once

#include <QDateTime>
#include <QFuture>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include "common/SerialWorker.h"
#include "power/BatteryPowerSnapshot.h"
#include "power/WattlogBatterySample.h"
#include "power/WattlogCorrelationSample.h"
#include "power/WattlogDerivedData.h"
#include "power/WattlogEvent.h"
#include "power/WattlogHistory.h"

namespace zelvar {

class BatteryRegistry;
class Clock;
class CommandRunner;
class PowerLogSource;
class Scheduler;

// The power subsystem's observable model. Every 5 seconds (a single-shot armed again when a
// refresh has landed) it reads the battery and the newest 240 lines of each of the daemon's
// sample files on its worker thread, then publishes the snapshot, the battery samples and the
// correlation samples, in that order, on the main thread.
//
// The power history is loaded on demand: the build (the cache, the power log, the samples and
// the diagnostic reports) runs on the thread pool and its result is published here; a load
// started again meanwhile makes the earlier result stale, and a stale result is dropped. The
// live tail polls the power log and the samples every 15 s while it is on and merges what is
// new.
class BatteryPowerMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(BatteryPowerSnapshot snapshot READ snapshot NOTIFY snapshotChanged)
    Q_PROPERTY(bool isHistoryLoading READ isHistoryLoading NOTIFY isHistoryLoadingChanged)
    Q_PROPERTY(
        double historyLoadProgress READ historyLoadProgress NOTIFY historyLoadProgressChanged)
    Q_PROPERTY(bool isLiveTailing READ isLiveTailing NOTIFY isLiveTailingChanged)
    Q_PROPERTY(QStringList liveLines READ liveLines NOTIFY liveLinesChanged)

public:
    static constexpr double kRefreshIntervalSeconds = 5.0;
    // How long a snapshot speaks for the menu bar, and a daemon sample after it.
    static constexpr double kSnapshotFreshSeconds = 30.0;
    static constexpr double kSampleFreshSeconds = 600.0;
    // The power log command's limits.
    static constexpr double kCommandTimeoutSeconds = 25.0;
    static constexpr double kCommandKillGraceSeconds = 0.2;
    static constexpr double kCommandPollSeconds = 0.05;
    static constexpr double kLivePollSeconds = 15.0;
    static constexpr int kMaxLiveLines = 500;
    // The history's progress: before any load, during one and after one.
    static constexpr double kProgressLoading = 0.1;
    static constexpr double kProgressDone = 1.0;

    struct Sources {
        BatteryRegistry& battery;
        const Clock& clock;
        Scheduler& scheduler;
        CommandRunner& commands;
        QString batterySamplesFile;
        QString correlationSamplesFile;
        PowerLogSource& powerLog;
        QString cacheFile;
    };

    explicit BatteryPowerMonitor(Sources sources, QObject* parent = nullptr);
    ~BatteryPowerMonitor() override;

    // Begins the refresh loop, with a refresh at once; does nothing while the loop runs.
    void start();
    // Ends the refresh loop. A refresh under way still lands.
    void stop();
    // One refresh beside the loop, which keeps its rhythm.
    void refreshNow();
    bool isRunning() const { return m_running; }
    // The clock the monitor reads "now" from; views measure open spans with it.
    const Clock& clock() const { return m_sources.clock; }

    const BatteryPowerSnapshot& snapshot() const { return m_snapshot; }
    // Newest first, at most 240 each.
    const QList<WattlogBatterySample>& recentBatterySamples() const { return m_batterySamples; }
    const QList<WattlogCorrelationSample>& recentCorrelationSamples() const {
        return m_correlationSamples;
    }

    // The menu bar's power text: the snapshot's signed share while it is at most 30 s old,
    // else the newest daemon sample's while that is at most 600 s old, else the snapshot's
    // again; "0%" where there is no share.
    QString menuPowerRateText() const;

    // Oldest first.
    const QList<WattlogEvent>& powerEvents() const { return m_powerEvents; }
    const WattlogDerivedData& derivedData() const { return m_derivedData; }
    bool isHistoryLoading() const { return m_historyLoading; }
    double historyLoadProgress() const { return m_historyProgress; }
    bool isLiveTailing() const { return m_liveTailing; }
    // The raw lines the live tail brought, newest last, at most 500.
    const QStringList& liveLines() const { return m_liveLines; }

    // Starts a load of the history, making any load under way stale.
    void reloadWattlogHistory();
    // Starts a load unless there are events or a load is under way.
    void loadWattlogHistoryIfNeeded();
    // Polls at once and then 15 s after each poll lands; does nothing while it runs.
    void startWattlogLiveTail();
    // Ends the polls; the live lines stay.
    void stopWattlogLiveTail();

    // Runs a power tool and gives its standard output as UTF-8 (empty when it isn't): 25 s at
    // most, then SIGTERM and SIGKILL 0.2 s later; what it printed before that counts. The exit
    // status isn't looked at. Blocks; call it off the main thread.
    static QString runCommand(CommandRunner& runner, const QString& program,
                              const QStringList& arguments);

signals:
    void snapshotChanged();
    void recentBatterySamplesChanged();
    void recentCorrelationSamplesChanged();
    // A refresh has published its results.
    void refreshFinished();
    void isHistoryLoadingChanged();
    void historyLoadProgressChanged();
    void powerEventsChanged();
    void derivedDataChanged();
    void isLiveTailingChanged();
    void liveLinesChanged();
    // The raw lines a live poll has added to liveLines, in order.
    void liveLinesAppended(const QStringList& lines);
    // A history load has ended, published or dropped as stale.
    void historyLoadFinished();
    // A live poll has ended, whether it brought anything or not.
    void livePollFinished();

private:
    void refresh(bool fromLoop);
    WattlogHistory::Sources historySources() const;
    void loadWattlogHistory();
    void pollWattlogLive();
    void setHistoryLoading(bool loading);
    void setHistoryProgress(double progress);
    void publishHistory(QList<WattlogEvent> events, WattlogDerivedData derived);

    Sources m_sources;
    BatteryPowerSnapshot m_snapshot = BatteryPowerSnapshot::unavailable();
    QList<WattlogBatterySample> m_batterySamples;
    QList<WattlogCorrelationSample> m_correlationSamples;
    bool m_running = false;
    // Tells the loop's own refreshes from those of a loop stopped since.
    quint64 m_loop = 0;
    QList<WattlogEvent> m_powerEvents;
    WattlogDerivedData m_derivedData;
    bool m_historyLoading = false;
    double m_historyProgress = 0.0;
    // The number of the newest load; a result of an older one is stale.
    quint64 m_historyLoad = 0;
    bool m_liveTailing = false;
    quint64 m_liveTail = 0;
    QDateTime m_liveTailCutoff = WattlogHistory::distantPast();
    QStringList m_liveLines;
    // Work on the thread pool that still uses the sources; waited for on destruction.
    QList<QFuture<void>> m_background;
    SerialWorker m_worker{QStringLiteral("zelvar2.power")};
};

}  // namespace zelvar
