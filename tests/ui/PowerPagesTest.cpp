#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolButton>

#include "power/BatteryPowerMonitor.h"
#include "power/WattlogCache.h"
#include "power/WattlogSampleFiles.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Testing.h"
#include "ui/Palette.h"
#include "ui/power/BatteryLevelChart.h"
#include "ui/power/BatteryRecommendation.h"
#include "ui/power/BatteryRecommendationCard.h"
#include "ui/power/LivePowerDetailCard.h"
#include "ui/power/PowerBatteryPage.h"
#include "ui/power/PowerLivePage.h"
#include "ui/power/PowerMetricCard.h"
#include "ui/power/PowerOverviewPage.h"
#include "ui/power/PowerSampleText.h"
#include "ui/power/PowerSamplesPage.h"
#include "ui/power/PowerSourceDistributionView.h"
#include "ui/power/PowerViewState.h"
#include "ui/power/SampleTableModel.h"
#include "ui/power/WattlogEventRow.h"
#include "ui/widgets/EmptyStateView.h"

namespace zelvar::test {
namespace {

const QDateTime kNow = QDateTime::fromSecsSinceEpoch(1'750'000'000, QTimeZone::utc());

// A power monitor over fakes in a temporary home, started only by the tests that need it; the
// clock starts after the unavailable snapshot was made, as in the app.
struct FakePowerMonitor {
    QTemporaryDir home;
    FakePaths paths{home.path()};
    FakeClock clock{(BatteryPowerSnapshot::unavailable(), QDateTime::currentDateTimeUtc())};
    FakeBatteryRegistry battery;
    FakeCommandRunner commands;
    FakePowerLogSource powerLog;
    BatteryPowerMonitor monitor{{battery, clock, clock, commands,
                                 WattlogSampleFiles::batterySamplesFile(paths),
                                 WattlogSampleFiles::correlationSamplesFile(paths), powerLog,
                                 WattlogCache::defaultFile(paths)}};
    PowerViewState state;
};

BatteryPowerSnapshot battery(std::optional<qint64> percent, bool external, bool charging = false) {
    BatteryPowerSnapshot snapshot;
    snapshot.timestamp = kNow;
    snapshot.percent = percent;
    snapshot.isExternalConnected = external;
    snapshot.isCharging = charging;
    return snapshot;
}

WattlogEvent event(WattlogEventKind kind, const QDateTime& when, const QString& detail = {}) {
    WattlogEvent made;
    made.id = WattlogEvent::newId();
    made.kind = kind;
    made.timestamp = when;
    made.detail = detail;
    return made;
}

QString advice(const BatteryPowerSnapshot& snapshot, const QList<WattlogEvent>& acEvents = {}) {
    const BatteryRecommendation chosen = batteryRecommendation(snapshot, {}, acEvents, kNow);
    return chosen.title + " | " + chosen.detail;
}

TEST(BatteryRecommendationTest, LevelComesFromTheSnapshotThenTheSampleThenZero) {
    const BatteryRecommendation none = batteryRecommendation(battery({}, false), {}, {}, kNow);
    EXPECT_EQ(none.title, "Plug into AC now");
    EXPECT_EQ(none.detail, "Battery is at 0%.");
    EXPECT_EQ(none.color, NamedColor::Red);
    EXPECT_EQ(none.symbol, "bolt.fill");
    EXPECT_EQ(QStringList({none.state, none.cycle, none.health}),
              QStringList({"On Battery", "Cycle --", "Health --"}));

    WattlogBatterySample sample;
    sample.recordedPercent = 50;
    EXPECT_EQ(batteryRecommendation(battery({}, false), sample, {}, kNow).detail,
              "Battery is at 50%.");
    EXPECT_EQ(batteryRecommendation(battery(90, false), sample, {}, kNow).detail,
              "Battery is at 90% on battery.");
}

TEST(BatteryRecommendationTest, LowLevelsOnlyCountOnBattery) {
    EXPECT_EQ(advice(battery(10, false)), "Plug into AC now | Battery is at 10%.");
    EXPECT_EQ(advice(battery(11, false)), "Plug into AC soon | Battery is below 20%.");
    EXPECT_EQ(advice(battery(19, false)), "Plug into AC soon | Battery is below 20%.");
    EXPECT_EQ(advice(battery(20, false)), "No action needed | Battery is at 20%.");
    EXPECT_EQ(advice(battery(80, false)), "No action needed | Battery is at 80%.");
    EXPECT_EQ(advice(battery(81, false)), "No action needed | Battery is at 81% on battery.");
    EXPECT_EQ(advice(battery(15, true)), "No action needed | Battery is at 15% on AC.");
    EXPECT_EQ(advice(battery(15, true, true)), "Charging normally | Battery is at 15% on AC.");
    EXPECT_EQ(batteryRecommendation(battery(15, true, true), {}, {}, kNow).state, "Charging");
    EXPECT_EQ(batteryRecommendation(battery(15, true), {}, {}, kNow).state, "On AC");
}

TEST(BatteryRecommendationTest, FullOnACNeedsAConnectionMoreThanTwelveHoursBack) {
    EXPECT_EQ(advice(battery(100, true)), "No action needed | Battery is at 100% on AC.");
    const QList<WattlogEvent> twelveHours{
        event(WattlogEventKind::AcConnected, kNow.addSecs(-43200))};
    EXPECT_EQ(advice(battery(100, true), twelveHours),
              "No action needed | Battery is at 100% on AC.");
    // The newest connection counts, whatever the order of the list.
    const QList<WattlogEvent> longAgo{
        event(WattlogEventKind::AcConnected, kNow.addSecs(-93000)),
        event(WattlogEventKind::AcConnected, kNow.addSecs(-43201)),
    };
    const BatteryRecommendation full = batteryRecommendation(battery(100, true), {}, longAgo, kNow);
    EXPECT_EQ(full.title + " | " + full.detail,
              "Unplug or enable Optimized Charging | Battery has been full on AC for 12 h.");
    EXPECT_EQ(full.color, NamedColor::Yellow);
    EXPECT_EQ(advice(battery(100, true, true), longAgo),
              "Charging normally | Battery is at 100% on AC.");
}

TEST(BatteryRecommendationTest, WearRulesAtTheirThresholds) {
    BatteryPowerSnapshot worn = battery(60, true);
    worn.cycleCount = 800;
    EXPECT_EQ(advice(worn), "No action needed | Battery is at 60% on AC.");
    worn.cycleCount = 801;
    EXPECT_EQ(advice(worn), "Monitor battery health | 801 charge cycles recorded.");

    worn.maxCapacity = 800;
    worn.designCapacity = 1000;
    EXPECT_EQ(advice(worn), "Monitor battery health | 801 charge cycles recorded.");
    worn.maxCapacity = 790;
    BatteryPowerSnapshot empty = worn;
    empty.percent = 3;
    empty.isExternalConnected = false;
    // A worn battery's advice comes before even an empty one's.
    const BatteryRecommendation service = batteryRecommendation(empty, {}, {}, kNow);
    // No battery at all: no advice to plug in.
    EXPECT_EQ(batteryRecommendation(BatteryPowerSnapshot::unavailable(), {}, {}, kNow).title,
              "No battery found");
    EXPECT_EQ(service.title + " | " + service.detail,
              "Consider battery service | Max capacity is 79% of design.");
    EXPECT_EQ(QStringList({service.state, service.cycle, service.health}),
              QStringList({"On Battery", "Cycle 801", "Health 79%"}));
}

TEST(PowerDetailCardTest, ShowsTheShareOnlyWhilePowerFlows) {
    int refreshes = 0;
    LivePowerDetailCard card([&refreshes] { ++refreshes; });
    BatteryPowerSnapshot draining = battery(60, false);
    draining.amperageMA = -1500;
    draining.voltageMV = 10000;
    draining.amperageScaleMaxMA = 3000;
    card.setSnapshot(draining);
    EXPECT_EQ(card.symbolName(), "battery.25");
    ASSERT_EQ(card.texts().size(), 4);
    EXPECT_EQ(card.texts().first(), "Live Discharge Rate");
    EXPECT_EQ(card.texts().last(), "-50% of max discharge rate");

    card.setSnapshot(battery(60, true));
    EXPECT_EQ(card.symbolName(), "bolt.fill");
    EXPECT_EQ(card.texts().size(), 3);
    EXPECT_EQ(card.refreshButton()->toolTip(), "Refresh battery reading");
    card.refreshButton()->click();
    EXPECT_EQ(refreshes, 1);
}

TEST(PowerOverviewPageTest, CardsInOrderAndSystemHealthOnlyForCountsAboveZero) {
    FakePowerMonitor idle;
    PowerOverviewPage page(idle.monitor, idle.state);
    WattlogDerivedData derived;
    derived.stats.totalAwakeTime = 90000;
    derived.stats.totalSleepTime = std::nan("");
    derived.stats.timeOnACRatio = 0.625;
    derived.stats.eventCount = 7;
    page.showMetrics(battery(50, true), derived);
    QStringList shown;
    for (PowerMetricCard* card : page.metricCards()) {
        shown << card->title() + "=" + card->value();
    }
    EXPECT_EQ(shown, QStringList({"AC Power Rate=" + battery(50, true).powerRateText(),
                                  "Total Awake=1d 1h", "Total Sleep=0m", "Avg Session=0m",
                                  "Longest Session=0m", "Lid Closes=0", "Reboots=0",
                                  "Charge Cycles=0", "Time on AC=63%", "Events=7"}));
    EXPECT_FALSE(page.isHealthShown());
    EXPECT_TRUE(page.healthCards().isEmpty());

    derived.systemHealthCounts = {.panics = 2, .crashes = 0, .hangs = 1, .jetsam = 0};
    page.showMetrics(battery(50, true), derived);
    EXPECT_TRUE(page.isHealthShown());
    QStringList health;
    for (PowerMetricCard* card : page.healthCards()) {
        health << card->title() + "=" + card->value() + " " + card->systemImage();
    }
    EXPECT_EQ(health, QStringList({"Kernel Panics=2 exclamationmark.triangle.fill",
                                   "App Hangs=1 clock.badge.exclamationmark"}));
    EXPECT_EQ(page.healthCards().first()->color(), namedColor(NamedColor::Red));

    page.showMetrics(battery(50, true), WattlogDerivedData{});
    EXPECT_FALSE(page.isHealthShown());
}

TEST(PowerOverviewPageTest, RecentEventsAreTheNewestTwentyNewestFirst) {
    FakePowerMonitor idle;
    PowerOverviewPage page(idle.monitor, idle.state);
    auto* empty = page.findChild<EmptyStateView*>();
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->message(), "No Wattlog events loaded");
    EXPECT_TRUE(empty->isVisibleTo(&page));
    EXPECT_EQ(page.recentEventsCaption(), "0 loaded");

    QList<WattlogEvent> events;
    for (int i = 0; i < 25; ++i) {
        events << event(WattlogEventKind::Wake, kNow.addSecs(i * 60), QString::number(i));
    }
    page.showEvents(events);
    EXPECT_EQ(page.recentEventsCaption(), "25 loaded");
    const QList<WattlogEventRow*> rows = page.recentEventRows();
    ASSERT_EQ(rows.size(), PowerOverviewPage::kRecentEvents);
    EXPECT_EQ(rows.first()->wattlogEvent().detail, "24");
    EXPECT_EQ(rows.last()->wattlogEvent().detail, "5");
    EXPECT_FALSE(rows.first()->showsRaw());
    EXPECT_FALSE(empty->isVisibleTo(&page));
}

QList<WattlogBatteryPoint> levels(const QList<std::pair<int, bool>>& percentsOnAC) {
    QList<WattlogBatteryPoint> points;
    for (const auto& [percent, onAC] : percentsOnAC) {
        points.append({kNow.addSecs(3600 * points.size()), percent, onAC});
    }
    return points;
}

TEST(BatteryLevelChartTest, PlacesPointsStretchesAndMarksInThePlot) {
    const QRectF plot(10, 20, 200, 100);
    const QList<WattlogBatteryPoint> points = levels({{100, true}, {50, true}, {0, false}});
    QList<WattlogEvent> events{event(WattlogEventKind::Sleep, kNow.addSecs(-1))};
    for (int i = 0; i < 200; ++i) {
        events << event(WattlogEventKind::Wake, kNow.addSecs(36 * i));
    }
    const BatteryChartGeometry shape = BatteryLevelChart::computeGeometry(plot, points, events);
    EXPECT_EQ(shape.points, QList<QPointF>({{10, 20}, {110, 70}, {210, 120}}));
    ASSERT_EQ(shape.acStretches.size(), 1);
    EXPECT_EQ(shape.acStretches.first(), QPolygonF({QPointF(10, 20), QPointF(110, 70)}));
    // The first 160 events are marked; the first lies before the points and is left out.
    ASSERT_EQ(shape.marks.size(), BatteryLevelChart::kMaxMarkedEvents - 1);
    EXPECT_EQ(shape.marks.first().event, 1);
    EXPECT_EQ(shape.marks.last().event, BatteryLevelChart::kMaxMarkedEvents - 1);
    EXPECT_DOUBLE_EQ(shape.marks.at(1).x, 11.0);  // 36 s of 2 h over 200 px

    const BatteryChartGeometry split = BatteryLevelChart::computeGeometry(
        plot, levels({{10, true}, {20, false}, {30, true}, {40, true}}), {});
    ASSERT_EQ(split.acStretches.size(), 2);
    EXPECT_EQ(split.acStretches.at(0).size(), 1);
    EXPECT_EQ(split.acStretches.at(1).size(), 2);
    // One instant has no time axis and stands in the middle.
    EXPECT_EQ(BatteryLevelChart::computeGeometry(plot, levels({{75, false}}), {}).points,
              QList<QPointF>({{110, 45}}));
}

TEST(BatteryLevelChartTest, WidgetGeometryHoverAndEmptyState) {
    BatteryLevelChart chart;
    chart.resize(500, 300);
    chart.show();
    auto* empty = chart.findChild<EmptyStateView*>();
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->message(), "No battery data");
    EXPECT_TRUE(empty->isVisible());
    EXPECT_TRUE(chart.hoverText({100, 100}).isEmpty());

    chart.setData(levels({{100, true}, {40, false}}),
                  {event(WattlogEventKind::Sleep, kNow.addSecs(3600), "Sleep")});
    EXPECT_FALSE(empty->isVisible());
    const BatteryChartGeometry shape = chart.plotGeometry();
    EXPECT_TRUE(QRectF(chart.plotWidget()->rect()).contains(shape.plot));
    ASSERT_EQ(shape.points.size(), 2);
    EXPECT_EQ(shape.points.first(), shape.plot.topLeft());
    EXPECT_TRUE(chart.hoverText(shape.points.first()).startsWith("100% on AC"));
    EXPECT_TRUE(chart.hoverText(shape.points.last() + QPointF(-6, 0)).startsWith("40% on battery"));
    EXPECT_TRUE(chart.hoverText(shape.points.last()).startsWith("Sleep: Sleep"));
    EXPECT_FALSE(chart.datesText().isEmpty());
}

TEST(PowerTailPageTest, LineColourByTheFirstWordOfTheTable) {
    const QColor primary(Qt::black);
    EXPECT_EQ(liveLineColor("DarkWake from Deep Idle [CDNVA] due to Sleep", primary),
              namedColor(NamedColor::Indigo));
    EXPECT_EQ(liveLineColor("Wake: Display is turned on", primary), namedColor(NamedColor::Green));
    EXPECT_EQ(liveLineColor("Display is turned on", primary), namedColor(NamedColor::Yellow));
    EXPECT_EQ(liveLineColor("Display is turned off", primary), namedColor(NamedColor::Gray));
    EXPECT_EQ(liveLineColor("Summary Using AC (Charge: 80%)", primary),
              namedColor(NamedColor::Blue));
    EXPECT_EQ(liveLineColor("Using Batt (Charge: 40%)", primary), namedColor(NamedColor::Orange));
    EXPECT_EQ(liveLineColor("BatteryHealth Good", primary), namedColor(NamedColor::Pink));
    EXPECT_EQ(liveLineColor("sleep in lower case", primary), withOpacity(primary, 0.8));

    FakePowerMonitor idle;
    PowerLivePage page(idle.monitor, idle.state);
    EXPECT_EQ(page.statusText(), "Stopped");
    EXPECT_EQ(page.toggleButton()->text(), "Start");
    EXPECT_EQ(page.emptyState()->message(), "Live tail is stopped");
}

TEST(PowerSamplesTest, CellsAndTheNetFallbacks) {
    WattlogCorrelationSample sample;
    sample.netInKBPS = 12.4;
    sample.netOutKBPS = 3.6;
    sample.netInDelta = 1500;
    sample.netOutDelta = 250000;
    EXPECT_EQ(correlationNetText(sample), "12/4 KB/s");
    sample.netOutKBPS.reset();
    EXPECT_EQ(correlationNetText(sample), "1.50KB/250KB");
    sample.netOutDelta.reset();
    EXPECT_EQ(correlationNetText(sample), "--");

    sample.batteryWatts = 7.25;
    sample.cpuUtil = 41.6;
    sample.processCount = 312;
    sample.powerFlow = "discharge";
    EXPECT_EQ(correlationSampleCells(sample).mid(1),
              QStringList({"7.2 W", "42%", "--", "312", "--", "discharge"}));

    WattlogBatterySample battery;
    battery.recordedPercent = 87;
    battery.recordedWatts = 12.34;
    battery.temperature = 30.05;
    EXPECT_EQ(batterySampleCells(battery).mid(1),
              QStringList({"87", "12.3 W", "--", "30.1 C", "--"}));
}

TEST(PowerSamplesTest, TablesKeepTheSelectedSampleWhenNewOnesArrive) {
    FakePowerMonitor idle;
    PowerSamplesPage page(idle.monitor, idle.state);
    EXPECT_EQ(page.batteryCaption(), "0 latest");
    const auto samples = [](int newest) {
        QList<WattlogBatterySample> list;
        for (int ts = newest; ts > newest - 240; --ts) {
            WattlogBatterySample sample;
            sample.ts = ts;
            list << sample;
        }
        return list;
    };
    page.showBatterySamples(samples(1000));
    EXPECT_EQ(page.batteryCaption(), "240 latest");
    QTableView* table = page.batteryTable();
    table->selectRow(5);
    page.showBatterySamples(samples(1002));
    EXPECT_EQ(table->model()->rowCount(), 240);
    ASSERT_EQ(table->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(table->selectionModel()->selectedRows().first().row(), 7);

    // Scrolled down, the rows in view stay in view as new ones arrive above.
    page.resize(600, 600);
    page.show();
    table->verticalScrollBar()->setValue(20);
    page.showBatterySamples(samples(1005));
    EXPECT_EQ(table->verticalScrollBar()->value(), 23);
    table->verticalScrollBar()->setValue(0);
    page.showBatterySamples(samples(1006));
    EXPECT_EQ(table->verticalScrollBar()->value(), 0);
    EXPECT_EQ(table->selectionModel()->selectedRows().first().row(), 11);

    // A list that doesn't continue the shown one replaces it, and the selection goes.
    page.showBatterySamples(samples(5000));
    EXPECT_EQ(table->model()->index(0, 0).data(),
              batterySampleCells(samples(5000).first()).first());
    EXPECT_TRUE(table->selectionModel()->selectedRows().isEmpty());
    page.showBatterySamples({});
    EXPECT_EQ(table->model()->rowCount(), 0);
    EXPECT_EQ(page.correlationCaption(), "0 latest");
}

TEST(PowerOverviewPageTest, AnUpdateReplacesOnlyWhatChanged) {
    FakePowerMonitor f;
    PowerOverviewPage page(f.monitor, f.state);
    QList<WattlogEvent> events;
    for (int i = 0; i < 30; ++i) {
        events << event(WattlogEventKind::Sleep, kNow.addSecs(i), QString::number(i));
    }
    page.showMetrics(battery(50, false), {});
    page.showEvents(events);
    const QList<PowerMetricCard*> cards = page.metricCards();
    const QList<WattlogEventRow*> rows = page.recentEventRows();

    BatteryPowerSnapshot draining = battery(50, false);
    draining.amperageMA = -2000;
    draining.voltageMV = 11000;
    page.showMetrics(draining, {});
    EXPECT_NE(page.metricCards().first(), cards.first());
    EXPECT_EQ(page.metricCards().first()->title(), "Discharge Rate");
    EXPECT_EQ(page.metricCards().mid(1), cards.mid(1));
    PowerMetricCard* rate = page.metricCards().first();
    draining.amperageMA = -1000;
    page.showMetrics(draining, {});
    EXPECT_EQ(page.metricCards().first(), rate);
    EXPECT_EQ(rate->value(), draining.powerRateText());

    events << event(WattlogEventKind::Wake, kNow.addSecs(60), "new");
    page.showEvents(events);
    const QList<WattlogEventRow*> moved = page.recentEventRows();
    ASSERT_EQ(moved.size(), PowerOverviewPage::kRecentEvents);
    EXPECT_EQ(moved.first()->wattlogEvent().detail, "new");
    EXPECT_EQ(moved.mid(1), rows.first(PowerOverviewPage::kRecentEvents - 1));
}

TEST(SampleTableModelTest, FollowsAGrowingListAndChangedTexts) {
    SampleTableModel model({"Time", "Value"});
    const auto rows = [](int newest, int count, const QString& value) {
        std::pair<QList<QStringList>, QList<double>> list;
        for (int ts = newest; ts > newest - count; --ts) {
            list.first << QStringList{QString::number(ts), value};
            list.second << ts;
        }
        return list;
    };
    int resets = 0;
    int inserted = 0;
    QObject::connect(&model, &SampleTableModel::modelReset, [&] { ++resets; });
    QObject::connect(
        &model, &SampleTableModel::rowsInserted,
        [&](const QModelIndex&, int first, int last) { inserted += last - first + 1; });
    const auto [first, firstKeys] = rows(100, 10, "a");
    model.setRows(first, firstKeys);
    EXPECT_EQ(resets, 1);

    // Older samples come in below, newer ones above; a kept sample's text may change.
    const auto [more, moreKeys] = rows(102, 40, "b");
    model.setRows(more, moreKeys);
    EXPECT_EQ(resets, 1);
    EXPECT_EQ(inserted, 30);
    ASSERT_EQ(model.rowCount(), 40);
    EXPECT_EQ(model.key(2), 100);
    EXPECT_EQ(model.index(2, 1).data(), "b");
    EXPECT_EQ(model.headerData(1, Qt::Horizontal), "Value");
}

TEST(PowerSourceDistributionViewTest, SharesRoundHalvesAwayFromZero) {
    PowerSourceDistributionView view;
    EXPECT_EQ(view.texts(), QStringList({"AC 0%", "Battery 0%"}));
    WattlogStats stats;
    stats.timeOnACRatio = 0.625;
    stats.timeOnBatteryRatio = 0.375;
    view.setStats(stats);
    EXPECT_EQ(view.texts(), QStringList({"AC 63%", "Battery 38%"}));
}

TEST(PowerBatteryPageTest, FollowsTheMonitorsReadingsAndRefreshesOnRequest) {
    FakePowerMonitor f;
    f.battery.set(BatteryReading{
        .percent = 80, .amperageMA = -1500, .voltageMV = 10000, .amperageScaleMaxMA = 3000});
    PowerBatteryPage page(f.monitor, f.state);
    page.show();
    int refreshes = 0;
    QObject::connect(&f.monitor, &BatteryPowerMonitor::refreshFinished, [&] { ++refreshes; });
    f.monitor.refreshNow();
    ASSERT_TRUE(processEventsUntil([&] { return refreshes == 1; }));
    EXPECT_EQ(page.liveCard()->texts().first(), "Live Discharge Rate");
    EXPECT_EQ(page.recommendationCard()->recommendation().detail, "Battery is at 80%.");
    EXPECT_TRUE(page.chart()->isEmpty());

    page.liveCard()->refreshButton()->click();
    ASSERT_TRUE(processEventsUntil([&] { return refreshes == 2; }));
    EXPECT_EQ(f.battery.reads(), 2);
}

// "2024-01-15 00:MM:00 +0000 Sleep ..." for minutes 0 to count - 1.
QByteArray sleepLog(int count) {
    QByteArray log;
    for (int minute = 0; minute < count; ++minute) {
        log += QStringLiteral("2024-01-15 %1:%2:00 +0000 Sleep  Entering Sleep state\n")
                   .arg(minute / 60, 2, 10, QChar('0'))
                   .arg(minute % 60, 2, 10, QChar('0'))
                   .toUtf8();
    }
    return log;
}

TEST(PowerTailPageTest, FollowsNewLinesOnlyWhileScrolledToTheBottom) {
    FakePowerMonitor f;
    f.powerLog.state().lock()->log = PowerLogSource::Log::Pmset;
    f.commands.respond("/usr/bin/pmset -g log", sleepLog(100));
    PowerLivePage page(f.monitor, f.state);
    page.resize(600, 300);
    page.show();
    int polls = 0;
    QObject::connect(&f.monitor, &BatteryPowerMonitor::livePollFinished, [&] { ++polls; });
    page.toggleButton()->click();
    EXPECT_EQ(page.statusText(), "Live");
    EXPECT_EQ(page.toggleButton()->text(), "Stop");
    EXPECT_EQ(page.emptyState()->message(), "Waiting for live pmset events");
    ASSERT_TRUE(processEventsUntil([&] { return polls == 1; }));
    QListWidget* list = page.lineList();
    ASSERT_EQ(list->count(), 100);
    EXPECT_EQ(list->item(0)->foreground().color(), namedColor(NamedColor::Indigo));
    QScrollBar* scroll = list->verticalScrollBar();
    EXPECT_GT(scroll->maximum(), 0);
    EXPECT_EQ(scroll->value(), scroll->maximum());

    scroll->setValue(10);
    f.commands.respond("/usr/bin/pmset -g log", sleepLog(120));
    f.clock.advance(BatteryPowerMonitor::kLivePollSeconds);
    ASSERT_TRUE(processEventsUntil([&] { return polls == 2; }));
    ASSERT_EQ(list->count(), 120);
    EXPECT_EQ(list->item(119)->text(), "2024-01-15 01:59:00 +0000 Sleep  Entering Sleep state");
    EXPECT_EQ(scroll->value(), 10);

    scroll->setValue(scroll->maximum());
    f.commands.respond("/usr/bin/pmset -g log", sleepLog(130));
    f.clock.advance(BatteryPowerMonitor::kLivePollSeconds);
    ASSERT_TRUE(processEventsUntil([&] { return polls == 3; }));
    EXPECT_EQ(list->count(), 130);
    EXPECT_EQ(scroll->value(), scroll->maximum());

    // Past the cap the oldest lines go; the line the user looks at stays in view.
    f.commands.respond("/usr/bin/pmset -g log", sleepLog(520));
    f.clock.advance(BatteryPowerMonitor::kLivePollSeconds);
    ASSERT_TRUE(processEventsUntil([&] { return polls == 4; }));
    scroll->setValue(100);
    const QString looked = list->item(100)->text();
    f.commands.respond("/usr/bin/pmset -g log", sleepLog(540));
    f.clock.advance(BatteryPowerMonitor::kLivePollSeconds);
    ASSERT_TRUE(processEventsUntil([&] { return polls == 5; }));
    ASSERT_EQ(list->count(), BatteryPowerMonitor::kMaxLiveLines);
    EXPECT_EQ(scroll->value(), 80);
    EXPECT_EQ(list->item(80)->text(), looked);

    page.toggleButton()->click();
    EXPECT_EQ(page.statusText(), "Stopped");
    EXPECT_EQ(list->count(), BatteryPowerMonitor::kMaxLiveLines);
}

}  // namespace
}  // namespace zelvar::test
