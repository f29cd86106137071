// Costs of one per-process network sample on Linux with 2,000 TCP sockets held open by this
// process (1,000 loopback connections to itself): the kernel's socket diagnostics over netlink
// with the cached map of socket owners, steady and with its full read of /proc (every 30 s),
// and, beside them, running `ss -tinpH` and parsing its output, whose child's CPU time shows
// in `child_cpu_ms`.
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <vector>

#include "network/BandwidthMonitor.h"
#include "platform/linux/SockDiagProcessNetworkSource.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/SystemClock.h"
#include "platform/qt/ToolNetworkSources.h"

using namespace zelvar;

namespace {

constexpr int kConnections = 1000;

// Loopback connections of this process to itself, both ends held until exit.
class LoopbackConnections {
public:
    explicit LoopbackConnections(int count) {
        rlimit limit{};
        if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 &&
            limit.rlim_cur < static_cast<rlim_t>(2 * count + 64)) {
            limit.rlim_cur = std::min(limit.rlim_max, static_cast<rlim_t>(2 * count + 64));
            ::setrlimit(RLIMIT_NOFILE, &limit);
        }
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* any = reinterpret_cast<sockaddr*>(&address);
        socklen_t length = sizeof address;
        m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (::bind(m_listener, any, length) != 0 || ::listen(m_listener, 64) != 0 ||
            ::getsockname(m_listener, any, &length) != 0) {
            return;
        }
        for (int i = 0; i < count; ++i) {
            const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
            if (client < 0 || ::connect(client, any, length) != 0) {
                return;
            }
            const int server = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (server < 0) {
                return;
            }
            // Some traffic, so that every socket has counters to sum.
            const char byte = 'x';
            if (::send(client, &byte, 1, 0) != 1) {
                return;
            }
            m_sockets.insert(m_sockets.end(), {client, server});
        }
    }
    ~LoopbackConnections() {
        for (const int fd : m_sockets) {
            ::close(fd);
        }
        ::close(m_listener);
    }
    LoopbackConnections(const LoopbackConnections&) = delete;
    LoopbackConnections& operator=(const LoopbackConnections&) = delete;

    qsizetype sockets() const { return static_cast<qsizetype>(m_sockets.size()); }

private:
    int m_listener = -1;
    std::vector<int> m_sockets;
};

// Opened once, on the first benchmark that needs them.
bool heldOpen(benchmark::State& state) {
    static const LoopbackConnections connections(kConnections);
    if (connections.sockets() != 2 * kConnections) {
        state.SkipWithError("could not open the loopback connections");
        return false;
    }
    return true;
}

void BM_SockDiagSample2000Sockets(benchmark::State& state) {
    if (!heldOpen(state)) {
        return;
    }
    SystemClock clock;
    QProcessCommandRunner runner;
    SockDiagProcessNetworkSource source(runner, clock);
    source.read();  // the full read of /proc, measured below
    qsizetype processes = 0;
    for (auto _ : state) {
        processes = BandwidthMonitor::readProcessCounters(source).size();
    }
    state.counters["processes"] = static_cast<double>(processes);
}
BENCHMARK(BM_SockDiagSample2000Sockets)->Unit(benchmark::kMillisecond);

void BM_SockDiagFullRead2000Sockets(benchmark::State& state) {
    if (!heldOpen(state)) {
        return;
    }
    SystemClock clock;
    QProcessCommandRunner runner;
    for (auto _ : state) {
        SockDiagProcessNetworkSource source(runner, clock);
        benchmark::DoNotOptimize(BandwidthMonitor::readProcessCounters(source));
    }
}
BENCHMARK(BM_SockDiagFullRead2000Sockets)->Unit(benchmark::kMillisecond);

void BM_SocketStatisticsSample2000Sockets(benchmark::State& state) {
    if (!heldOpen(state)) {
        return;
    }
    QProcessCommandRunner runner;
    SocketStatisticsProcessNetworkSource source(runner);
    rusage before{};
    ::getrusage(RUSAGE_CHILDREN, &before);
    for (auto _ : state) {
        benchmark::DoNotOptimize(BandwidthMonitor::readProcessCounters(source));
    }
    rusage after{};
    ::getrusage(RUSAGE_CHILDREN, &after);
    const auto milliseconds = [](const rusage& usage) {
        return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
               (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
    };
    state.counters["child_cpu_ms"] = benchmark::Counter(milliseconds(after) - milliseconds(before),
                                                        benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_SocketStatisticsSample2000Sockets)->Unit(benchmark::kMillisecond);

}  // namespace
