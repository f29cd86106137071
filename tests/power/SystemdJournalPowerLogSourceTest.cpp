#include <QMap>
#include <QProcess>
#include <QTimeZone>

#include "platform/linux/SystemdJournalPowerLogSource.h"
#include "power/WattlogHistory.h"
#include "power/WattlogJournalMapper.h"
#include "support/Fixture.h"
#include "support/Testing.h"

namespace {

using K = WattlogEventKind;

// A journal file made of the export-format fixture by systemd's own importer; empty when
// the importer isn't installed.
QString makeJournal(const QTemporaryDir& dir) {
    for (const char* tool :
         {"/usr/lib/systemd/systemd-journal-remote", "/lib/systemd/systemd-journal-remote"}) {
        if (QFileInfo(tool).isExecutable()) {
            const QString journal = dir.filePath("power.journal");
            QProcess importer;
            importer.start(
                tool, {"-o", journal,
                       QStringLiteral(ZELVAR_FIXTURES_DIR) + "/power/journal/power-events.export"});
            EXPECT_TRUE(importer.waitForFinished(30000));
            EXPECT_EQ(importer.exitCode(), 0) << importer.readAllStandardError().toStdString();
            return journal;
        }
    }
    return {};
}

QMap<K, int> counts(const QList<WattlogEvent>& events) {
    QMap<K, int> byKind;
    for (const WattlogEvent& e : events) {
        ++byKind[e.kind];
    }
    return byKind;
}

}  // namespace

TEST(SystemdJournalPowerLogSourceTest, ReadsPowerEntriesOfAJournalFile) {
    QTemporaryDir dir;
    const QString journal = makeJournal(dir);
    if (journal.isEmpty()) {
        GTEST_SKIP() << "systemd-journal-remote is not installed";
    }
    SystemdJournalPowerLogSource source(
        {.journalFiles = {journal},
         .pstore = "/no/pstore",
         .upower = QStringLiteral(ZELVAR_FIXTURES_DIR) + "/power/upower"});
    const QList<JournalEntry> entries = source.journalEntries(WattlogHistory::distantPast());
    // 20 entries, one of them systemd's own.
    ASSERT_EQ(entries.size(), 19);
    EXPECT_EQ(entries[0].identifier, "systemd-logind");
    EXPECT_EQ(entries[0].message, "Lid closed.");
    EXPECT_EQ(entries[0].bootId, "5b2f0c1e9d8a4b7c8e6f1a2b3c4d5e6f");
    EXPECT_EQ(entries[0].realtimeMicroseconds, 1726070568000000);

    const QList<WattlogEvent> events =
        WattlogJournalMapper::map(entries, WattlogHistory::distantPast());
    // One suspend is one event each way, and the lid's when the lid closed just before; a lid
    // closed without a suspend makes none.
    EXPECT_EQ(counts(events), (QMap<K, int>{{K::Reboot, 3},
                                            {K::LidSleep, 1},
                                            {K::Sleep, 2},
                                            {K::Wake, 3},
                                            {K::LidOpen, 2},
                                            {K::AcDisconnected, 1},
                                            {K::JetsamEvent, 2},
                                            {K::AppCrash, 1}}));
    EXPECT_EQ(events[0].kind, K::Reboot);
    EXPECT_EQ(events[1].kind, K::LidSleep);
    EXPECT_EQ(events[1].detail, "Lid closed, suspend");
    const QDateTime suspended = QDateTime::fromMSecsSinceEpoch(1726070569000, QTimeZone::utc());
    EXPECT_EQ(events[1].timestamp, suspended);
    EXPECT_EQ(events[1].rawLine, suspended.toLocalTime().toString("yyyy-MM-dd HH:mm:ss ") +
                                     events[1].rawLine.mid(20, 5) +
                                     " systemd-sleep: Performing sleep operation 'suspend'...");
    EXPECT_EQ(events[2].kind, K::Wake);
    EXPECT_EQ(events[2].detail, "suspend exit");
    QStringList details;
    for (const WattlogEvent& e : events) {
        if (e.kind == K::JetsamEvent || e.kind == K::AppCrash || e.kind == K::Sleep) {
            details << e.detail;
        }
    }
    EXPECT_EQ(details, (QStringList{"Memory pressure OOM kill: python3",
                                    "Memory pressure OOM kill: (resolved)",
                                    "gnome-calculator crashed", "suspend", "suspend"}));

    // From the middle of the second boot: the entry before tells that no boot begins there.
    const QDateTime since = QDateTime(QDate(2024, 12, 25), QTime(14, 56), QTimeZone::utc());
    const QList<WattlogEvent> later =
        WattlogJournalMapper::map(source.journalEntries(since), since);
    EXPECT_EQ(counts(later), (QMap<K, int>{{K::Reboot, 1},
                                           {K::Sleep, 2},
                                           {K::Wake, 2},
                                           {K::LidOpen, 1},
                                           {K::AcDisconnected, 1},
                                           {K::JetsamEvent, 2},
                                           {K::AppCrash, 1}}));

    // upower's charge history, tab-separated and with a decimal comma.
    ASSERT_EQ(source.batteryHistoryFiles().size(), 1);
    const QList<WattlogEvent> levels = WattlogJournalMapper::loadUpowerHistory(
        source.batteryHistoryFiles(), WattlogHistory::distantPast());
    ASSERT_EQ(levels.size(), 2);
    EXPECT_EQ(levels[0].detail, "Batt 95%");
    EXPECT_EQ(levels[1].batteryPercent, 86);
    EXPECT_EQ(levels[1].timestamp.toSecsSinceEpoch(), 1611582586);

    // Charging after discharging is AC coming, across `since`; an unknown state changes nothing.
    const QList<WattlogEvent> changes = WattlogJournalMapper::parseUpowerHistory(
        "100\t50.000\tdischarging\n200\t51.500\tcharging\n300\t52.000\tunknown\n"
        "400\t60.000\tdischarging\nnot a line\n",
        QDateTime::fromSecsSinceEpoch(150, QTimeZone::utc()));
    QStringList seen;
    for (const WattlogEvent& e : changes) {
        seen << WattlogEventKinds::label(e.kind) + ": " + e.detail;
    }
    EXPECT_EQ(seen,
              (QStringList{"AC Connected: Switched to AC at 52%", "Battery: AC 52%", "Battery: 52%",
                           "AC Disconnected: Switched to Batt at 60%", "Battery: Batt 60%"}));
}

TEST(SystemdJournalPowerLogSourceTest, AMissingOrUnreadableJournalGivesNothing) {
    QTemporaryDir dir;
    QFile garbage(dir.filePath("bad.journal"));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write("not a journal at all");
    garbage.close();
    for (const QString& file : {dir.filePath("missing.journal"), garbage.fileName()}) {
        SystemdJournalPowerLogSource source({.journalFiles = {file}});
        EXPECT_TRUE(source.journalEntries(WattlogHistory::distantPast()).isEmpty())
            << file.toStdString();
    }
}
