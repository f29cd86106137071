#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTimeZone>

#include "power/WattlogCache.h"
#include "power/WattlogDerivedData.h"
#include "power/WattlogDiagnostics.h"
#include "power/WattlogHistory.h"
#include "power/WattlogSampleFiles.h"
#include "support/FakePorts.h"
#include "support/Fixture.h"
#include "support/Testing.h"

namespace {

using K = WattlogEventKind;
using D = WattlogDiagnostics;

const QDateTime kBase = QDateTime(QDate(2024, 3, 1), QTime(10, 0), QTimeZone::utc());

WattlogEvent at(double seconds, K kind, QString detail = "x", std::optional<int> percent = {},
                QString raw = {}) {
    return {WattlogEvent::newId(),
            kBase.addMSecs(static_cast<qint64>(seconds * 1000)),
            kind,
            std::move(detail),
            percent,
            std::nullopt,
            std::move(raw)};
}

// The rule as first written: every new event against every kept one.
QList<WattlogEvent> plainDeduplicated(const QList<WattlogEvent>& events) {
    QList<WattlogEvent> kept;
    for (const WattlogEvent& e : events) {
        const bool duplicate = std::any_of(kept.begin(), kept.end(), [&e](const WattlogEvent& k) {
            return k.kind == e.kind && std::abs(k.timestamp.msecsTo(e.timestamp)) < 2000 &&
                   (k.detail == e.detail || k.kind != K::BatteryLevel);
        });
        if (!duplicate) {
            kept.append(e);
        }
    }
    return kept;
}

void write(const QString& path, const QByteArray& data) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(data);
}

QStringList reportNames(const QString& fixture) {
    static const QRegularExpression name(
        R"(([\w.\-]+_\d{4}-\d{2}-\d{2}-\d{6}[\w.\-]*|JetsamEvent-[\d-]+\.ips))");
    QStringList names;
    for (auto it = name.globalMatch(readFixture(fixture)); it.hasNext();) {
        names << it.next().captured(1);
    }
    return names;
}

}  // namespace

TEST(WattlogHistoryTest, DiagnosticReportNames) {
    // The names of a real DiagnosticReports listing and a copy script.
    QStringList names = reportNames("power/diagnostic/ls-al-elcapitan.txt") +
                        reportNames("power/diagnostic/names-copy-script-macmini.txt");
    names.removeDuplicates();
    ASSERT_EQ(names.size(), 22);
    QMap<K, int> kinds;
    int none = 0;
    for (const QString& n : names) {
        if (const auto e = D::parseDiagnosticReport(n, "/nowhere")) {
            ++kinds[e->kind];
            EXPECT_EQ(e->rawLine, n);
        } else {
            ++none;
        }
    }
    // 8 wakeups_resource.diag, 6 .diag and 3 .cpu_resource.diag are crashes; the .awd, the
    // shutdown stall and the JetsamEvent-...-220920.ips in Retired/ (matched by its own name).
    EXPECT_EQ(kinds, (QMap<K, int>{{K::AppCrash, 17}, {K::JetsamEvent, 1}}));
    EXPECT_EQ(none, 4);

    const auto cpu = D::parseDiagnosticReport(
        "Safari_2025-10-31-193718_Ittipongs-Mac-mini.cpu_resource.diag", "/x");
    EXPECT_EQ(cpu->detail, "Safari CPU resource limit");
    EXPECT_EQ(cpu->timestamp, QDateTime(QDate(2025, 10, 31), QTime(19, 37, 18)).toUTC());
    EXPECT_EQ(D::parseDiagnosticReport("Safari_2024-03-01-101500_MacBook.hang", "/x")->detail,
              "Safari stopped responding");
    EXPECT_EQ(D::parseDiagnosticReport("Safari_2024-03-01-101500_MacBook.ips", "/x")->detail,
              "Safari crashed");
    EXPECT_EQ(D::parseDiagnosticReport("JetsamEvent-2024-03-01-101500.ips", "/x")->kind,
              K::JetsamEvent);
    EXPECT_FALSE(D::parseDiagnosticReport("JetsamReport_2024-03-01-101500_x.ips", "/x"));
    EXPECT_FALSE(D::parseDiagnosticReport("Kernel_2024-13-01-101500_Mac.panic", "/x"));
    EXPECT_FALSE(D::parseDiagnosticReport("Safari_MacBook.ips", "/x"));
}

TEST(WattlogHistoryTest, PanicReportsAndRecords) {
    QTemporaryDir dir;
    // Both real panic reports start with a one-line header object, so the text up to the first
    // closing line isn't one JSON value: their reason is the default.
    for (const char* sample :
         {"ios14-json-header.txt", "macos13-intel-json.txt", "mojave-text.txt"}) {
        write(dir.filePath(QString("Kernel_2024-03-01-1015%1_Mac.panic")
                               .arg(std::strlen(sample) % 60, 2, 10, QChar('0'))),
              readFixture(QString("power/panic/") + sample).toUtf8());
    }
    write(dir.filePath("Kernel_2024-03-02-101500_Mac.panic"),
          "{\n  \"panicString\" : \"panic(cpu 0 caller 0xfffffe0011223344): watchdog timeout\\n"
          "more\"\n}\nrest");
    // No closing line within the first 4096 characters.
    write(dir.filePath("Kernel_2024-03-03-101500_Mac.panic"), QByteArray(5000, 'a') + "{\n}\n");
    const QList<WattlogEvent> events = D::loadDiagnosticEvents(
        {dir.path(), "/no/such/folder"}, kBase, {"Kernel_2024-03-01-101515_Mac.panic"});
    QStringList details;
    for (const WattlogEvent& e : events) {
        details << e.detail;
    }
    EXPECT_EQ(details,
              (QStringList{"Kernel Panic", "Kernel Panic", "watchdog timeout", "Kernel Panic"}));
    // An event dated exactly at `since` is left out.
    EXPECT_EQ(D::loadDiagnosticEvents({dir.path()}, events[2].timestamp, {}).size(), 1);

    QTemporaryDir pstore;
    write(pstore.filePath("dmesg-efi-170000000001"),
          "Panic#1 Part1\n<0>[  12.5] Kernel panic - not syncing: VFS: Unable to mount root fs\n");
    write(pstore.filePath("dmesg-efi-170000000002"), "Oops#1 Part1\n<4>[ 1.0] BUG: x\n");
    const QList<WattlogEvent> records = D::loadPanicRecords({pstore.path()}, kBase, {});
    ASSERT_EQ(records.size(), 1);
    EXPECT_EQ(records[0].detail, "VFS: Unable to mount root fs");
    EXPECT_EQ(records[0].rawLine, "dmesg-efi-170000000001");

    // apport's reports, dated by their Date line.
    const QByteArray crash =
        "ProblemType: Crash\nArchitecture: amd64\nDate: Tue Mar  5 10:15:00 2024\n"
        "ExecutablePath: /usr/bin/gnome-calculator\nCoreDump: base64\n H4sICAAAAAAC/0NvcmVEdW1w\n";
    write(pstore.filePath("_usr_bin_gnome-calculator.1000.crash"), crash);
    write(pstore.filePath("_usr_bin_x.1000.crash"),
          "ProblemType: Package\nDate: Tue Mar  5 10:15:00 2024\n");
    write(pstore.filePath("_usr_bin_y.1000.crash"), "ProblemType: Crash\nDate: someday\n");
    const QList<WattlogEvent> crashes = D::loadCrashReports({pstore.path()}, kBase, {});
    ASSERT_EQ(crashes.size(), 1);
    EXPECT_EQ(crashes[0].kind, K::AppCrash);
    EXPECT_EQ(crashes[0].detail, "gnome-calculator crashed");
    EXPECT_EQ(crashes[0].timestamp, QDateTime(QDate(2024, 3, 5), QTime(10, 15)).toUTC());
}

TEST(WattlogHistoryTest, CacheFilesAndSampleEvents) {
    const auto cache = WattlogCache::decode(R"({"events": [
        {"id": "not-a-uuid", "ts": "1709287200.5", "kind": "Sleep", "percent": 55.5,
         "source": "Batt", "rawLine": "r"},
        {"timestamp": 1709287300, "kind": "Nonsense", "powerSource": "Solar"}],
      "ingestedDiagnosticFiles": ["a.ips", "b.hang"]})");
    ASSERT_TRUE(cache);
    ASSERT_EQ(cache->events.size(), 2);
    EXPECT_EQ(cache->events[0].timestamp, kBase.addMSecs(500));
    EXPECT_EQ(cache->events[0].kind, K::Sleep);
    EXPECT_EQ(cache->events[0].detail, "Sleep");
    EXPECT_EQ(cache->events[0].batteryPercent, 56);
    EXPECT_EQ(cache->events[0].powerSource, WattlogPowerSource::Battery);
    EXPECT_EQ(cache->events[1].kind, K::BatteryLevel);
    EXPECT_EQ(cache->events[1].powerSource, std::nullopt);
    EXPECT_EQ(cache->lastEventTimestamp.toSecsSinceEpoch(), 0);
    EXPECT_EQ(cache->ingestedDiagnosticFiles, (QSet<QString>{"a.ips", "b.hang"}));
    EXPECT_TRUE(
        WattlogCache::decode(R"({"events": [1, {}], "lastEventTimestamp": 5})")->events.isEmpty());
    EXPECT_FALSE(WattlogCache::decode("[]"));
    EXPECT_FALSE(WattlogCache::read("/no/such/cache.json"));

    QTemporaryDir dir;
    write(dir.filePath("samples.jsonl"),
          "{\"ts\": 1709287200, \"source\": \"AC\", \"percent\": 80, \"current\": 1500, \"watts\": "
          "12.34}\n"
          "{\"ts\": 1709287260}\n");
    const QList<WattlogEvent> samples =
        D::loadBatterySampleEvents(dir.filePath("samples.jsonl"), kBase.addSecs(-1));
    ASSERT_EQ(samples.size(), 2);
    EXPECT_EQ(samples[0].detail, "AC 80% 1500mA 12.3W");
    EXPECT_EQ(samples[0].rawLine, "Wattlog sample AC 80% 1500mA 12.3W");
    EXPECT_EQ(samples[1].detail, "Batt --");
    EXPECT_EQ(samples[1].powerSource, WattlogPowerSource::Battery);
    EXPECT_EQ(D::loadBatterySampleEvents(dir.filePath("samples.jsonl"), kBase).size(), 1);
}

TEST(WattlogHistoryTest, DeduplicationKeepsTheFirstOfLikeEventsAsThePlainRuleDoes) {
    const QList<WattlogEvent> events{at(0, K::Sleep, "cached"),
                                     at(1.5, K::Sleep, "log"),
                                     at(1, K::BatteryLevel, "AC 80%"),
                                     at(2, K::BatteryLevel, "AC 81%"),
                                     at(2.9, K::BatteryLevel, "AC 80%"),
                                     at(-1.9, K::Sleep),
                                     at(3.4, K::Sleep)};
    const QList<WattlogEvent> kept = WattlogHistory::deduplicated(events);
    EXPECT_EQ(kept, (QList<WattlogEvent>{events[0], events[2], events[3], events[6]}));

    // Random lists dense in time, with few kinds and details, times before and after 1970.
    QRandomGenerator random(16);
    for (int round = 0; round < 200; ++round) {
        QList<WattlogEvent> list;
        const int size = random.bounded(1, 120);
        for (int i = 0; i < size; ++i) {
            WattlogEvent e =
                at(random.bounded(-40000, 40000) / 1000.0,
                   random.bounded(2) ? K::BatteryLevel : static_cast<K>(random.bounded(4)),
                   QString::number(random.bounded(3)));
            if (round % 2) {
                e.timestamp =
                    QDateTime::fromMSecsSinceEpoch(random.bounded(-6000, 6000), QTimeZone::utc());
            }
            list << e;
        }
        ASSERT_EQ(WattlogHistory::deduplicated(list), plainDeduplicated(list)) << "round " << round;
    }
}

TEST(WattlogHistoryTest, BuildMergesCacheLogSamplesAndReports) {
    FakePorts fake;
    QTemporaryDir reports;
    // A day later, so that the report's local time lies after the cache's in any zone.
    write(reports.filePath("Safari_2024-03-02-120000_Mac.ips"), "");
    write(reports.filePath("Mail_2024-03-02-120000_Mac.ips"), "");
    const QString cacheFile = fake.paths.dataDirectory("Wattlog") + "/cache.json";
    QJsonArray cached{at(0, K::Sleep, "cached").toJson(),
                      at(60, K::BatteryLevel, "AC 80%", 80).toJson()};
    write(cacheFile,
          QJsonDocument(QJsonObject{{"events", cached},
                                    {"lastEventTimestamp", kBase.toSecsSinceEpoch() - 3600},
                                    {"ingestedDiagnosticFiles",
                                     QJsonArray{"Mail_2024-03-02-120000_Mac.ips"}}})
              .toJson());
    fake.powerLog.state().lock()->log = PowerLogSource::Log::Pmset;
    fake.powerLog.state().lock()->diagnosticDirectories = {reports.path()};
    fake.commands.respond("/usr/bin/pmset -g log",
                          "2024-03-01 10:00:01 +0000 Sleep 'Idle Sleep' Using AC (Charge:80%)\n"
                          "2024-03-01 10:01:01 +0000 Assertions Summary- Using AC(Charge: 81)\n"
                          "2024-03-01 08:00:00 +0000 Wake old, before the cache's time\n"
                          "2024-03-01 10:30:00 +0000 Wake due to x\n");
    write(WattlogSampleFiles::batterySamplesFile(fake.paths),
          "{\"ts\": 1709287260.5, \"source\": \"AC\", \"percent\": 79}\n");
    const WattlogHistory::Result result =
        WattlogHistory::build({fake.powerLog, fake.commands, cacheFile,
                               WattlogSampleFiles::batterySamplesFile(fake.paths)},
                              kBase.addSecs(3600));
    QStringList seen;
    for (const WattlogEvent& e : result.events) {
        seen << WattlogEventKinds::label(e.kind) + " " + e.detail;
    }
    // The log's sleep a second after the cached one is the cached one; the sample half a second
    // after a cached level has words of its own; the ingested report stays out.
    EXPECT_EQ(seen, (QStringList{"Sleep cached", "Battery AC 80%", "Battery AC 79%",
                                 "Battery AC 81%", "Wake x", "App Crash Safari crashed"}));
    EXPECT_EQ(result.derivedData.stats.eventCount, 6);
    EXPECT_EQ(result.derivedData.stats.totalSleepTime, 1800);
}

TEST(WattlogHistoryTest, DerivedDataEdges) {
    EXPECT_EQ(WattlogDerivedData::build({}, kBase).stats, WattlogStats());

    QList<WattlogEvent> levels;
    for (int i = 0; i < 1201; ++i) {
        levels << at(i, K::BatteryLevel, "x", i % 101, "{\"ts\": 1}");
    }
    const WattlogDerivedData many = WattlogDerivedData::build(levels, kBase);
    ASSERT_EQ(many.batteryPoints.size(), 1200);
    EXPECT_EQ(many.batteryPoints.first().date, levels.first().timestamp);
    EXPECT_EQ(many.batteryPoints.last().date, levels.last().timestamp);
    // Index round(1200 / 1199 * 600) = round(600.5004) = 601.
    EXPECT_EQ(many.batteryPoints[600].date, levels[601].timestamp);
    EXPECT_TRUE(many.usageSessions.isEmpty());
    EXPECT_EQ(many.stats.averageSessionLength, 0);
    EXPECT_EQ(WattlogDerivedData::build(levels.mid(0, 1200), kBase).batteryPoints.size(), 1200);

    EXPECT_FALSE(WattlogDerivedData::isReliableBatteryPoint(at(0, K::BatteryLevel, "x", 130, "{")));
    EXPECT_FALSE(WattlogDerivedData::isReliableBatteryPoint(
        at(0, K::BatteryLevel, "x", 79, "Summary- Using Batt (Charge: 79)")));
    EXPECT_TRUE(WattlogDerivedData::isReliableBatteryPoint(
        at(0, K::BatteryLevel, "x", 79, "Summary- Using Batt(Charge: 79)")));
    EXPECT_TRUE(
        WattlogDerivedData::isReliableBatteryPoint(at(0, K::BatteryLevel, "x", 79, "Batt 79%")));

    // Sleep, sleep, wake: both spans run to the wake. A wake at a sleep's time isn't its end.
    const WattlogDerivedData sleeps =
        WattlogDerivedData::build({at(100, K::Wake), at(0, K::Sleep), at(40, K::LidSleep),
                                   at(200, K::Sleep), at(200, K::Wake)},
                                  kBase);
    EXPECT_EQ(sleeps.stats.totalSleepTime, 100 + 60);
    EXPECT_EQ(sleeps.stats.lidCloseCount, 1);

    // Wake, display off, display on, display on, sleep: two sessions; then one left open.
    const WattlogDerivedData sessions = WattlogDerivedData::build(
        {at(0, K::Wake), at(10, K::DisplayOff), at(20, K::DisplayOn), at(25, K::DisplayOn),
         at(50, K::Sleep), at(60, K::DarkWake), at(70, K::Wake)},
        kBase.addSecs(100));
    ASSERT_EQ(sessions.usageSessions.size(), 3);
    EXPECT_EQ(sessions.usageSessions[1].start, kBase.addSecs(20));
    EXPECT_FALSE(sessions.usageSessions[2].end);
    EXPECT_EQ(sessions.stats.totalAwakeTime, 10 + 30 + 30);
    EXPECT_EQ(sessions.stats.longestSession, 30);

    QList<WattlogEvent> cycle;
    for (int percent : {50, 15, 60, 81, 10, 85, 90}) {
        cycle << at(cycle.size(), K::BatteryLevel, "x", percent, "Batt");
    }
    cycle[0].powerSource = WattlogPowerSource::AC;
    const WattlogDerivedData cycles = WattlogDerivedData::build(cycle, kBase);
    EXPECT_EQ(cycles.stats.batteryChargeCycles, 2);
    EXPECT_DOUBLE_EQ(cycles.stats.timeOnACRatio, 1.0 / 7);
    EXPECT_DOUBLE_EQ(cycles.stats.timeOnBatteryRatio, 6.0 / 7);

    QList<WattlogEvent> timeline;
    for (int i = 0; i < 900; ++i) {
        timeline << at(i, i % 2 ? K::AppHang : K::AppCrash);
        timeline << at(i, K::KernelPanic);
    }
    const WattlogDerivedData marks = WattlogDerivedData::build(timeline, kBase);
    ASSERT_EQ(marks.batteryTimelineEvents.size(), 800);
    EXPECT_EQ(marks.batteryTimelineEvents.first().timestamp, kBase.addSecs(100));
    EXPECT_EQ(marks.batteryTimelineEvents.last().timestamp, kBase.addSecs(899));
    EXPECT_EQ(marks.systemHealthCounts, (WattlogHealthCounts{900, 450, 450, 0}));
}
