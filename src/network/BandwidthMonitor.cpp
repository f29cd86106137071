#include "network/BandwidthMonitor.h"

#include <QStringDecoder>
#include <algorithm>
#include <cmath>
#include <csignal>

#include "common/Log.h"
#include "network/NettopParser.h"
#include "network/NetworkName.h"
#include "network/SocketCounterSum.h"
#include "network/SocketStatisticsParser.h"
#include "network/UsageCache.h"
#include "platform/Clock.h"
#include "platform/InterfaceCounters.h"
#include "platform/ProcessNetworkSource.h"
#include "platform/ProcessSignaller.h"
#include "platform/Scheduler.h"

namespace zelvar {
namespace {

// The later counter minus the earlier, or 0 when the counter went backwards.
quint64 forwardDelta(quint64 later, quint64 earlier) {
    return later >= earlier ? later - earlier : 0;
}

}  // namespace

BandwidthMonitor::BandwidthMonitor(Sources sources, QObject* parent)
    : QObject(parent), m_sources(std::move(sources)) {}

BandwidthMonitor::~BandwidthMonitor() {
    // Before any member goes: a read that is running still uses the sources.
    m_worker.stop();
}

void BandwidthMonitor::setMonthlyWifiLimitGB(double gigabytes) {
    m_monthlyWifiLimitGB = gigabytes;
    emit monthlyWifiLimitGBChanged();
}

void BandwidthMonitor::setAppUsageMode(AppUsageMode mode) {
    m_appUsageMode = mode;
    emit appUsageModeChanged();
}

quint64 BandwidthMonitor::todayTotalBytes() const {
    return saturatingAdd(m_todayReceivedBytes, m_todaySentBytes);
}

quint64 BandwidthMonitor::monthlyWifiLimitBytes() const {
    const double bytes = std::max(m_monthlyWifiLimitGB, 0.1) * 1000000000.0;
    // 2^64 exactly; written so that NaN lands on the largest value too.
    if (!(bytes < 18446744073709551616.0)) {
        return std::numeric_limits<quint64>::max();
    }
    return static_cast<quint64>(bytes);
}

qint64 BandwidthMonitor::remainingMonthlyWifiBytes() const {
    constexpr quint64 kCap = std::numeric_limits<qint64>::max();
    return static_cast<qint64>(std::min(monthlyWifiLimitBytes(), kCap)) -
           static_cast<qint64>(std::min(m_monthWifiBytes, kCap));
}

void BandwidthMonitor::start() {
    if (m_started) {
        return;
    }
    m_started = true;
    m_baselineInterfaces = readInterfaces();
    m_previousInterfaces = m_baselineInterfaces;
    sample();
}

void BandwidthMonitor::resetToday() {
    m_baselineInterfaces = readInterfaces();
    m_previousInterfaces = m_baselineInterfaces;
    setTotals(0, 0, 0);
    setRates(0.0, 0.0);
}

void BandwidthMonitor::blockNetworkAccess(const ProcessUsage& usage) {
    // Stopped outright: nothing continues it, as with the tool this stands in for.
    if (m_sources.processSignaller.send(usage.pid, SIGSTOP) != 0) {
        return;
    }
    m_blockedProcessIDs.insert(usage.pid);
    emit blockedProcessIDsChanged();
    m_processUsages.removeIf([&](const ProcessUsage& u) { return u.pid == usage.pid; });
    emit processUsagesChanged();
}

void BandwidthMonitor::sample() {
    const QDateTime now = m_sources.clock.now();
    const InterfaceMap current = readInterfaces();
    // The previous totals are taken before the wait, so that a reset during it doesn't
    // change this sample's delta.
    const Totals previousTotals = aggregate(m_previousInterfaces);
    const Totals currentTotals = aggregate(current);
    m_worker.post([this, now, current, previousTotals, currentTotals] {
        const QString name = NetworkName::read(m_sources.networkName, current);
        QMetaObject::invokeMethod(this, [=, this] {
            applyInterfaceSample(now, current, previousTotals, currentTotals, name);
        });
    });
}

void BandwidthMonitor::applyInterfaceSample(const QDateTime& now, const InterfaceMap& current,
                                            Totals previousTotals, Totals currentTotals,
                                            const QString& name) {
    m_networkName = name;
    emit networkNameChanged();

    const QDateTime previousDate = m_previousInterfaceSampleDate.value_or(
        now.addMSecs(-qint64(kSampleIntervalSeconds * 1000)));
    const double elapsed = std::max(kMinimumElapsedSeconds, secondsBetween(previousDate, now));
    const double receivedRate =
        static_cast<double>(forwardDelta(currentTotals.received, previousTotals.received)) /
        elapsed;
    const double sentRate =
        static_cast<double>(forwardDelta(currentTotals.sent, previousTotals.sent)) / elapsed;
    setRates(smoothed(m_downloadBytesPerSecond, receivedRate, elapsed),
             smoothed(m_uploadBytesPerSecond, sentRate, elapsed));
    if (m_rateHistory.size() == kRateHistoryLength) {
        m_rateHistory.removeFirst();
    }
    m_rateHistory.append({now, m_downloadBytesPerSecond, m_uploadBytesPerSecond});
    emit rateHistoryChanged();

    const Totals baselineTotals = aggregate(m_baselineInterfaces);
    setTotals(forwardDelta(currentTotals.received, baselineTotals.received),
              forwardDelta(currentTotals.sent, baselineTotals.sent),
              wifiDelta(current, m_baselineInterfaces));

    m_previousInterfaces = current;
    m_previousInterfaceSampleDate = now;

    const QString today = UsageCache::calendarDate(m_sources.clock.now());
    m_worker.post([this, now, today] {
        const ProcessCounterMap counters = readProcessCounters(m_sources.processes);
        auto usages = m_usageFile.read(today);
        QMetaObject::invokeMethod(this, [this, now, counters, usages = std::move(usages)] {
            finishSample(now, counters, usages);
        });
    });
}

void BandwidthMonitor::finishSample(const QDateTime& now, const ProcessCounterMap& counters,
                                    const std::optional<QList<CachedAppUsage>>& usages) {
    m_processUsages = buildProcessUsages(counters, now);
    emit processUsagesChanged();

    if (usages) {
        m_cachedAppUsages = usages->mid(0, kMaximumRows);
    }
    emit cachedAppUsagesChanged();

    emit sampleFinished();
    // The next sample waits from the end of this one, so samples never overlap.
    m_sources.scheduler.callAfter(kSampleIntervalSeconds, this, [this] { sample(); });
}

ProcessCounterMap BandwidthMonitor::readProcessCounters(ProcessNetworkSource& source) {
    return processCounters(source.read());
}

ProcessCounterMap BandwidthMonitor::processCounters(const ProcessNetworkReading& reading) {
    if (!reading.note.isEmpty()) {
        logLine(QStringLiteral("[BandwidthMonitor] ") + reading.note);
    }
    if (reading.grammar == ProcessNetworkReading::Grammar::SocketRecords) {
        return SocketCounterSum::sum(reading.sockets);
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(reading.text);
    if (decoder.hasError()) {
        return {};
    }
    return reading.grammar == ProcessNetworkReading::Grammar::Nettop
               ? NettopParser::parse(text)
               : SocketStatisticsParser::parse(text);
}

QList<ProcessUsage> BandwidthMonitor::buildProcessUsages(const ProcessCounterMap& counters,
                                                         const QDateTime& now) {
    QList<ProcessUsage> usages;
    for (auto it = counters.begin(); it != counters.end(); ++it) {
        const QString& key = it.key();
        const ProcessCounter& counter = it.value();
        const auto previous = m_previousProcessCounters.constFind(key);
        if (previous == m_previousProcessCounters.constEnd()) {
            continue;  // a process shows from its second reading on
        }
        const double elapsed =
            std::max(kMinimumElapsedSeconds, secondsBetween(previous->date, now));
        const quint64 inDelta = forwardDelta(counter.inBytes, previous->inBytes);
        const quint64 outDelta = forwardDelta(counter.outBytes, previous->outBytes);
        const double rawIn = static_cast<double>(inDelta) / elapsed;
        const double rawOut = static_cast<double>(outDelta) / elapsed;

        const auto old = m_smoothedProcessRates.constFind(key);
        const SmoothedRates before =
            old == m_smoothedProcessRates.constEnd() ? SmoothedRates{rawIn, rawOut} : *old;
        const SmoothedRates after{smoothed(before.download, rawIn, elapsed),
                                  smoothed(before.upload, rawOut, elapsed)};
        // Kept also for processes left out below, so that their history goes on.
        m_smoothedProcessRates.insert(key, after);

        if (m_blockedProcessIDs.contains(counter.pid)) {
            continue;
        }
        const quint64 observed = saturatingAdd(inDelta, outDelta);
        if (!(after.download + after.upload > 0.0) && observed == 0) {
            continue;
        }
        usages.append({key, counter.name, counter.pid, after.download, after.upload, observed, 0});
    }

    m_previousProcessCounters.clear();
    for (auto it = counters.begin(); it != counters.end(); ++it) {
        m_previousProcessCounters.insert(it.key(), {it->inBytes, it->outBytes, now});
    }

    std::stable_sort(usages.begin(), usages.end(),
                     [](const ProcessUsage& a, const ProcessUsage& b) {
                         if (a.combinedBytesPerSecond() != b.combinedBytesPerSecond()) {
                             return a.combinedBytesPerSecond() > b.combinedBytesPerSecond();
                         }
                         return a.observedBytes > b.observedBytes;
                     });
    return usages.mid(0, kMaximumRows);
}

InterfaceMap BandwidthMonitor::readInterfaces() {
    InterfaceMap interfaces;
    const auto counters = m_sources.interfaces.read();
    if (!counters) {
        return interfaces;
    }
    for (const InterfaceCounter& counter : *counters) {
        // Only the prefix is looked at: every name beginning with "lo" is loopback here.
        if (counter.name.startsWith(QLatin1String("lo"))) {
            continue;
        }
        interfaces.insert(counter.name, {counter.name, counter.receivedBytes, counter.sentBytes,
                                         counter.physical});
    }
    return interfaces;
}

BandwidthMonitor::Totals BandwidthMonitor::aggregate(const InterfaceMap& interfaces) {
    Totals totals;
    for (const InterfaceUsage& usage : interfaces) {
        totals.received = saturatingAdd(totals.received, usage.receivedBytes);
        totals.sent = saturatingAdd(totals.sent, usage.sentBytes);
    }
    return totals;
}

quint64 BandwidthMonitor::wifiDelta(const InterfaceMap& current, const InterfaceMap& baseline) {
    quint64 total = 0;
    for (const InterfaceUsage& usage : current) {
        if (!usage.wifiLike) {
            continue;
        }
        const auto base = baseline.constFind(usage.name);
        if (base == baseline.constEnd()) {
            // Appeared after the baseline: all of its traffic is new.
            total = saturatingAdd(total, saturatingAdd(usage.receivedBytes, usage.sentBytes));
            continue;
        }
        total = saturatingAdd(total, forwardDelta(usage.receivedBytes, base->receivedBytes));
        total = saturatingAdd(total, forwardDelta(usage.sentBytes, base->sentBytes));
    }
    return total;
}

double BandwidthMonitor::smoothed(double old, double raw, double elapsed) {
    if (old == 0.0) {
        return raw;  // nothing to smooth from yet, or after a reset
    }
    const double alpha = 1.0 - std::exp(elapsed / -kSmoothingTimeConstantSeconds);
    return old + alpha * (raw - old);
}

void BandwidthMonitor::setRates(double download, double upload) {
    m_downloadBytesPerSecond = download;
    emit downloadBytesPerSecondChanged();
    m_uploadBytesPerSecond = upload;
    emit uploadBytesPerSecondChanged();
}

void BandwidthMonitor::setTotals(quint64 received, quint64 sent, quint64 wifi) {
    m_todayReceivedBytes = received;
    emit todayReceivedBytesChanged();
    m_todaySentBytes = sent;
    emit todaySentBytesChanged();
    m_monthWifiBytes = wifi;
    emit monthWifiBytesChanged();
}

}  // namespace zelvar
