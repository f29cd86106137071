#include <cerrno>
#include <csignal>
#include <limits>

#include "network/BandwidthMonitorFixture.h"
#include "network/UsageCache.h"
#include "support/Testing.h"

namespace {

using BandwidthMonitorTest = BandwidthMonitorFixture;

ProcessCounterMap counters(std::initializer_list<ProcessCounter> list) {
    ProcessCounterMap map;
    for (const ProcessCounter& c : list) {
        map.insert(c.key(), c);
    }
    return map;
}

// "pid down up observed" per row, the rates to a thousandth.
QStringList rates(const QList<ProcessUsage>& rows) {
    QStringList described;
    for (const ProcessUsage& row : rows) {
        described << QString::asprintf("%d %.3f %.3f %llu", row.pid, row.downloadBytesPerSecond,
                                       row.uploadBytesPerSecond, qulonglong(row.observedBytes));
    }
    return described;
}

QList<qint32> pidsOf(const QList<ProcessUsage>& rows) {
    QList<qint32> pids;
    std::ranges::transform(rows, std::back_inserter(pids), &ProcessUsage::pid);
    return pids;
}

}  // namespace

TEST_F(BandwidthMonitorTest, OneLoopCountsFromTheBaselineSmoothsAndNeverCountsBackwards) {
    // Traffic between the baseline and the first sample's reading, moments later: the first
    // rates are over two seconds.
    m_counters.beforeRead = [this](int reads) {
        if (reads == 1) {
            m_counters.add("eth0", 2000, 2000);
        }
    };
    startAndWait();
    m_monitor.start();
    EXPECT_EQ(m_clock.pendingCallbacks(), 1u);  // still the one loop
    EXPECT_EQ(m_monitor.networkName(), "Home");
    EXPECT_EQ(figures(), "down 1000.000 up 1000.000 in 2000 out 2000 wifi 4000");
    m_counters.add("eth0", 4000, 2000);
    m_counters.add("tun0", 1000, 0);         // counted, but not Wi-Fi-like
    m_counters.add("lo", 1000000, 1000000);  // loopback never counts
    nextSample();
    EXPECT_EQ(figures(), "down 1271.904 up 1000.000 in 7000 out 4000 wifi 10000");
    // An interface that appears after the baseline counts whole; any name beginning with "lo"
    // is taken for loopback.
    m_counters.set({{"eth0", 24000, 9000, true},
                    {"tun0", 1100, 100, false},
                    {"wlan0", 700, 300, true},
                    {"lo-but-not-loopback", 5, 5, true}});
    nextSample();
    EXPECT_EQ(figures(), "down 1829.868 up 845.921 in 15700 out 4300 wifi 19000");

    m_monitor.resetToday();
    EXPECT_EQ(figures(), "down 0.000 up 0.000 in 0 out 0 wifi 0");
    m_counters.add("eth0", 100, 0);
    nextSample();
    EXPECT_EQ(figures(), "down 50.000 up 0.000 in 100 out 0 wifi 100");  // raw, from exactly 0.0
    // A 32-bit counter wraps: the aggregate falls below the previous sample and the baseline.
    m_counters.set({{"eth0", 50, 11000, true}, {"tun0", 100, 100, false}});
    nextSample();
    EXPECT_EQ(figures(), "down 40.937 up 850.000 in 0 out 1700 wifi 2000");
    // A failed read: everything sums to 0, so no spike and no total.
    m_counters.fail();
    nextSample();
    EXPECT_EQ(figures(), "down 33.516 up 695.921 in 0 out 0 wifi 0");
}

TEST_F(BandwidthMonitorTest, ElapsedTimeIsAtLeastHalfASecond) {
    // The wall clock steps back while the first sample waits for the network's name, so the
    // second sample comes 0.2 s after the first one's reading.
    const QDateTime start = m_clock.now();
    m_names.onRead([&, stepped = false]() mutable {
        if (!std::exchange(stepped, true)) {
            m_clock.setNow(start.addMSecs(-1800));
        }
    });
    startAndWait();
    m_counters.add("eth0", 1000, 0);
    nextSample();
    EXPECT_EQ(m_monitor.downloadBytesPerSecond(), 2000.0);  // 1000 bytes over 0.5 s
}

TEST_F(BandwidthMonitorTest, WifiLimitArithmetic) {
    constexpr quint64 kMax = std::numeric_limits<quint64>::max();
    for (const auto& [gigabytes, bytes] : std::vector<std::pair<double, quint64>>{
             {0.0, 100000000u}, {2.5, 2500000000u}, {qQNaN(), kMax}, {1e12, kMax}}) {
        m_monitor.setMonthlyWifiLimitGB(gigabytes);
        EXPECT_EQ(m_monitor.monthlyWifiLimitBytes(), bytes) << gigabytes;
    }
    EXPECT_EQ(m_monitor.remainingMonthlyWifiBytes(), std::numeric_limits<qint64>::max());

    m_monitor.setMonthlyWifiLimitGB(0.0);
    startAndWait();
    m_counters.add("eth0", 150000000, 50000000);
    nextSample();
    EXPECT_EQ(m_monitor.remainingMonthlyWifiBytes(), -100000000);
}

TEST_F(BandwidthMonitorTest, DailyUsageOfTheLocalDayUpToEighteen) {
    QJsonObject apps;
    for (int i = 1; i <= 20; ++i) {
        apps.insert(QStringLiteral("app%1").arg(i), QJsonObject{{"received", i}});
    }
    const QJsonObject root{{"dates", QJsonObject{{UsageCache::calendarDate(m_clock.now()), apps}}}};
    QFile file(m_dir.filePath("usage-by-date.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(root).toJson()) > 0);
    file.close();

    startAndWait();
    const QList<CachedAppUsage> usages = m_monitor.cachedAppUsages();
    EXPECT_EQ(std::tuple(usages.size(), usages.value(0).name, usages.value(17).name),
              std::tuple(18, "app20", "app3"));
}

TEST_F(BandwidthMonitorTest, BlockingStopsTheProcessAndHidesIt) {
    setProcesses("t a.1 0 0\nt b.2 0 0\nt c.3 0 0\n");
    startAndWait();
    setProcesses("t a.1 100 0\nt b.2 200 0\nt c.3 300 40\n");
    nextSample();
    EXPECT_EQ(m_monitor.processUsages().value(0),
              (ProcessUsage{"c.3", "c", 3, 150.0, 20.0, 340, 0}));

    m_signals.fail(3, SIGSTOP, EPERM);
    m_monitor.blockNetworkAccess(m_monitor.processUsages().first());  // c.3, refused
    using Sent = std::vector<std::pair<Pid, int>>;
    EXPECT_EQ(m_signals.sent(), (Sent{{3, SIGSTOP}}));
    EXPECT_TRUE(m_monitor.blockedProcessIDs().isEmpty());
    EXPECT_EQ(pidsOf(m_monitor.processUsages()), (QList<qint32>{3, 2, 1}));

    const ProcessUsage b = m_monitor.processUsages().at(1);
    m_monitor.blockNetworkAccess(b);
    m_monitor.blockNetworkAccess(b);
    EXPECT_EQ(m_signals.sent(), (Sent{{3, SIGSTOP}, {2, SIGSTOP}, {2, SIGSTOP}}));
    EXPECT_EQ(m_monitor.blockedProcessIDs(), QSet<qint32>{2});
    EXPECT_EQ(pidsOf(m_monitor.processUsages()), (QList<qint32>{3, 1}));
    setProcesses("t a.1 200 0\nt b.2 400 0\nt c.3 600 0\n");
    nextSample();
    EXPECT_EQ(pidsOf(m_monitor.processUsages()), (QList<qint32>{3, 1}));  // b.2 still hidden
}

TEST_F(BandwidthMonitorTest,
       ProcessUsagesRatesWithFloorAndSmoothingSilentOnesLeftOutGoneForgotten) {
    EXPECT_TRUE(build(counters({{"a", 1, 1000, 1000}, {"quiet", 2, 5, 5}, {"gone", 3, 5, 5}}), 0)
                    .isEmpty());
    // 0.1 s later counts as half a second; a silent process is left out.
    EXPECT_EQ(rates(build(counters({{"a", 1, 1500, 1000}, {"quiet", 2, 5, 5}}), 0.1)),
              QStringList{"1 1000.000 0.000 500"});
    // The input counter falls: no delta that way; the output side is unaffected and, from
    // 0.0, takes its raw rate. "gone" was left out of the previous reading, so it starts over.
    EXPECT_EQ(rates(build(counters({{"a", 1, 10, 3000}, {"gone", 3, 500, 5}}), 2.1)),
              QStringList{"1 818.731 1000.000 2000"});
    // Quiet now: the row stays while its rates decay.
    EXPECT_EQ(rates(build(counters({{"a", 1, 10, 3000}, {"gone", 3, 700, 5}}), 4.1)),
              (QStringList{"1 670.320 818.731 0", "3 100.000 0.000 200"}));
    // An empty reading forgets everyone.
    build({}, 6.1);
    EXPECT_TRUE(build(counters({{"gone", 3, 900, 5}}), 8.1).isEmpty());
}

TEST_F(BandwidthMonitorTest, ProcessUsagesBusiestFirstAndAtMostEighteenRows) {
    ProcessCounterMap first;
    ProcessCounterMap second;
    for (int pid = 1; pid <= 19; ++pid) {
        first.insert(ProcessCounter::key("p", pid), {"p", pid, 0, 0});
        second.insert(ProcessCounter::key("p", pid),
                      {"p", pid, static_cast<quint64>(pid) * 100, pid % 2 == 0 ? 50u : 0u});
    }
    build(first, 0);
    EXPECT_EQ(pidsOf(build(second, 2)),
              (QList<qint32>{19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2}));
}

TEST_F(BandwidthMonitorTest, RateHistoryKeepsTheLastFiveMinutesOfSamplesAcrossAReset) {
    startAndWait();
    for (int i = 0; i < BandwidthMonitor::kRateHistoryLength + 4; ++i) {
        m_counters.add("eth0", 2000, 0);
        nextSample();
    }
    const QList<BandwidthMonitor::RateSample>& history = m_monitor.rateHistory();
    ASSERT_EQ(history.size(), BandwidthMonitor::kRateHistoryLength);
    EXPECT_LT(history.first().at, history.last().at);
    EXPECT_DOUBLE_EQ(history.last().download, m_monitor.downloadBytesPerSecond());
    EXPECT_GT(history.last().download, 900.0);
    m_monitor.resetToday();
    EXPECT_EQ(m_monitor.rateHistory().size(), BandwidthMonitor::kRateHistoryLength);
}
