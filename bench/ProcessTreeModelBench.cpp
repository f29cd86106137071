// Cost on the main thread of one monitoring cycle's refresh of the RAM tab's tree: the model
// following a new forest in place, and the tree view laying out and painting the change, on
// the offscreen platform. Each cycle 5 % of the processes end, as many new ones start under
// random parents (the orphans going to pid 1), and another 5 % change their memory and CPU
// figures.
//
// Targets: under 16 ms per refresh at 1,000 processes (one frame), under 50 ms at 5,000.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QRandomGenerator>
#include <QTreeView>
#include <algorithm>
#include <map>

#include "process/ProcessTreeBuilder.h"
#include "ui/ProcessTreeModel.h"

using namespace zelvar;

namespace {

class Churn {
public:
    explicit Churn(int count) : m_random(count) {
        for (int i = 0; i < count; ++i) {
            start();
        }
    }

    void cycle() {
        const int changed = std::max<int>(1, static_cast<int>(m_live.size()) / 20);
        for (int i = 0; i < changed; ++i) {
            const Pid ending = randomLive();
            if (ending == 1) {
                continue;
            }
            m_live.erase(ending);
            // As on Linux, pid 1 adopts the orphans.
            for (auto& [pid, info] : m_live) {
                if (info.ppid == ending) {
                    info.ppid = 1;
                }
            }
        }
        for (int i = 0; i < changed; ++i) {
            start();
        }
        for (int i = 0; i < changed; ++i) {
            ProcessInfo& info = m_live[randomLive()];
            info.memoryMB = m_random.bounded(800.0);
            info.cpuPercent = m_random.bounded(100.0);
        }
    }

    QList<ProcessNode> forest() const {
        QList<ProcessInfo> processes;
        processes.reserve(static_cast<qsizetype>(m_live.size()));
        for (const auto& [pid, info] : m_live) {
            processes.append(info);
        }
        std::stable_sort(processes.begin(), processes.end(),
                         [](const auto& a, const auto& b) { return a.memoryMB > b.memoryMB; });
        return ProcessTreeBuilder::build(processes);
    }

private:
    Pid randomLive() {
        auto it = m_live.begin();
        std::advance(it, m_random.bounded(static_cast<int>(m_live.size())));
        return it->first;
    }

    void start() {
        ProcessInfo info;
        info.id = m_nextPid++;
        // Pid 1 at the top; the rest under a random living process, as on a busy desktop.
        info.ppid = m_live.empty() ? 0 : randomLive();
        info.name = QStringLiteral("process-%1").arg(info.id);
        info.memoryMB = m_random.bounded(800.0);
        info.cpuPercent = m_random.bounded(100.0);
        info.startTime = static_cast<quint64>(info.id);
        m_live[info.id] = info;
    }

    QRandomGenerator m_random;
    std::map<Pid, ProcessInfo> m_live;
    Pid m_nextPid = 1;
};

void BM_TreeModelRefresh(benchmark::State& state) {
    Churn churn(static_cast<int>(state.range(0)));
    ProcessTreeModel model;
    QTreeView view;
    view.setModel(&model);
    view.resize(900, 600);
    view.show();
    model.setForest(churn.forest());
    const bool everything = state.range(1) != 0;
    if (everything) {
        view.expandAll();
    } else {
        // About what the tab opens by itself: pid 1 and the first level below it.
        const QModelIndex init = model.indexOfPid(1);
        view.expand(init);
        for (int row = 0; row < model.rowCount(init); ++row) {
            view.expand(model.index(row, 0, init));
        }
    }
    QCoreApplication::processEvents();
    for (auto _ : state) {
        state.PauseTiming();
        churn.cycle();
        const QList<ProcessNode> forest = churn.forest();
        state.ResumeTiming();
        model.setForest(forest);
        // The view's deferred layout and the repaint of what changed.
        QCoreApplication::processEvents();
    }
}
// Arguments: the number of processes; whether every row is expanded (1) or only the first two
// levels (0). Each expanded row is a persistent index that Qt adjusts on every row removal,
// walking up to the root, so the fully expanded tree is the dearest case by far.
BENCHMARK(BM_TreeModelRefresh)
    ->Args({1000, 0})
    ->Args({1000, 1})
    ->Args({5000, 0})
    ->Args({5000, 1})
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
