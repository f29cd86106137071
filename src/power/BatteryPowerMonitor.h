#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include "common/SerialWorker.h"
#include "power/BatteryPowerSnapshot.h"
#include "power/WattlogBatterySample.h"
#include "power/WattlogCorrelationSample.h"

namespace zelvar {

class BatteryRegistry;
class Clock;
class CommandRunner;
class Scheduler;

// The power subsystem's observable model. Every 5 seconds (a single-shot armed again when a
// refresh has landed) it reads the battery and the newest 240 lines of each of the daemon's
// sample files on its worker thread, then publishes the snapshot, the battery samples and the
// correlation samples, in that order, on the main thread.
class BatteryPowerMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(BatteryPowerSnapshot snapshot READ snapshot NOTIFY snapshotChanged)

public:
    static constexpr double kRefreshIntervalSeconds = 5.0;
    // How long a snapshot speaks for the menu bar, and a daemon sample after it.
    static constexpr double kSnapshotFreshSeconds = 30.0;
    static constexpr double kSampleFreshSeconds = 600.0;
    // The power log command's limits.
    static constexpr double kCommandTimeoutSeconds = 25.0;
    static constexpr double kCommandKillGraceSeconds = 0.2;
    static constexpr double kCommandPollSeconds = 0.05;

    struct Sources {
        BatteryRegistry& battery;
        const Clock& clock;
        Scheduler& scheduler;
        CommandRunner& commands;
        QString batterySamplesFile;
        QString correlationSamplesFile;
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

private:
    void refresh(bool fromLoop);

    Sources m_sources;
    BatteryPowerSnapshot m_snapshot = BatteryPowerSnapshot::unavailable();
    QList<WattlogBatterySample> m_batterySamples;
    QList<WattlogCorrelationSample> m_correlationSamples;
    bool m_running = false;
    // Tells the loop's own refreshes from those of a loop stopped since.
    quint64 m_loop = 0;
    SerialWorker m_worker{QStringLiteral("zelvar2.power")};
};

}  // namespace zelvar
