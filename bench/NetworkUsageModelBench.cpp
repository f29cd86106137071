// Cost on the main thread of one sample's refresh of the Network tab's table: the model
// following a new list in place by key, and the table view laying out and painting it, on
// the offscreen platform. Each sample 5 % of the processes end, as many new ones start, and
// every rate changes, so the busiest-first order is shuffled.
//
// Target: under 5 ms per refresh at 500 rows.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QTableView>
#include <algorithm>

#include "ui/NetworkUsageModel.h"

using namespace zelvar;

namespace {

class Traffic {
public:
    explicit Traffic(int count) : m_random(count) {
        for (int i = 0; i < count; ++i) {
            start();
        }
    }

    QList<ProcessUsage> sample() {
        const int changed = std::max(1, int(m_rows.size()) / 20);
        for (int i = 0; i < changed; ++i) {
            m_rows.removeAt(m_random.bounded(int(m_rows.size())));
            start();
        }
        for (ProcessUsage& usage : m_rows) {
            usage.downloadBytesPerSecond = m_random.bounded(1e6);
            usage.uploadBytesPerSecond = m_random.bounded(1e5);
        }
        QList<ProcessUsage> sorted = m_rows;
        std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
            return a.combinedBytesPerSecond() > b.combinedBytesPerSecond();
        });
        return sorted;
    }

private:
    void start() {
        const qint32 pid = m_nextPid++;
        const QString name = QStringLiteral("process-%1").arg(pid);
        m_rows.append({ProcessCounter::key(name, pid), name, pid, 0.0, 0.0, 1000, 0});
    }

    QRandomGenerator m_random;
    QList<ProcessUsage> m_rows;
    qint32 m_nextPid = 100;
};

void BM_NetworkTableRefresh(benchmark::State& state) {
    Traffic traffic(static_cast<int>(state.range(0)));
    NetworkUsageModel model;
    QTableView view;
    view.setModel(&model);
    view.resize(900, 500);
    view.show();
    model.setProcessUsages(traffic.sample());
    view.selectRow(3);
    QCoreApplication::processEvents();
    for (auto _ : state) {
        state.PauseTiming();
        const QList<ProcessUsage> usages = traffic.sample();
        state.ResumeTiming();
        model.setProcessUsages(usages);
        QCoreApplication::processEvents();
    }
}
BENCHMARK(BM_NetworkTableRefresh)->Arg(500)->Unit(benchmark::kMillisecond);

}  // namespace
