// Costs of one process sample: on this machine, over a synthetic table of 5,000 processes,
// and, for scale, one run of `ps` listing the same facts.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QHash>

#include "common/Log.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/SystemClock.h"
#include "platform/system/PlatformServices.h"
#include "process/ProcessInfoProvider.h"

using namespace zelvar;

namespace {

// A table that answers from memory, so the benchmark measures the sampling logic alone.
class SyntheticTable final : public ProcessTable {
public:
    explicit SyntheticTable(int count) {
        for (int i = 0; i < count; ++i) {
            const Pid pid = i + 1;
            ProcessTableEntry entry;
            entry.pid = pid;
            entry.parentPid = i == 0 ? 0 : (i % 7 == 0 ? 1 : pid - 1);
            m_entries.push_back(entry);
            m_names.insert(pid, QStringLiteral("process-%1").arg(pid));
        }
    }
    std::optional<std::vector<ProcessTableEntry>> list() override { return m_entries; }
    std::optional<QString> name(Pid pid) override { return m_names.value(pid); }
    std::optional<quint64> residentBytes(Pid pid) override {
        return static_cast<quint64>(pid % 97) << 20;
    }
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override {
        return static_cast<quint64>(pid) * (m_calls++);
    }

private:
    std::vector<ProcessTableEntry> m_entries;
    QHash<Pid, QString> m_names;
    quint64 m_calls = 1;
};

// A service manager with no jobs, so the synthetic benchmark runs no tools.
class NoServiceJobs final : public ServiceJobs {
public:
    QList<ServiceJobListing> runningJobListings() override { return {}; }
};

void BM_GetAllProcessesThisMachine(benchmark::State& state) {
    LogRedirect quiet([](const QString&) {});
    auto table = makeProcessTable();
    QProcessCommandRunner runner;
    auto jobs = makeServiceJobs(runner);
    SystemClock clock;
    ProcessInfoProvider provider(*table, runner, *jobs, clock, currentSystemProfile().originNames);
    qsizetype count = 0;
    for (auto _ : state) {
        count = provider.getAllProcesses().size();
    }
    state.counters["processes"] = static_cast<double>(count);
}
BENCHMARK(BM_GetAllProcessesThisMachine)->Unit(benchmark::kMillisecond);

void BM_GetAllProcessesSynthetic5000(benchmark::State& state) {
    LogRedirect quiet([](const QString&) {});
    SyntheticTable table(5000);
    QProcessCommandRunner runner;
    NoServiceJobs jobs;
    SystemClock clock;
    ProcessInfoProvider provider(table, runner, jobs, clock, currentSystemProfile().originNames);
    for (auto _ : state) {
        benchmark::DoNotOptimize(provider.getAllProcesses());
    }
}
BENCHMARK(BM_GetAllProcessesSynthetic5000)->Unit(benchmark::kMillisecond);

void BM_PsListingThisMachine(benchmark::State& state) {
    QProcessCommandRunner runner;
    CommandRequest request;
    request.program = QStringLiteral("/bin/ps");
    request.arguments = {QStringLiteral("-axo"), QStringLiteral("pid=,ppid=,rss=,comm=")};
    for (auto _ : state) {
        benchmark::DoNotOptimize(runner.run(request));
    }
}
BENCHMARK(BM_PsListingThisMachine)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
