// Costs of the two per-cycle passes over a snapshot: building the process forest and
// detecting both origins of every process, over 5,000 synthetic processes in three shapes.
#include <benchmark/benchmark.h>

#include <QHash>
#include <QRandomGenerator>
#include <algorithm>

#include "platform/ServiceJobs.h"
#include "platform/qt/SystemClock.h"
#include "process/ProcessOriginDetector.h"
#include "process/ProcessTreeBuilder.h"

using namespace zelvar;

namespace {

constexpr int kProcesses = 5000;

enum Shape { Deep, Wide, Bushy };

// Pid 1 at the top. Deep: one chain. Wide: everything a child of pid 1. Bushy: each process
// a child of a random earlier one, about one in ten a shell, as on a busy desktop. Ordered by
// memory, largest first, as a snapshot is.
QList<ProcessInfo> snapshot(Shape shape) {
    QRandomGenerator random(5000);
    QList<ProcessInfo> processes;
    processes.reserve(kProcesses);
    for (Pid pid = 1; pid <= kProcesses; ++pid) {
        Pid ppid = 0;
        if (pid > 1) {
            ppid = shape == Deep   ? pid - 1
                   : shape == Wide ? 1
                                   : 1 + static_cast<Pid>(random.bounded(pid - 1));
        }
        const bool shell = shape == Bushy && random.bounded(10) == 0;
        processes.append(
            ProcessInfo{pid,
                        ppid,
                        shell ? QStringLiteral("bash") : QStringLiteral("process-%1").arg(pid),
                        random.bounded(500.0),
                        0.0,
                        QDateTime(),
                        {},
                        {}});
    }
    std::stable_sort(processes.begin(), processes.end(),
                     [](const auto& a, const auto& b) { return a.memoryMB > b.memoryMB; });
    return processes;
}

// Fifty running services, every hundredth pid.
class SyntheticJobs final : public ServiceJobs {
public:
    QList<ServiceJobListing> runningJobListings() override {
        QByteArray text;
        for (int pid = 100; pid <= kProcesses; pid += 100) {
            text += "Id=service-" + QByteArray::number(pid) +
                    ".service\nMainPID=" + QByteArray::number(pid) + "\n\n";
        }
        return {{ServiceJobListing::Format::SystemdShow, text}};
    }
};

void BM_TreeBuild(benchmark::State& state) {
    const QList<ProcessInfo> processes = snapshot(static_cast<Shape>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(ProcessTreeBuilder::build(processes));
    }
}

// A detector whose job map is already loaded, so that the loops time the walk alone.
struct ReadyDetector {
    ReadyDetector() { detector.refresh(); }
    SyntheticJobs jobs;
    SystemClock clock;
    ProcessOriginDetector detector{jobs, clock, linuxSystemProfile().originNames};
};

void BM_OriginDetection(benchmark::State& state) {
    const QList<ProcessInfo> processes = snapshot(static_cast<Shape>(state.range(0)));
    ReadyDetector ready;
    for (auto _ : state) {
        QList<ProcessInfo> copy = processes;
        ready.detector.assignOrigins(copy);
        benchmark::DoNotOptimize(copy);
    }
}

void BM_OriginsAndTree(benchmark::State& state) {
    const QList<ProcessInfo> processes = snapshot(static_cast<Shape>(state.range(0)));
    ReadyDetector ready;
    for (auto _ : state) {
        QList<ProcessInfo> copy = processes;
        ready.detector.assignOrigins(copy);
        benchmark::DoNotOptimize(ProcessTreeBuilder::build(copy));
    }
}

void shapes(benchmark::internal::Benchmark* b) {
    b->ArgName("shape")->Arg(Deep)->Arg(Wide)->Arg(Bushy)->Unit(benchmark::kMillisecond);
}

}  // namespace

BENCHMARK(BM_TreeBuild)->Apply(shapes);
BENCHMARK(BM_OriginDetection)->Apply(shapes);
BENCHMARK(BM_OriginsAndTree)->Apply(shapes);
