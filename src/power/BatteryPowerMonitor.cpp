#include "power/BatteryPowerMonitor.h"

#include <QStringDecoder>

#include "platform/BatteryRegistry.h"
#include "platform/Clock.h"
#include "platform/CommandRunner.h"
#include "platform/Scheduler.h"
#include "power/WattlogSampleFiles.h"

namespace zelvar {

BatteryPowerMonitor::BatteryPowerMonitor(Sources sources, QObject* parent)
    : QObject(parent), m_sources(std::move(sources)) {}

BatteryPowerMonitor::~BatteryPowerMonitor() {
    // Before any member goes: a refresh that is running still uses the sources.
    m_worker.stop();
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
