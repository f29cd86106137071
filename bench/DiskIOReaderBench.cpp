// The disk I/O log's tail read on a 50 MB log: its cost must not grow with the file.
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include "disk/DiskIOReader.h"

using namespace zelvar;

namespace {

// A log of `megabytes` MB: mostly bursts, with a summary of three windows every 30 lines.
QString writeLog(const QTemporaryDir& dir, int megabytes) {
    const QString path = dir.filePath(QStringLiteral("diskio-%1.jsonl").arg(megabytes));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return {};
    }
    QByteArray window;
    for (const char* name : {"1m", "5m", "30m"}) {
        window += QByteArray(R"({"window":")") + name + R"(","top_writers":[)";
        for (int i = 0; i < 10; ++i) {
            window += QByteArray(i ? "," : "") + R"({"name":"writer)" + QByteArray::number(i) +
                      R"(","pid":)" + QByteArray::number(1000 + i) +
                      R"(,"written_mb":12.5,"read_mb":1.25})";
        }
        window += R"(],"top_directories":[{"path":"/home/ada/.cache/build","written_mb":40}],)"
                  R"("top_files":[{"path":"/home/ada/.cache/build/out.o","written_mb":8}]},)";
    }
    window.chop(1);
    const QByteArray summary =
        R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00Z","windows":[)" + window +
        "]}\n";
    const QByteArray burst =
        R"({"type":"diskio_burst","timestamp":"2026-01-15T10:00:00Z","source":"process",)"
        R"("process":"rsync","pid":4242,"written_mb":120.5,"window_s":30})"
        "\n";
    const qint64 target = static_cast<qint64>(megabytes) << 20;
    qint64 written = 0;
    for (int line = 0; written < target; ++line) {
        written += file.write(line % 30 == 0 ? summary : burst);
    }
    return path;
}

void BM_DiskIOReaderRead(benchmark::State& state) {
    QTemporaryDir dir;
    const QString path = writeLog(dir, static_cast<int>(state.range(0)));
    const DiskIOReader reader(path);
    for (auto _ : state) {
        const DiskIORead read = reader.read(DiskIOReader::kDefaultBurstLimit);
        if (!read.summary || read.bursts.size() != DiskIOReader::kDefaultBurstLimit) {
            state.SkipWithError("the log didn't read back");
            break;
        }
        benchmark::DoNotOptimize(read);
    }
}
BENCHMARK(BM_DiskIOReaderRead)->Arg(1)->Arg(50)->Unit(benchmark::kMicrosecond);

}  // namespace
