#pragma once

#include "network/BandwidthMonitor.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Testing.h"

namespace zelvar::test {

// A BandwidthMonitor on fake sources, sampled one step of the fake clock at a time: a
// physical eth0, a tunnel and loopback; the network "Home"; no per-process output.
class BandwidthMonitorFixture : public ::testing::Test {
protected:
    BandwidthMonitorFixture() {
        m_counters.set(
            {{"lo", 1000, 1000, false}, {"eth0", 10000, 5000, true}, {"tun0", 100, 100, false}});
        m_names.set({NetworkNameReading::Form::ConnectionName, "Home"});
        m_processes.set({ProcessNetworkReading::Grammar::Nettop, {}});
        QObject::connect(&m_monitor, &BandwidthMonitor::sampleFinished, [this] { ++m_samples; });
    }

    void startAndWait() {
        m_monitor.start();
        ASSERT_TRUE(processEventsUntil([this] { return m_samples == 1; }));
    }
    // The next sample falls due two seconds after the previous one ended.
    void nextSample() {
        const int expected = m_samples + 1;
        m_clock.advance(2.0);
        ASSERT_TRUE(processEventsUntil([&] { return m_samples == expected; }));
    }
    // The rates to a thousandth, today's totals and the month's Wi-Fi bytes, in one line.
    std::string figures() const {
        return QString::asprintf(
                   "down %.3f up %.3f in %llu out %llu wifi %llu",
                   m_monitor.downloadBytesPerSecond(), m_monitor.uploadBytesPerSecond(),
                   qulonglong(m_monitor.todayReceivedBytes()),
                   qulonglong(m_monitor.todaySentBytes()), qulonglong(m_monitor.monthWifiBytes()))
            .toStdString();
    }
    QList<ProcessUsage> build(const ProcessCounterMap& counters, double atSeconds) {
        return m_monitor.buildProcessUsages(counters,
                                            m_clock.now().addMSecs(qint64(atSeconds * 1000)));
    }
    void setProcesses(const QString& nettopRows) {
        m_processes.set({ProcessNetworkReading::Grammar::Nettop,
                         ("time bytes_in bytes_out\n" + nettopRows).toUtf8()});
    }

    QTemporaryDir m_dir;
    FakeClock m_clock;
    FakeInterfaceCounters m_counters;
    FakeNetworkNameSource m_names;
    FakeProcessNetworkSource m_processes;
    FakeProcessSignaller m_signals;
    BandwidthMonitor m_monitor{{m_counters, m_names, m_processes, m_signals, m_clock, m_clock,
                                m_dir.filePath("usage-by-date.json")}};
    int m_samples = 0;
};

}  // namespace zelvar::test
