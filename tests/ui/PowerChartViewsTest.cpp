#include <QSignalSpy>
#include <QTest>

#include "support/Testing.h"
#include "ui/Palette.h"
#include "ui/power/CorrelationScatterView.h"
#include "ui/power/EventLaneTimelineView.h"
#include "ui/power/KindFilterBar.h"
#include "ui/power/LidStateTimelineView.h"
#include "ui/power/UsageSessionsView.h"

namespace zelvar::test {
namespace {

using K = WattlogEventKind;
const QDateTime kStart = QDateTime(QDate(2026, 1, 15), QTime(10, 0), Qt::UTC);

WattlogEvent at(K kind, int seconds) {
    WattlogEvent event;
    event.id = WattlogEvent::newId();
    event.kind = kind;
    event.timestamp = kStart.addSecs(seconds);
    event.detail = WattlogEventKinds::label(kind);
    return event;
}

QSet<K> allKinds() {
    const QList<K>& kinds = WattlogEventKinds::all();
    return {kinds.cbegin(), kinds.cend()};
}

TEST(PowerChartViewsTest, LanesFollowTheFixedOrderAndTheFilter) {
    const QList<K>& lanes = EventLaneTimelineView::defaultLanes();
    ASSERT_EQ(lanes.size(), 16);
    EXPECT_EQ(lanes.mid(0, 3), (QList<K>{K::Sleep, K::LidSleep, K::Wake}));
    EXPECT_EQ(lanes.last(), K::WifiDisconnected);
    EXPECT_FALSE(lanes.contains(K::BatteryLevel));
    EXPECT_FALSE(lanes.contains(K::LidOpen));

    EventLaneTimelineView view;
    view.resize(800, 400);
    EXPECT_EQ(view.emptyText(), "No events loaded");
    // A lid opening has no lane, so it alone counts as loaded but not visible.
    view.setEvents({at(K::LidOpen, 0)}, allKinds(), std::nullopt);
    EXPECT_EQ(view.emptyText(), "No events match the selected filters");

    view.setEvents({at(K::Wake, 0), at(K::Sleep, 10), at(K::AcConnected, 20)},
                   {K::AcConnected, K::Wake}, std::nullopt);
    EXPECT_EQ(view.filteredLanes(), (QList<K>{K::Wake, K::AcConnected}));
    ASSERT_EQ(view.visibleEvents().size(), 2);
    EXPECT_EQ(view.dots().at(1).lane, 1);
    EXPECT_EQ(view.emptyText(), "");
}

TEST(PowerChartViewsTest, DotsSpreadBetweenTheFirstAndLastVisibleEventClampedAtZero) {
    EventLaneTimelineView view;
    view.resize(800, 400);
    const double width = view.plotWidth();
    // One event, and several at one instant: the span is at least a second, all sit at 0.
    view.setEvents({at(K::Wake, 0)}, allKinds(), std::nullopt);
    EXPECT_EQ(view.dots().at(0).x, 0.0);
    view.setEvents({at(K::Wake, 5), at(K::Sleep, 5)}, allKinds(), std::nullopt);
    EXPECT_EQ(view.dots().at(1).x, 0.0);

    // The first visible event sets the start: an earlier one after it is held at 0; the hidden
    // kinds don't stretch the span.
    const QList<WattlogEvent> events{at(K::Reboot, -500), at(K::Wake, 100), at(K::Sleep, 50),
                                     at(K::Wake, 200), at(K::Reboot, 900)};
    view.setEvents(events, {K::Wake, K::Sleep}, std::nullopt);
    ASSERT_EQ(view.dots().size(), 3);
    EXPECT_EQ(view.dots().at(0).x, 0.0);
    EXPECT_EQ(view.dots().at(1).x, 0.0);
    EXPECT_DOUBLE_EQ(view.dots().at(2).x, width);
    EXPECT_DOUBLE_EQ(EventLaneTimelineView::xPosition(kStart.addSecs(150), kStart.addSecs(100),
                                                      kStart.addSecs(200), width),
                     width / 2);

    // Hovering and clicking take the nearest dot within reach; beside the dots, nothing.
    const QPointF last = view.dotCenter(view.dots().at(2));
    EXPECT_EQ(view.eventAt(last + QPointF(-4, 3))->id, events.at(3).id);
    EXPECT_FALSE(view.eventAt(last + QPointF(-8, 0)).has_value());
    QSignalSpy clicked(&view, &EventLaneTimelineView::eventClicked);
    QTest::mouseClick(&view, Qt::LeftButton, {}, view.dotCenter(view.dots().at(2)).toPoint());
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(view.plotLeft() + int(width / 2), 2));
    ASSERT_EQ(clicked.size(), 1);
    EXPECT_EQ(clicked.at(0).at(0).toUuid(), events.at(3).id);
}

TEST(PowerChartViewsTest, LidStripDrawsTheNewest80InTimeOrderAndCountsAll) {
    LidStateTimelineView view;
    EXPECT_EQ(view.segments().size(), 0);
    QList<WattlogEvent> events{at(K::Wake, 1)};
    for (int i = 89; i >= 0; --i) {  // newest first: the view sorts them
        events.append(at(i % 2 == 0 ? K::LidSleep : K::LidOpen, i * 60));
    }
    view.setEvents(events);
    EXPECT_EQ(view.caption(), "90 transitions");
    ASSERT_EQ(view.segments().size(), 80);
    EXPECT_EQ(view.segments().first().date, kStart.addSecs(10 * 60));
    EXPECT_TRUE(view.segments().first().closed);
    EXPECT_FALSE(view.segments().last().closed);
    EXPECT_EQ(view.segments().last().date, kStart.addSecs(89 * 60));
    // The strip is cut in 80 equal parts: the last pixel is the newest segment's.
    view.resize(810, view.sizeHint().height());
    EXPECT_EQ(view.segmentAt(QPoint(10, 30)), 0);
    EXPECT_EQ(view.segmentAt(QPoint(799, 30)), 79);
    EXPECT_EQ(view.segmentAt(QPoint(400, 5)), -1);  // the title line
}

TEST(PowerChartViewsTest, SessionBarsChangeColourAtEachBoundaryAndOpenOnesEndNow) {
    const QColor blue = namedColor(NamedColor::Blue);
    EXPECT_EQ(UsageSessionsView::barColor(0.49), withOpacity(blue, 0.5));
    EXPECT_EQ(UsageSessionsView::barColor(0.5), blue);
    EXPECT_EQ(UsageSessionsView::barColor(1.99), blue);
    EXPECT_EQ(UsageSessionsView::barColor(2), namedColor(NamedColor::Teal));
    EXPECT_EQ(UsageSessionsView::barColor(4), namedColor(NamedColor::Green));
    EXPECT_EQ(UsageSessionsView::barColor(7.99), namedColor(NamedColor::Green));
    EXPECT_EQ(UsageSessionsView::barColor(8), namedColor(NamedColor::Yellow));

    UsageSessionsView view;
    const QList<WattlogUsageSession> sessions{
        {QUuid::createUuid(), kStart, kStart.addSecs(2 * 3600)},
        {QUuid::createUuid(), kStart.addSecs(3 * 3600), std::nullopt}};
    view.setSessions(sessions, 5400, kStart.addSecs(3 * 3600 + 600));
    EXPECT_EQ(view.caption(), "2 sessions, avg 1h 30m");
    ASSERT_EQ(view.rows().size(), 2);
    EXPECT_EQ(view.rows().at(0).end, "Now");  // newest first
    EXPECT_EQ(view.rows().at(0).seconds, 600);
    EXPECT_EQ(view.rows().at(1).barColor, namedColor(NamedColor::Teal));
}

TEST(PowerChartViewsTest, ScatterKeepsAOneWattFloorAndClampsToThePlot) {
    CorrelationScatterView view;
    auto sample = [](std::optional<double> cpu, std::optional<double> watts, QString flow,
                     std::optional<QString> source = std::nullopt) {
        WattlogCorrelationSample s;
        s.cpuUtil = cpu;
        s.batteryWatts = watts;
        s.powerFlow = std::move(flow);
        s.source = std::move(source);
        return s;
    };
    view.setSamples({sample(20, 0.5, "discharge"), sample(150, 0.25, "", "AC"),
                     sample(std::nullopt, 3, "charge"), sample(40, std::nullopt, "charge"),
                     sample(-5, -1, "")});
    ASSERT_EQ(view.points().size(), 3);
    EXPECT_EQ(view.maxPower(), 1.0);
    EXPECT_EQ(view.points().at(0).position, QPointF(0.2, 0.5));
    EXPECT_EQ(view.points().at(1).position, QPointF(1.0, 0.25));
    EXPECT_EQ(view.points().at(1).flow, "AC");
    EXPECT_EQ(view.points().at(2).position, QPointF(0.0, 0.0));
    EXPECT_EQ(view.captions(), (QStringList{"CPU 0-100%", "Power up to 1.0 W"}));

    view.setSamples({sample(50, 12.34, "charge"), sample(10, 6.17, "ac_idle")});
    EXPECT_EQ(view.captions().at(1), "Power up to 12.3 W");
    EXPECT_EQ(view.points().at(1).position, QPointF(0.1, 0.5));
    EXPECT_EQ(CorrelationScatterView::flowColor("ac_idle"), namedColor(NamedColor::Blue));
    EXPECT_EQ(CorrelationScatterView::flowColor("other"), secondaryColor());
}

TEST(PowerChartViewsTest, FilterChipsToggleTheirKindAndWrap) {
    PowerViewState state;
    KindFilterBar bar(state);
    bar.resize(300, bar.heightForWidth(300));
    EXPECT_GT(bar.heightForWidth(300), bar.heightForWidth(2000));
    const QRect chip = bar.chipRect(K::JetsamEvent);
    ASSERT_TRUE(QRect(0, 0, 300, bar.height()).contains(chip));
    QTest::mouseClick(&bar, Qt::LeftButton, {}, chip.center());
    EXPECT_FALSE(state.visibleKinds().contains(K::JetsamEvent));
    EXPECT_EQ(state.visibleKinds().size(), 17);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, chip.center());
    EXPECT_EQ(state.visibleKinds(), allKinds());
}

}  // namespace
}  // namespace zelvar::test
