#include <QFile>
#include <QListView>
#include <QScrollBar>
#include <QTest>

#include "compose/Monitors.h"
#include "power/BatteryPowerMonitor.h"
#include "power/WattlogSampleFiles.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Testing.h"
#include "ui/power/CorrelationScatterView.h"
#include "ui/power/EventLaneTimelineView.h"
#include "ui/power/PowerCorrelationPage.h"
#include "ui/power/PowerEventListModel.h"
#include "ui/power/PowerEventsPage.h"
#include "ui/power/PowerFormat.h"
#include "ui/power/PowerMetricCard.h"
#include "ui/power/PowerTimelinePage.h"
#include "ui/power/PowerViewState.h"
#include "ui/power/UsageSessionsView.h"
#include "ui/power/WattlogEventRow.h"
#include "ui/widgets/SearchBar.h"

namespace zelvar::test {
namespace {

// The power monitor composed as the app composes it, over a fake pmset log of four events,
// with the Events and Timeline pages on screen over one shared state.
class PowerEventPagesTest : public ::testing::Test {
protected:
    PowerEventPagesTest() {
        m_fake.powerLog.state().lock()->log = PowerLogSource::Log::Pmset;
        load(4);
        m_events.resize(700, 600);
        m_events.show();
        m_timeline.resize(900, 900);
        m_timeline.show();
    }
    // Sleeps at 10:00, 10:01, ... as the power log would say them.
    static QByteArray sleepLines(int count) {
        QByteArray log;
        for (int minute = 0; minute < count; ++minute) {
            log += QStringLiteral(
                       "2026-01-15 10:%1:00 +0000 Sleep  Entering Sleep state due to "
                       "'Idle Sleep'\n")
                       .arg(minute, 2, 10, QLatin1Char('0'))
                       .toUtf8();
        }
        return log;
    }
    void load(int count) {
        m_fake.commands.respond("/usr/bin/pmset -g log", sleepLines(count));
        int loads = 0;
        const auto counting = QObject::connect(
            &monitor(), &BatteryPowerMonitor::historyLoadFinished, [&] { ++loads; });
        monitor().reloadWattlogHistory();
        EXPECT_TRUE(processEventsUntil([&] { return loads == 1; }));
        QObject::disconnect(counting);
    }
    BatteryPowerMonitor& monitor() { return *m_monitors.batteryPowerMonitor(); }
    const PowerEventListModel& model() { return m_events.model(); }
    void clickRow(int row) {
        QListView* list = m_events.list();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualRect(list->model()->index(row, 0)).center());
    }

    FakePorts m_fake;
    Monitors m_monitors{m_fake.ports(), Monitors::Mode::Headless, Monitors::Part::Power};
    PowerViewState m_state;
    PowerEventsPage m_events{monitor(), m_state};
    PowerTimelinePage m_timeline{monitor(), m_state};
};

TEST_F(PowerEventPagesTest, KindsAndFilterTextNarrowBothPagesNewestFirst) {
    ASSERT_EQ(model().rowCount(), 4);
    EXPECT_EQ(m_events.subtitle(), "4 visible");
    EXPECT_GT(model().eventAt(0).timestamp, model().eventAt(3).timestamp);
    EXPECT_EQ(m_timeline.timeline()->dots().size(), 4);

    // The time stands in the raw line alone, and still keeps its event.
    m_events.searchBar()->setText("10:01:00");
    EXPECT_EQ(m_state.filterText(), "10:01:00");
    ASSERT_EQ(model().rowCount(), 1);
    EXPECT_TRUE(model().eventAt(0).rawLine.startsWith("2026-01-15 10:01:00"));
    m_state.setFilterText("idle SLEEP");
    EXPECT_EQ(model().rowCount(), 4);

    m_state.setVisibleKinds({});
    EXPECT_EQ(model().rowCount(), 0);
    EXPECT_EQ(m_events.subtitle(), "0 visible");
    EXPECT_TRUE(m_timeline.timeline()->dots().isEmpty());
    EXPECT_EQ(m_timeline.timeline()->emptyText(), "No events match the selected filters");
}

TEST_F(PowerEventPagesTest, ClickSelectsShowsTheRawLineAndClickAgainClears) {
    QListView* list = m_events.list();
    const int plainHeight = list->visualRect(model().index(1, 0)).height();
    clickRow(1);
    const QUuid id = model().eventAt(1).id;
    EXPECT_EQ(m_state.selectedEventID(), id);
    EXPECT_TRUE(model().index(1, 0).data(PowerEventListModel::ShowRawRole).toBool());
    EXPECT_FALSE(model().index(0, 0).data(PowerEventListModel::ShowRawRole).toBool());
    EXPECT_GT(list->visualRect(model().index(1, 0)).height(), plainHeight);
    // The timeline shares the selection and shows the event's row below its lanes.
    ASSERT_NE(m_timeline.selectedRow(), nullptr);
    EXPECT_EQ(m_timeline.selectedRow()->wattlogEvent().id, id);

    // A refresh of the list keeps the selection.
    m_events.refresh();
    EXPECT_TRUE(model().index(1, 0).data(PowerEventListModel::ShowRawRole).toBool());

    clickRow(1);
    EXPECT_EQ(m_state.selectedEventID(), std::nullopt);
    EXPECT_FALSE(model().index(1, 0).data(PowerEventListModel::ShowRawRole).toBool());
    EXPECT_EQ(list->visualRect(model().index(1, 0)).height(), plainHeight);
    EXPECT_EQ(m_timeline.selectedRow(), nullptr);

    // A dot of the timeline selects too.
    EventLaneTimelineView* lanes = m_timeline.timeline();
    QTest::mouseClick(lanes, Qt::LeftButton, {}, lanes->dotCenter(lanes->dots().at(0)).toPoint());
    EXPECT_EQ(m_state.selectedEventID(), lanes->dots().at(0).id);
    EXPECT_TRUE(model().index(3, 0).data(PowerEventListModel::ShowRawRole).toBool());
}

TEST_F(PowerEventPagesTest, NewerEventsArrivingAboveKeepTheViewedRowInPlace) {
    load(40);
    QListView* list = m_events.list();
    list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum() / 2);
    const QModelIndex top = list->indexAt(QPoint(1, 1));
    const QUuid viewed = model().eventAt(top.row()).id;
    const int offset = list->visualRect(top).top();

    m_fake.commands.respond("/usr/bin/pmset -g log", sleepLines(45));
    int polls = 0;
    const auto counting =
        QObject::connect(&monitor(), &BatteryPowerMonitor::livePollFinished, [&] { ++polls; });
    monitor().startWattlogLiveTail();
    const bool polled = processEventsUntil([&] { return polls == 1; });
    monitor().stopWattlogLiveTail();
    QObject::disconnect(counting);
    ASSERT_TRUE(polled);
    ASSERT_EQ(model().rowCount(), 45);
    const QModelIndex after = list->indexAt(QPoint(1, 1));
    EXPECT_EQ(model().eventAt(after.row()).id, viewed);
    EXPECT_EQ(after.row(), top.row() + 5);
    EXPECT_EQ(list->visualRect(after).top(), offset);
}

TEST_F(PowerEventPagesTest, AHiddenPageCatchesUpWhenShownAndSessionsEndNow) {
    m_events.hide();
    m_fake.commands.respond("/usr/bin/pmset -g log",
                            "2026-01-15 09:00:00 +0000 Wake  Wake from Normal Sleep\n"
                            "2026-01-15 09:30:00 +0000 Sleep  Entering Sleep state\n"
                            "2026-01-15 11:00:00 +0000 Wake  Wake from Normal Sleep\n");
    int loads = 0;
    const auto counting =
        QObject::connect(&monitor(), &BatteryPowerMonitor::historyLoadFinished, [&] { ++loads; });
    monitor().reloadWattlogHistory();
    ASSERT_TRUE(processEventsUntil([&] { return loads == 1; }));
    QObject::disconnect(counting);
    EXPECT_EQ(model().rowCount(), 4);  // the old list, until the page shows
    m_events.show();
    EXPECT_EQ(model().rowCount(), int(monitor().powerEvents().size()));

    // The fake clock stands at 12:00: the open session has lasted an hour.
    const UsageSessionsView& sessions = *m_timeline.sessions();
    ASSERT_EQ(sessions.rows().size(), 2);
    EXPECT_EQ(sessions.rows().at(0).end, "Now");
    EXPECT_EQ(sessions.rows().at(0).seconds, 3600);
    EXPECT_EQ(sessions.rows().at(1).seconds, 1800);
    EXPECT_EQ(
        sessions.caption(),
        "2 sessions, avg " + powerDurationText(monitor().derivedData().stats.averageSessionLength));
}

TEST_F(PowerEventPagesTest, CorrelationCardsShowTheNewestSampleAndDashesForTheAbsent) {
    PowerCorrelationPage page(monitor(), m_state);
    page.show();
    auto values = [&page] {
        QStringList result;
        for (const PowerMetricCard* card : page.cards()) {
            result << card->title() + " " + card->value();
        }
        return result;
    };
    EXPECT_EQ(values(), (QStringList{"Samples 0", "Power --", "CPU --", "RAM --", "Swap --",
                                     "Brightness --"}));

    const QString path = WattlogSampleFiles::correlationSamplesFile(m_fake.paths);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "{\"ts\": 100, \"cpu_util_pct\": 10, \"battery_watts\": 3}\n"
        "{\"ts\": 200, \"cpu_util_pct\": 42.6, \"battery_watts\": 7.26, "
        "\"ram_used_pct\": 61.4, \"swap_used_mb\": 512}\n");
    file.close();
    int refreshes = 0;
    QObject::connect(&monitor(), &BatteryPowerMonitor::refreshFinished, [&] { ++refreshes; });
    monitor().refreshNow();
    ASSERT_TRUE(processEventsUntil([&] { return refreshes == 1; }));
    EXPECT_EQ(values(), (QStringList{"Samples 2", "Power 7.3 W", "CPU 43%", "RAM 61%",
                                     "Swap 512 MB", "Brightness --"}));
    EXPECT_EQ(page.scatter()->points().size(), 2);
    EXPECT_EQ(page.scatter()->maxPower(), 7.26);
}

}  // namespace
}  // namespace zelvar::test
