// The daemon's sampling pass: the storage counters of every readable process with the open
// files of the top writers, and the correlation sample (process count, /proc/stat, meminfo,
// loadavg, diskstats, backlight, thermal zones, interfaces), over this machine's /proc and
// over a synthetic tree of 2,000 processes. Target: a pass every 10 s stays well under 0.1 %
// of one core, so a pass must cost well under 10 ms.
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>

#include "daemon/CorrelationSampler.h"
#include "daemon/DiskWriterSampler.h"
#include "platform/linux/LinuxProcessIOSource.h"
#include "platform/linux/LinuxSystemLoadSource.h"
#include "platform/linux/SysfsInterfaceCounters.h"
#include "platform/null/NullNetworkNameSource.h"

using namespace zelvar;

namespace {

void put(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(content);
    }
}

// A /proc with `count` processes (stat, statm, comm, io, two descriptors each) and the
// machine-wide files copied from the real one.
QString syntheticProc(const QTemporaryDir& dir, int count) {
    const QString root = dir.filePath(QStringLiteral("proc"));
    for (int pid = 1; pid <= count; ++pid) {
        const QString base = root + QLatin1Char('/') + QString::number(pid);
        QDir().mkpath(base + QStringLiteral("/fd"));
        QDir().mkpath(base + QStringLiteral("/fdinfo"));
        const QByteArray name = "proc" + QByteArray::number(pid % 97);
        put(base + QStringLiteral("/stat"), QByteArray::number(pid) + " (" + name +
                                                ") S 1 1 1 0 -1 0 0 0 0 0 10 5 0 0 20 0 1 0 100 "
                                                "1000000 250 0\n");
        put(base + QStringLiteral("/statm"), "1000 250 100 10 0 200 0\n");
        put(base + QStringLiteral("/comm"), name + '\n');
        put(base + QStringLiteral("/io"), "read_bytes: " + QByteArray::number(pid * 4096) +
                                              "\nwrite_bytes: " + QByteArray::number(pid * 8192) +
                                              "\ncancelled_write_bytes: 0\n");
        for (const char* fd : {"1", "2"}) {
            QFile::link(dir.filePath(QStringLiteral("log")), base + QStringLiteral("/fd/") + fd);
            put(base + QStringLiteral("/fdinfo/") + fd, "pos:\t0\nflags:\t0100001\n");
        }
    }
    put(dir.filePath(QStringLiteral("log")), "x");
    for (const char* file : {"stat", "meminfo", "loadavg", "diskstats"}) {
        QFile::copy(QStringLiteral("/proc/") + file, root + QLatin1Char('/') + file);
    }
    return root;
}

// Every process's counters grow a little between passes, as on a busy machine; here the same
// files are read again, so the growth is nil and the pass measures the reading.
void runPasses(benchmark::State& state, const QString& procRoot) {
    LinuxProcessIOSource io(procRoot);
    LinuxSystemLoadSource load(procRoot, QStringLiteral("/sys"));
    SysfsInterfaceCounters interfaces;
    NullNetworkNameSource name;
    DiskWriterSampler writers(io);
    CorrelationSampler correlation({load, interfaces, name});
    QDateTime now(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc());
    for (auto _ : state) {
        now = now.addSecs(10);
        benchmark::DoNotOptimize(writers.sample(now));
        benchmark::DoNotOptimize(correlation.sample(std::nullopt, now));
    }
    state.counters["processes"] = static_cast<double>(io.readAll().size());
}

void BM_DaemonPassThisMachine(benchmark::State& state) {
    runPasses(state, QStringLiteral("/proc"));
}
BENCHMARK(BM_DaemonPassThisMachine)->Unit(benchmark::kMillisecond);

void BM_DaemonPassSynthetic2000(benchmark::State& state) {
    QTemporaryDir dir;
    runPasses(state, syntheticProc(dir, 2000));
}
BENCHMARK(BM_DaemonPassSynthetic2000)->Unit(benchmark::kMillisecond);

}  // namespace
