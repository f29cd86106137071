// The power monitor's read of the newest 240 battery samples: its cost must not grow with the
// daemon's file.
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include "power/WattlogSampleFiles.h"

using namespace zelvar;

namespace {

// A battery sample file of about `megabytes` MB, one sample a line as the daemon writes it.
QString writeSamples(const QTemporaryDir& dir, int megabytes) {
    const QString path = dir.filePath(QStringLiteral("battery-samples-%1.jsonl").arg(megabytes));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return {};
    }
    const qint64 target = static_cast<qint64>(megabytes) << 20;
    qint64 written = 0;
    for (qint64 ts = 1768000000; written < target; ts += 30) {
        written +=
            file.write(QByteArray(R"({"ts":)") + QByteArray::number(ts) +
                       R"(,"source":"Battery","charging":false,"current":-1480,"voltage":12366,)"
                       R"("capacity":4541,"max_capacity":4901,"design_capacity":4912,)"
                       R"("temperature_c":30.5,"cycle_count":412,"percent":92,"watts":18.3})"
                       "\n");
    }
    return path;
}

void BM_WattlogLast240BatterySamples(benchmark::State& state) {
    QTemporaryDir dir;
    const QString path = writeSamples(dir, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const QList<WattlogBatterySample> samples =
            WattlogSampleFiles::readJSONLLines<WattlogBatterySample>(
                path, WattlogSampleFiles::kRecentLimit);
        if (samples.size() != WattlogSampleFiles::kRecentLimit) {
            state.SkipWithError("the samples didn't read back");
            break;
        }
        benchmark::DoNotOptimize(samples);
    }
}
BENCHMARK(BM_WattlogLast240BatterySamples)->Arg(1)->Arg(50)->Unit(benchmark::kMicrosecond);

}  // namespace
