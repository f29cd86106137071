#include "power/BatteryPowerMonitor.h"

#include <QPromise>
#include <QStringDecoder>
#include <QThreadPool>
#include <memory>

#include "platform/BatteryRegistry.h"
#include "platform/Clock.h"
#include "platform/CommandRunner.h"
#include "platform/Scheduler.h"
#include "power/WattlogSampleFiles.h"

namespace zelvar {
namespace {

// Runs `work` on the thread pool and hands its result to `done` on `context`'s thread, always
// with a queued call, so after the caller has returned even when the work was quicker; nothing
// is handed to a context that is gone. The future ends with the work.
template <typename T, typename Work, typename Done>
QFuture<void> onThreadPool(QObject* context, Work work, Done done) {
    auto promise = std::make_shared<QPromise<T>>();
    QFuture<T> future = promise->future();
    promise->start();
    QThreadPool::globalInstance()->start([promise, work = std::move(work)]() mutable {
        promise->addResult(work());
        promise->finish();
    });
    future.then(context, [context, done = std::move(done)](const T& result) {
        QMetaObject::invokeMethod(
            context, [done, result] { done(result); }, Qt::QueuedConnection);
    });
    return QFuture<void>(future);
}

}  // namespace

BatteryPowerMonitor::BatteryPowerMonitor(Sources sources, QObject* parent)
    : QObject(parent), m_sources(std::move(sources)) {}

BatteryPowerMonitor::~BatteryPowerMonitor() {
    // Before any member goes: a refresh that is running still uses the sources.
    m_worker.stop();
    // Their continuations die with this object; the work itself must end first.
    for (QFuture<void>& work : m_background) {
        work.waitForFinished();
    }
}

void BatteryPowerMonitor::start() {
    if (m_running) {
        return;
    }
    m_running = true;
    ++m_loop;
    refresh(true);
}

void BatteryPowerMonitor::stop() {
    m_running = false;
    ++m_loop;
    stopWattlogLiveTail();
}

void BatteryPowerMonitor::refreshNow() {
    refresh(false);
}

void BatteryPowerMonitor::refresh(bool fromLoop) {
    const quint64 loop = m_loop;
    m_worker.post([this, fromLoop, loop] {
        const std::optional<BatteryReading> reading = m_sources.battery.read();
        // Stamped after the registry's reads.
        const BatteryPowerSnapshot snapshot =
            reading ? BatteryPowerSnapshot::fromReading(*reading, m_sources.clock.now())
                    : BatteryPowerSnapshot::unavailable();
        QList<WattlogBatterySample> batteries =
            WattlogSampleFiles::readJSONLLines<WattlogBatterySample>(
                m_sources.batterySamplesFile, WattlogSampleFiles::kRecentLimit);
        QList<WattlogCorrelationSample> correlations =
            WattlogSampleFiles::readJSONLLines<WattlogCorrelationSample>(
                m_sources.correlationSamplesFile, WattlogSampleFiles::kRecentLimit);
        QMetaObject::invokeMethod(
            this,
            [this, fromLoop, loop, snapshot, batteries = std::move(batteries),
             correlations = std::move(correlations)] {
                m_snapshot = snapshot;
                emit snapshotChanged();
                m_batterySamples = batteries;
                emit recentBatterySamplesChanged();
                m_correlationSamples = correlations;
                emit recentCorrelationSamplesChanged();
                emit refreshFinished();
                if (fromLoop && m_running && loop == m_loop) {
                    m_sources.scheduler.callAfter(kRefreshIntervalSeconds, this, [this, loop] {
                        if (m_running && loop == m_loop) {
                            refresh(true);
                        }
                    });
                }
            },
            Qt::QueuedConnection);
    });
}

WattlogHistory::Sources BatteryPowerMonitor::historySources() const {
    return {m_sources.powerLog, m_sources.commands, m_sources.cacheFile,
            m_sources.batterySamplesFile};
}

void BatteryPowerMonitor::setHistoryLoading(bool loading) {
    if (m_historyLoading != loading) {
        m_historyLoading = loading;
        emit isHistoryLoadingChanged();
    }
}

void BatteryPowerMonitor::setHistoryProgress(double progress) {
    if (m_historyProgress != progress) {
        m_historyProgress = progress;
        emit historyLoadProgressChanged();
    }
}

void BatteryPowerMonitor::publishHistory(QList<WattlogEvent> events, WattlogDerivedData derived) {
    m_powerEvents = std::move(events);
    emit powerEventsChanged();
    m_derivedData = std::move(derived);
    emit derivedDataChanged();
}

void BatteryPowerMonitor::reloadWattlogHistory() {
    ++m_historyLoad;
    loadWattlogHistory();
}

void BatteryPowerMonitor::loadWattlogHistoryIfNeeded() {
    if (m_powerEvents.isEmpty() && !m_historyLoading) {
        reloadWattlogHistory();
    }
}

void BatteryPowerMonitor::loadWattlogHistory() {
    const quint64 load = m_historyLoad;
    setHistoryLoading(true);
    setHistoryProgress(kProgressLoading);
    const WattlogHistory::Sources sources = historySources();
    const QDateTime now = m_sources.clock.now();
    m_background.removeIf([](const QFuture<void>& f) { return f.isFinished(); });
    m_background.append(onThreadPool<WattlogHistory::Result>(
        this, [sources, now] { return WattlogHistory::build(sources, now); },
        [this, load](WattlogHistory::Result result) {
            if (load != m_historyLoad) {
                // A newer load is under way: this result is stale, and the progress stays.
                setHistoryLoading(false);
                emit historyLoadFinished();
                return;
            }
            m_liveTailCutoff = result.events.isEmpty() ? WattlogHistory::distantPast()
                                                       : result.events.constLast().timestamp;
            publishHistory(std::move(result.events), std::move(result.derivedData));
            setHistoryProgress(kProgressDone);
            setHistoryLoading(false);
            emit historyLoadFinished();
        }));
}

void BatteryPowerMonitor::startWattlogLiveTail() {
    if (m_liveTailing) {
        return;
    }
    ++m_liveTail;
    m_liveTailCutoff = m_powerEvents.isEmpty() ? WattlogHistory::distantPast()
                                               : m_powerEvents.constLast().timestamp;
    m_liveLines.clear();
    emit liveLinesChanged();
    m_liveTailing = true;
    emit isLiveTailingChanged();
    pollWattlogLive();
}

void BatteryPowerMonitor::stopWattlogLiveTail() {
    ++m_liveTail;
    if (m_liveTailing) {
        m_liveTailing = false;
        emit isLiveTailingChanged();
    }
}

void BatteryPowerMonitor::pollWattlogLive() {
    const quint64 tail = m_liveTail;
    const WattlogHistory::Sources sources = historySources();
    const QDateTime cutoff = m_liveTailCutoff;
    m_background.removeIf([](const QFuture<void>& f) { return f.isFinished(); });
    m_background.append(onThreadPool<QList<WattlogEvent>>(
        this, [sources, cutoff] { return WattlogHistory::newEvents(sources, cutoff); },
        [this, tail](const QList<WattlogEvent>& fresh) {
            if (tail != m_liveTail) {
                return;
            }
            if (!fresh.isEmpty()) {
                QList<WattlogEvent> merged = m_powerEvents + fresh;
                merged = WattlogHistory::deduplicated(merged);
                WattlogHistory::sortByTime(merged);
                WattlogDerivedData derived =
                    WattlogDerivedData::build(merged, m_sources.clock.now());
                if (!merged.isEmpty()) {
                    m_liveTailCutoff = merged.constLast().timestamp;
                }
                publishHistory(std::move(merged), std::move(derived));
                // The poll's own lines, also of events the merge found already known.
                QStringList added;
                for (const WattlogEvent& e : fresh) {
                    if (!e.rawLine.isEmpty()) {
                        added.append(e.rawLine);
                    }
                }
                m_liveLines.append(added);
                if (m_liveLines.size() > kMaxLiveLines) {
                    m_liveLines.remove(0, m_liveLines.size() - kMaxLiveLines);
                }
                emit liveLinesChanged();
                emit liveLinesAppended(added);
            }
            emit livePollFinished();
            m_sources.scheduler.callAfter(kLivePollSeconds, this, [this, tail] {
                if (m_liveTailing && tail == m_liveTail) {
                    pollWattlogLive();
                }
            });
        }));
}

QString BatteryPowerMonitor::menuPowerRateText() const {
    const QDateTime now = m_sources.clock.now();
    if (secondsBetween(now, m_snapshot.timestamp) >= -kSnapshotFreshSeconds) {
        return m_snapshot.menuPowerRateText();
    }
    if (!m_batterySamples.isEmpty() &&
        secondsBetween(m_batterySamples.first().date(), now) <= kSampleFreshSeconds) {
        return m_batterySamples.first().menuPowerRateText();
    }
    return m_snapshot.menuPowerRateText();
}

QString BatteryPowerMonitor::runCommand(CommandRunner& runner, const QString& program,
                                        const QStringList& arguments) {
    const CommandResult result = runner.run({.program = program,
                                             .arguments = arguments,
                                             .timeoutSeconds = kCommandTimeoutSeconds,
                                             .pollStepSeconds = kCommandPollSeconds,
                                             .stderrMode = CommandRequest::Stderr::Discarded,
                                             .killGraceSeconds = kCommandKillGraceSeconds});
    // Stateless: a character cut off by a killed tool makes the text invalid too.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8(result.standardOutput);
    return utf8.hasError() ? QString() : text;
}

}  // namespace zelvar
