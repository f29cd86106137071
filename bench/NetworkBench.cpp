// Costs of the per-process network table on a busy machine: parsing `ss -tinpH` with 2,000
// sockets over 200 processes, and turning a reading of 500 processes into the table.
#include <benchmark/benchmark.h>

#include <cerrno>

#include "network/BandwidthMonitor.h"
#include "network/SocketStatisticsParser.h"
#include "platform/InterfaceCounters.h"
#include "platform/NetworkNameSource.h"
#include "platform/ProcessNetworkSource.h"
#include "platform/ProcessSignaller.h"
#include "platform/Scheduler.h"
#include "platform/qt/SystemClock.h"

using namespace zelvar;

namespace {

QString syntheticSocketStatistics(int sockets, int processes) {
    QString text;
    for (int i = 0; i < sockets; ++i) {
        const int pid = 1000 + i % processes;
        text += QStringLiteral(
                    "ESTAB 0      0      192.168.1.20:%1 140.82.121.4:443 "
                    "users:((\"process-%2\",pid=%2,fd=%3))\n")
                    .arg(40000 + i)
                    .arg(pid)
                    .arg(3 + i);
        text += QStringLiteral(
                    "\t cubic wscale:7,7 rto:204 rtt:1.2/0.5 mss:1448 cwnd:10 "
                    "bytes_sent:%1 bytes_acked:%1 bytes_received:%2 segs_out:10 "
                    "segs_in:12 send 96Mbps lastsnd:20 lastrcv:20 minrtt:1\n")
                    .arg(i * 1000)
                    .arg(i * 3000);
    }
    return text;
}

void BM_ParseSocketStatistics2000(benchmark::State& state) {
    const QString text = syntheticSocketStatistics(2000, 200);
    for (auto _ : state) {
        benchmark::DoNotOptimize(SocketStatisticsParser::parse(text));
    }
}
BENCHMARK(BM_ParseSocketStatistics2000)->Unit(benchmark::kMillisecond);

// Ports that do nothing: the benchmark calls the table's builder directly.
struct Idle final : InterfaceCounters, ProcessSignaller, Scheduler {
    std::optional<QList<InterfaceCounter>> read() override { return QList<InterfaceCounter>{}; }
    int send(Pid, int) override { return EPERM; }
    SignalResult sendToMeasured(const ProcessIdentity&, int) override {
        return {SignalResult::Outcome::failed, EPERM};
    }
    void callAfter(double, QObject*, std::function<void()>) override {}
};

void BM_BuildProcessUsages500(benchmark::State& state) {
    struct Name final : NetworkNameSource {
        NetworkNameReading read() override { return {}; }
    } name;
    struct Processes final : ProcessNetworkSource {
        ProcessNetworkReading read() override { return {}; }
    } processes;
    Idle idle;
    SystemClock clock;
    BandwidthMonitor monitor({idle, name, processes, idle, clock, idle, QString()});
    ProcessCounterMap counters;
    for (int pid = 1; pid <= 500; ++pid) {
        counters.insert(ProcessCounter::key("p", pid), {"p", pid, 0, 0});
    }
    QDateTime now = clock.now();
    for (auto _ : state) {
        for (ProcessCounter& c : counters) {
            c.inBytes += static_cast<quint64>(c.pid) * 10;
        }
        now = now.addSecs(2);
        benchmark::DoNotOptimize(monitor.buildProcessUsages(counters, now));
    }
}
BENCHMARK(BM_BuildProcessUsages500)->Unit(benchmark::kMicrosecond);

}  // namespace
