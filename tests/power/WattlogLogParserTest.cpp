#include <QMap>

#include "power/WattlogLogParser.h"
#include "support/Fixture.h"
#include "support/Testing.h"

namespace {

using K = WattlogEventKind;
using P = WattlogLogParser;

QList<WattlogEvent> parseFixture(const QString& name) {
    return P::parsePmsetText(readFixture("power/pmset/" + name));
}

QMap<K, int> counts(const QList<WattlogEvent>& events) {
    QMap<K, int> byKind;
    for (const WattlogEvent& e : events) {
        ++byKind[e.kind];
    }
    return byKind;
}

QString stamp(const char* time) {
    return QString("2024-01-15 %1 +0000 ").arg(time);
}

}  // namespace

// Counted by hand from each file: what each line's body starts with decides its kind.
TEST(WattlogLogParserTest, RealLogsGiveTheEventsCountedByHand) {
    // Five idle sleeps and four wakes on battery; "Using BATT" in capitals names no source.
    const QList<WattlogEvent> mi = parseFixture("minotebook14-idle-batt.txt");
    EXPECT_EQ(counts(mi), (QMap<K, int>{{K::Sleep, 5}, {K::Wake, 4}}));
    EXPECT_EQ(mi[0].detail, "Idle Sleep");
    EXPECT_EQ(mi[0].batteryPercent, 100);
    EXPECT_EQ(mi[0].powerSource, WattlogPowerSource::Battery);
    EXPECT_EQ(mi[1].detail, "power-button");
    EXPECT_EQ(mi[1].powerSource, std::nullopt);
    EXPECT_EQ(mi[8].batteryPercent, 99);
    EXPECT_EQ(mi[8].timestamp, QDateTime::fromString("2021-06-04T11:47:12Z", Qt::ISODate));

    // A summary with the charge, a software sleep and the display coming on; the header lines
    // and the other assertions give nothing.
    const QList<WattlogEvent> latitude = parseFixture("latitude7390-batt.txt");
    ASSERT_EQ(latitude.size(), 3);
    EXPECT_EQ(latitude[0].kind, K::BatteryLevel);
    EXPECT_EQ(latitude[0].detail, "Batt 99%");
    EXPECT_EQ(latitude[1].kind, K::Sleep);
    EXPECT_EQ(latitude[1].detail, "Software Sleep pid=159");
    EXPECT_EQ(latitude[2].kind, K::DisplayOn);
    EXPECT_EQ(latitude[2].detail, "Display turned on");
    EXPECT_TRUE(latitude[2].rawLine.endsWith("\t          "));

    // The first line starts with a stray backtick, so its clamshell sleep is lost; "Wake
    // Requests" is a wake by the grammar.
    const QList<WattlogEvent> t480 = parseFixture("t480-clamshell-batt.txt");
    EXPECT_EQ(counts(t480), (QMap<K, int>{{K::Wake, 1}, {K::DisplayOn, 1}}));
    EXPECT_EQ(t480[0].detail, "Wake");

    EXPECT_EQ(counts(parseFixture("t3610-boot-header.txt")), (QMap<K, int>{{K::Reboot, 1}}));
    EXPECT_EQ(counts(parseFixture("t3610-display-on-footer.txt")),
              (QMap<K, int>{{K::DisplayOn, 1}}));
    // Each line quoted with "> " as posted: no line starts with a stamp.
    EXPECT_TRUE(parseFixture("oc-m3800-clamshell.txt").isEmpty());

    const QList<WattlogEvent> xps = parseFixture("xps9350-darkwake-count.txt");
    ASSERT_EQ(xps.size(), 1);
    EXPECT_EQ(xps[0].kind, K::DarkWake);
    EXPECT_EQ(xps[0].detail, "");  // "due to /HID Activity": empty before the slash
    EXPECT_EQ(xps[0].batteryPercent, 94);

    const QList<WattlogEvent> idle = parseFixture("acidanthera2467-idle-sleep.txt");
    EXPECT_EQ(counts(idle), (QMap<K, int>{{K::Sleep, 1}, {K::Wake, 1}}));
    EXPECT_EQ(idle[0].powerSource, WattlogPowerSource::AC);
    EXPECT_EQ(idle[0].batteryPercent, 0);
}

TEST(WattlogLogParserTest, StampAndBodyRules) {
    // Exactly 25 characters is a stamp without a body.
    EXPECT_FALSE(P::parse(u"2024-01-15 10:30:00 +1000"));
    EXPECT_FALSE(P::parse(u"2024-01-15 10:30:00 +1000 \t "));
    EXPECT_TRUE(P::parse(u"2024-01-15 10:30:00 +1000 Wake x"));
    EXPECT_FALSE(P::parse(u"2024-02-30 10:30:00 +1000 Wake x"));
    EXPECT_FALSE(P::parse(u"2024-01-15T10:30:00 +1000 Wake x"));
    EXPECT_EQ(P::pmsetDate(u"2024-01-15 10:30:00 +1000"),
              QDateTime::fromString("2024-01-15T00:30:00Z", Qt::ISODate));
    EXPECT_EQ(P::pmsetDate(u"2024-01-15 10:30:00 -0730"),
              QDateTime::fromString("2024-01-15T18:00:00Z", Qt::ISODate));

    // "Wake" needs a tab or a blank after it.
    EXPECT_FALSE(P::parse(stamp("10:00:00") + "Wake"));
    EXPECT_FALSE(P::parse(stamp("10:00:00") + "Wakeup from x"));
    EXPECT_EQ(P::parse(stamp("10:00:00") + "Wake\tfrom EC.LidOpen: x")->detail, "EC.LidOpen");

    EXPECT_EQ(P::parse(stamp("10:00:00") + "Notification  Display is turned on")->kind,
              K::DisplayOn);
    EXPECT_EQ(P::parse(stamp("10:00:00") + "Notification Display is turned off")->kind,
              K::DisplayOff);
    EXPECT_FALSE(P::parse(stamp("10:00:00") + "Notification  Something else"));

    const auto clamshell =
        P::parse(stamp("10:00:00") + "Sleep  Clamshell Sleep Using AC (Charge:80%)");
    EXPECT_EQ(clamshell->kind, K::LidSleep);
    EXPECT_EQ(clamshell->detail, "System Sleep");
    EXPECT_EQ(clamshell->powerSource, WattlogPowerSource::AC);
    EXPECT_EQ(clamshell->batteryPercent, 80);

    const auto health = P::parse(stamp("10:00:00") + "BatteryHealth  \tGood MaxCap=98 ");
    EXPECT_EQ(health->kind, K::BatteryHealth);
    EXPECT_EQ(health->detail, "Good MaxCap=98");
}

TEST(WattlogLogParserTest, Extractors) {
    EXPECT_EQ(P::extractCharge(u"Using AC (Charge:150%)"), 150);
    EXPECT_EQ(P::extractCharge(u"Charge: x Charge:  42"), 42);
    EXPECT_EQ(P::extractCharge(u"no charge here"), std::nullopt);

    EXPECT_EQ(P::extractSource(u"x Using AC y"), WattlogPowerSource::AC);
    EXPECT_EQ(P::extractSource(u"AC (Charge:5%)"), WattlogPowerSource::AC);
    EXPECT_EQ(P::extractSource(u"Using Batt"), WattlogPowerSource::Battery);
    EXPECT_EQ(P::extractSource(u"Battery Charge"), WattlogPowerSource::Battery);
    EXPECT_EQ(P::extractSource(u"Using BATT"), std::nullopt);

    EXPECT_EQ(P::extractWakeReason(u"Wake from Normal Sleep due to EC.LidOpen/Lid Open"),
              "EC.LidOpen");
    EXPECT_EQ(P::extractWakeReason(u"due to a due to  b/c"), "b");
    EXPECT_EQ(P::extractWakeReason(u"DarkWake from Deep Idle [CDN] : x"), "Deep Idle [CDN]");
    EXPECT_EQ(P::extractWakeReason(u"nothing"), "Wake");

    const auto ac = P::extractSummaryBatteryState(u"Summary- [x] Using AC(Charge: 80)");
    ASSERT_TRUE(ac);
    EXPECT_EQ(ac->source, WattlogPowerSource::AC);
    EXPECT_EQ(ac->charge, 80);
    EXPECT_EQ(P::extractSummaryBatteryState(u"Using Batt(Charge:100)")->charge, 100);
    // A blank before the parenthesis, a charge above 100 and four digits don't match.
    EXPECT_FALSE(P::extractSummaryBatteryState(u"Using Batt (Charge: 79)"));
    EXPECT_FALSE(P::extractSummaryBatteryState(u"Using AC(Charge: 101)"));
    EXPECT_FALSE(P::extractSummaryBatteryState(u"Using AC(Charge: 1000)"));
    // Two blanks: the pattern matches, but the text "Using AC" isn't in the match.
    EXPECT_EQ(P::extractSummaryBatteryState(u"Using  AC(Charge: 5)")->source,
              WattlogPowerSource::Battery);
}

TEST(WattlogLogParserTest, InfersLidOpenAndPowerSourceChanges) {
    const QString summary = "Assertions  Summary- [System: x] Using %1(Charge: %2)";
    const QList<WattlogEvent> events = P::parsePmsetLines({
        stamp("09:00:00") + summary.arg("AC").arg(80),
        stamp("09:01:00") + summary.arg("Batt").arg(79),
        stamp("09:02:00") + summary.arg("AC").arg(101),  // dropped; the source stays Batt
        stamp("09:03:00") + summary.arg("Batt").arg(78),
        stamp("10:00:00") + "Sleep  Entering Sleep state due to 'Clamshell Sleep'",
        stamp("10:05:00") + "Sleep  Entering Sleep state due to 'Clamshell Sleep'",
        stamp("10:10:00") + "DarkWake  DarkWake from Normal Sleep",
        stamp("10:30:00") + "Wake  Wake from Normal Sleep due to Lid Open Using AC (Charge:77%)",
        stamp("10:40:00") + "Wake  Wake from Normal Sleep due to Lid Open",
    });
    QList<K> kinds;
    for (const WattlogEvent& e : events) {
        kinds << e.kind;
    }
    EXPECT_EQ(kinds,
              (QList<K>{K::BatteryLevel, K::AcDisconnected, K::BatteryLevel, K::BatteryLevel,
                        K::LidSleep, K::LidSleep, K::DarkWake, K::LidOpen, K::Wake, K::Wake}));
    EXPECT_EQ(events[1].detail, "Switched to Batt at 79%");
    EXPECT_EQ(events[1].rawLine, events[2].rawLine);
    EXPECT_EQ(events[7].detail, "Lid opened");
    EXPECT_EQ(events[7].batteryPercent, 77);
    EXPECT_EQ(events[7].timestamp, events[8].timestamp);
    EXPECT_NE(events[7].id, events[8].id);

    // A day or more after the close opens nothing and clears it; a wake dated before the close
    // is within the day.
    const QString close = "2024-01-15 10:00:00 +0000 Sleep 'Clamshell Sleep'";
    EXPECT_EQ(P::parsePmsetLines(
                  {close, "2024-01-16 10:30:00 +0000 Wake x", "2024-01-16 10:31:00 +0000 Wake x"})
                  .size(),
              3);
    EXPECT_EQ(P::parsePmsetLines({close, "2024-01-15 09:59:00 +0000 Wake x"})[1].kind, K::LidOpen);
}
