#include "daemon/BatterySampler.h"
#include "daemon/CorrelationSampler.h"
#include "daemon/DaemonArguments.h"
#include "daemon/DaemonEventLog.h"
#include "daemon/DiskWriterSampler.h"
#include "daemon/JsonlFile.h"
#include "daemon/NetworkUsageSampler.h"
#include "disk/DiskIOReader.h"
#include "network/UsageCache.h"
#include "power/WattlogBatterySample.h"
#include "power/WattlogCorrelationSample.h"
#include "support/FakePorts.h"
#include "support/Testing.h"

namespace {

constexpr quint64 kMB = 1048576;

// Counters and open files held in memory; a test moves them between passes.
class FakeProcessIO final : public ProcessIOSource {
public:
    QList<ProcessIOCounters> processes;
    QHash<qint32, QList<OpenWriteFile>> files;
    QList<ProcessIOCounters> readAll() override { return processes; }
    QString name(qint32 pid) override {
        ++nameReads;
        return QStringLiteral("p%1").arg(pid);
    }
    int nameReads = 0;
    QList<OpenWriteFile> openWriteFiles(qint32 pid) override { return files.value(pid); }

    void write(qint32 pid, quint64 bytes) {
        for (ProcessIOCounters& p : processes) {
            if (p.pid == pid) {
                p.writeBytes += bytes;
            }
        }
    }
};

QList<QByteArray> linesOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split('\n');
}

}  // namespace

TEST(DiskWriterSamplerTest, WindowsRankTheTopTenAndRoundTripThroughTheReader) {
    QTemporaryDir dir;
    FakeClock clock;
    FakeProcessIO io;
    for (qint32 pid = 1; pid <= 12; ++pid) {
        io.processes.append({pid, {}, 0, 0});
    }
    io.files[12] = {{"/data/logs/a.log", 0}, {"/data/logs/b.log", 0}};
    DiskWriterSampler sampler(io);
    JsonlFile log(dir.filePath("diskio.jsonl"), DiskWriterSampler::kCapBytes);

    sampler.sampleInto(log, clock.now(), false, 30, 0);  // the baseline
    // Four minutes ago: pid 1 writes a lot; within the last minute every pid writes its pid in
    // MB, and pid 12's two files grow by 3 and 5 MB.
    clock.advance(60);
    io.write(1, 500 * kMB);
    io.write(4, 10 * kMB);
    sampler.sample(clock.now());
    clock.advance(200);
    for (qint32 pid = 1; pid <= 12; ++pid) {
        io.write(pid, pid * kMB);
    }
    io.processes[3].writeBytes = 0;  // pid 4's counter went back: it counts 0
    io.files[12] = {{"/data/logs/a.log", qint64(3 * kMB)}, {"/data/logs/b.log", qint64(5 * kMB)}};
    sampler.sampleInto(log, clock.now(), true, 30, 0.02);

    const DiskIORead read = DiskIOReader(log.path()).read();
    ASSERT_TRUE(read.summary);
    EXPECT_EQ(read.summary->timestamp, clock.now());
    EXPECT_DOUBLE_EQ(read.summary->rusageOverheadPct, 0.02);
    const auto minute = read.summary->windowData("1m");
    ASSERT_TRUE(minute);
    ASSERT_EQ(minute->topWriters.size(), DiskWriterSampler::kTopCount);
    EXPECT_EQ(minute->topWriters.first().name, "p12");
    EXPECT_EQ(minute->topWriters.first().pid, 12);
    EXPECT_DOUBLE_EQ(minute->topWriters.first().writtenMB, 12.0);
    // 12..5, 3 and 2: pid 4 counted nothing, pid 1 only 1 MB.
    EXPECT_EQ(minute->topWriters[8].pid, 3);
    EXPECT_EQ(minute->topWriters.last().pid, 2);
    ASSERT_EQ(minute->topFiles.size(), 2);
    EXPECT_EQ(minute->topFiles[0].path, "/data/logs/b.log");
    // A file first measured grew by at most what its writer wrote in the pass.
    EXPECT_DOUBLE_EQ(minute->topFiles[0].writtenMB, 5.0);
    ASSERT_EQ(minute->topDirectories.size(), 1);
    EXPECT_EQ(minute->topDirectories[0].path, "/data/logs");
    EXPECT_DOUBLE_EQ(minute->topDirectories[0].writtenMB, 8.0);
    const auto fiveMinutes = read.summary->windowData("5m");
    ASSERT_TRUE(fiveMinutes);
    EXPECT_EQ(fiveMinutes->topWriters.first().pid, 1);
    EXPECT_DOUBLE_EQ(fiveMinutes->topWriters.first().writtenMB, 501.0);
    EXPECT_TRUE(read.summary->windowData("30m"));
    EXPECT_TRUE(read.bursts.isEmpty()) << "500 MB four minutes ago is outside the burst window";
    // Every pid counted at some pass, pids 1 and 4 twice: each name is read once.
    EXPECT_EQ(io.nameReads, 12);
}

TEST(DiskWriterSamplerTest, ABurstIsLoggedOnceWhileItLastsAndAgainAfterItEnded) {
    QTemporaryDir dir;
    FakeClock clock;
    FakeProcessIO io;
    io.processes = {{7, {}, 0, 0}};
    DiskWriterSampler sampler(io);
    JsonlFile log(dir.filePath("diskio.jsonl"), DiskWriterSampler::kCapBytes);
    const auto passAfter = [&](double seconds, quint64 bytes) {
        clock.advance(seconds);
        io.write(7, bytes);
        io.files[7] = {{"/big/file", qint64(io.processes[0].writeBytes)}};
        sampler.sampleInto(log, clock.now(), false, 30, 0);
    };
    passAfter(0, 0);
    passAfter(10, 60 * kMB);
    EXPECT_TRUE(DiskIOReader(log.path()).read().bursts.isEmpty());
    passAfter(10, 60 * kMB);  // 120 MB within 30 s: process, directory and file
    passAfter(10, 60 * kMB);  // still going: nothing new
    QList<DiskIOBurst> bursts = DiskIOReader(log.path()).read().bursts;
    ASSERT_EQ(bursts.size(), 3);
    EXPECT_EQ(bursts[0].source, DiskIOBurst::BurstSource::Process);
    EXPECT_EQ(bursts[0].label, "p7");
    EXPECT_EQ(bursts[0].pid, 7);
    EXPECT_DOUBLE_EQ(bursts[0].writtenMB, 120.0);
    EXPECT_EQ(bursts[0].windowS, 30);
    EXPECT_EQ(bursts[1].source, DiskIOBurst::BurstSource::Directory);
    EXPECT_EQ(bursts[1].label, "/big");
    EXPECT_EQ(bursts[2].label, "/big/file");

    passAfter(40, 0);  // quiet: the burst is over
    passAfter(10, 110 * kMB);
    bursts = DiskIOReader(log.path()).read().bursts;
    EXPECT_EQ(bursts.size(), 6);
}

TEST(JsonlFileTest, PastItsCapKeepsTheNewestHalfFromALineBoundary) {
    QTemporaryDir dir;
    JsonlFile file(dir.filePath("sub/samples.jsonl"), 1000);
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(
            file.append(QStringLiteral("{\"n\":\"%1\"}").arg(i, 4, 10, QChar('0')).toUtf8()));
    }
    const QList<QByteArray> lines = linesOf(file.path());
    EXPECT_LE(QFileInfo(file.path()).size(), 1000);
    EXPECT_TRUE(lines.last().isEmpty()) << "ends with a newline";
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
        EXPECT_TRUE(QJsonDocument::fromJson(lines[i]).isObject())
            << "whole lines only: " << lines[i].constData();
    }
    EXPECT_EQ(lines[lines.size() - 2], "{\"n\":\"0099\"}");
    EXPECT_LT(lines.size(), 100);
}

TEST(JsonlFileTest, AnUnwritableFileDropsLinesAndIsReportedOnceAnHour) {
    QTemporaryDir dir;
    FakeClock clock;
    QDir().mkpath(dir.filePath("blocked"));  // a folder where the file should be
    DaemonEventLog events(dir.filePath("events.jsonl"), clock);
    JsonlFile file(dir.filePath("blocked"), 1000, events.failureHandler());
    EXPECT_FALSE(file.append("{}"));
    clock.advance(1800);
    EXPECT_FALSE(file.append("{}"));
    clock.advance(1801);
    EXPECT_FALSE(file.append("{}"));
    const QList<QByteArray> lines = linesOf(dir.filePath("events.jsonl"));
    ASSERT_EQ(lines.size(), 3);  // two reports and the final newline
    const QJsonObject report = QJsonDocument::fromJson(lines[0]).object();
    EXPECT_EQ(report["event"].toString(), "write_failed");
    EXPECT_EQ(report["file"].toString(), dir.filePath("blocked"));
    EXPECT_FALSE(report["error"].toString().isEmpty());
}

TEST(NetworkUsageSamplerTest, CountsGrowthPerDayKeepsEndedProcessesAndGoesOnAfterARestart) {
    QTemporaryDir dir;
    const QString path = dir.filePath("usage-by-date.json");
    const QTimeZone utc = QTimeZone::utc();
    FakeProcessNetworkSource source;
    const auto counters = [](QList<ProcessCounter> list) {
        ProcessCounterMap map;
        for (const ProcessCounter& c : list) {
            map.insert(c.key(), c);
        }
        return map;
    };
    const QDateTime evening(QDate(2026, 11, 22), QTime(23, 59, 50), utc);
    {
        NetworkUsageSampler sampler(source, path, utc);
        EXPECT_TRUE(sampler.load().isEmpty());
        sampler.count(counters({{"firefox", 10, 1000, 100}}), evening);  // the baseline
        sampler.count(counters({{"firefox", 10, 1500, 150}, {"curl", 11, 70, 7}}),
                      evening.addSecs(5));
        // curl ends; firefox's counter goes back (a socket closed): it counts 0.
        sampler.count(counters({{"firefox", 10, 200, 150}}), evening.addSecs(8));
        // After midnight: the new day.
        sampler.count(counters({{"firefox", 10, 260, 160}}), evening.addSecs(15));
        EXPECT_TRUE(sampler.flush().isEmpty());
    }
    EXPECT_EQ(UsageCache::load(path, "2026-11-22"),
              (QList<CachedAppUsage>{{"firefox", 500, 50}, {"curl", 70, 7}}));
    EXPECT_EQ(UsageCache::load(path, "2026-11-23"), (QList<CachedAppUsage>{{"firefox", 60, 10}}));

    NetworkUsageSampler restarted(source, path, utc);
    EXPECT_TRUE(restarted.load().isEmpty());
    restarted.count(counters({{"firefox", 99, 5, 5}}), evening.addSecs(20));
    restarted.count(counters({{"firefox", 99, 45, 5}}), evening.addSecs(30));
    // 400 days on, the first day is dropped.
    restarted.count(counters({{"firefox", 99, 46, 5}}), evening.addDays(401));
    EXPECT_TRUE(restarted.flush().isEmpty());
    EXPECT_EQ(UsageCache::load(path, "2026-11-23"), (QList<CachedAppUsage>{{"firefox", 100, 10}}));
    EXPECT_TRUE(UsageCache::load(path, "2026-11-22").isEmpty());
}

// Through the real reading: a browser's socket closes while another grows, and the growth
// still counts; a socket shared after a fork counts once, for the lower pid.
TEST(NetworkUsageSamplerTest, CountsEachSocketsGrowthWhenAnotherOfTheProcessCloses) {
    QTemporaryDir dir;
    const QTimeZone utc = QTimeZone::utc();
    FakeProcessNetworkSource source;
    NetworkUsageSampler sampler(source, dir.filePath("usage-by-date.json"), utc);
    const QList<SocketOwner> browser{{40, "browser"}};
    const auto read = [&](QList<SocketRecord> sockets, int second) {
        source.set({ProcessNetworkReading::Grammar::SocketRecords, {}, std::move(sockets), {}});
        sampler.sample(QDateTime(QDate(2026, 11, 22), QTime(12, 0, second), utc));
    };
    read({{browser, 9000, 900, 1}, {browser, 100, 10, 2}}, 0);  // the baseline
    read({{browser, 400, 40, 2}, {{{41, "browser"}, {40, "browser"}}, 50, 5, 3}}, 10);
    read({{browser, 450, 41, 2}, {{{40, ""}}, 70, 7, 4}}, 20);
    EXPECT_EQ(sampler.days().value("2026-11-22"), (QList<CachedAppUsage>{{"browser", 400, 36}}));
}

TEST(PowerSamplersTest, BatteryAndCorrelationLinesDecodeThroughThePowerReaders) {
    QTemporaryDir dir;
    FakeClock clock;
    const BatteryReading battery{.percent = 64,
                                 .isExternalConnected = false,
                                 .isCharging = false,
                                 .amperageMA = -1500,
                                 .voltageMV = 12000,
                                 .maxCapacity = 4000,
                                 .cycleCount = 12};
    JsonlFile batteryFile(dir.filePath("battery-samples.jsonl"), BatterySampler::kCapBytes);
    BatterySampler::sampleInto(batteryFile, battery, clock.now());
    BatterySampler::sampleInto(batteryFile, std::nullopt, clock.now());  // no battery: no line
    const QList<QByteArray> batteryLines = linesOf(batteryFile.path());
    ASSERT_EQ(batteryLines.size(), 2);
    const auto decoded = WattlogBatterySample::decode(batteryLines[0]);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->date(), clock.now());
    EXPECT_EQ(decoded->percent(), 64);
    EXPECT_EQ(decoded->flow(), "discharge");
    EXPECT_EQ(decoded->menuPowerRateText(), "-50%");
    EXPECT_NEAR(decoded->watts().value(), 18.0, 1e-9);

    FakeReadingSource<SystemLoadSource, SystemLoadReading> load;
    FakeInterfaceCounters interfaces;
    FakeNetworkNameSource name;
    interfaces.set({{"wlan0", 1000, 100, true}, {"lo", 50, 50, false}});
    name.set({NetworkNameReading::Form::ConnectionName, "Home"});
    load.set({.cpu = CpuTicks{100, 50, 850, 0},
              .memory = MemoryFigures{8 * 1024 * 1024, 2 * 1024 * 1024, 1024 * 1024, 512 * 1024},
              .load1m = 0.5,
              .processCount = 2,
              .diskReadBytes = 0,
              .diskWrittenBytes = 0,
              .backlightBrightness = 30,
              .backlightMaximum = 120,
              .hottestZoneMilliC = 80000});
    CorrelationSampler sampler({load, interfaces, name});
    JsonlFile samples(dir.filePath("samples.jsonl"), CorrelationSampler::kCapBytes);
    sampler.sampleInto(samples, battery, clock.now());
    clock.advance(10);
    load.set({.cpu = CpuTicks{130, 60, 910, 0},
              .memory = MemoryFigures{8 * 1024 * 1024, 2 * 1024 * 1024, 1024 * 1024, 512 * 1024},
              .diskReadBytes = 1024 * 100,
              .diskWrittenBytes = 1024 * 300});
    interfaces.add("wlan0", 20480, 10240);
    interfaces.add("lo", 999999, 999999);
    sampler.sampleInto(samples, std::nullopt, clock.now());

    const QList<QByteArray> lines = linesOf(samples.path());
    ASSERT_EQ(lines.size(), 3);
    const auto first = WattlogCorrelationSample::decode(lines[0]);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->processCount, 2);
    EXPECT_EQ(first->ramUsedPercent, 75.0);
    EXPECT_EQ(first->memUsedMB, 6144);
    EXPECT_EQ(first->swapUsedMB, 512);
    EXPECT_EQ(first->displayBrightnessPercent, 25.0);
    EXPECT_EQ(first->thermalLevel, 2);
    EXPECT_EQ(first->wifiSSID, "Home");
    EXPECT_EQ(first->batteryPercent, 64);
    EXPECT_EQ(first->powerFlow, "discharge");
    EXPECT_FALSE(first->cpuUtil) << "no rates before a second pass";
    const auto second = WattlogCorrelationSample::decode(lines[1]);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->cpuUser, 30.0);
    EXPECT_EQ(second->cpuSystem, 10.0);
    EXPECT_EQ(second->cpuUtil, 40.0);
    EXPECT_EQ(second->diskReadKBPS, 10.0);
    EXPECT_EQ(second->diskWriteKBPS, 30.0);
    EXPECT_EQ(second->netInterface, "wlan0");
    EXPECT_EQ(second->netInDelta, 20480);
    EXPECT_EQ(second->netOutKBPS, 1.0);
    EXPECT_EQ(second->source, "AC");
    EXPECT_EQ(second->powerFlow, "ac_idle");
}

TEST(DaemonArgumentsTest, TakesTheThreeOptionsAndNamesWhatIsWrong) {
    const auto parsed = DaemonArguments::parse(
        {"--interval", "2.5", "--log-file", "/tmp/events.jsonl", "--ram-threshold", "80"});
    ASSERT_TRUE(parsed.arguments);
    EXPECT_EQ(parsed.arguments->intervalSeconds, 2.5);
    EXPECT_EQ(parsed.arguments->ramThresholdPercent, 80.0);
    EXPECT_EQ(DaemonArguments::parse(parsed.arguments->toList()).arguments->logFile,
              "/tmp/events.jsonl");
    const QList<std::pair<QStringList, QString>> refused = {
        {{"--log-file", "/l", "--disk-threshold", "5"}, "unknown argument '--disk-threshold'"},
        {{"--log-file", "/l", "--interval"}, "'--interval' needs a value"},
        {{"--log-file", "/l", "--interval", "0"}, "'--interval' takes seconds"},
        {{"--log-file", "/l", "--ram-threshold", "x"}, "'--ram-threshold' takes a percentage"},
        {{"--log-file", "relative"}, "'--log-file' takes an absolute path"},
        {{"--log-file", "/a", "--log-file", "/b"}, "'--log-file' given twice"},
        {{"--interval", "10"}, "'--log-file' is required"}};
    for (const auto& [words, message] : refused) {
        const auto result = DaemonArguments::parse(words);
        EXPECT_FALSE(result.arguments) << words.join(' ').toStdString();
        EXPECT_TRUE(result.error.startsWith(message)) << result.error.toStdString();
    }
}
