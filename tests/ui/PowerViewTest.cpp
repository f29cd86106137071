#include <QAbstractButton>
#include <QProgressBar>
#include <QToolButton>
#include <cmath>
#include <limits>

#include "compose/Monitors.h"
#include "power/BatteryPowerMonitor.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Testing.h"
#include "ui/Palette.h"
#include "ui/power/PowerFormat.h"
#include "ui/power/PowerView.h"

namespace zelvar::test {
namespace {

TEST(PowerFormatTest, DurationsByTheirUnitsAtTheEdges) {
    const std::pair<double, const char*> cases[] = {
        {std::numeric_limits<double>::quiet_NaN(), "0m"},
        {std::numeric_limits<double>::infinity(), "0m"},
        {-1, "0m"},
        {59.9, "0m"},
        {3599, "59m"},
        {3600, "1h 0m"},
        {11520, "3h 12m"},
        {86399.9, "23h 59m"},
        {86400, "1d 0h"},
        {90000, "1d 1h"},
        {190800, "2d 5h"},
    };
    for (const auto& [seconds, text] : cases) {
        EXPECT_EQ(powerDurationText(seconds), text) << seconds;
    }
    EXPECT_EQ(kindColor(WattlogEventKind::Sleep), namedColor(NamedColor::Indigo));
    EXPECT_EQ(kindColor(WattlogEventKind::BatteryLevel), namedColor(NamedColor::Mint));
    EXPECT_EQ(kindColor(WattlogEventKind::LidOpen), QColor::fromRgbF(0.6f, 0.4f, 1.0f));
}

// The Power tab over a monitor on fake ports: a battery that can be set and a journal whose
// reads are recorded.
class PowerViewTest : public ::testing::Test {
protected:
    PowerViewTest() { m_fake.powerLog.state().lock()->log = PowerLogSource::Log::Journal; }
    ~PowerViewTest() override { monitor().stop(); }

    BatteryPowerMonitor& monitor() { return *m_monitors.batteryPowerMonitor(); }
    int journalReads() { return int(m_fake.powerLog.state().lock()->asked.size()); }
    void waitForHistory() {
        ASSERT_TRUE(processEventsUntil([&] { return !monitor().isHistoryLoading(); }));
    }

    FakePorts m_fake;
    Monitors m_monitors{m_fake.ports(), Monitors::Mode::Headless,
                        Monitors::Parts(Monitors::Part::Power)};
};

TEST_F(PowerViewTest, AppearingStartsOneLoopAndLoadsTheHistoryOnlyWhileItIsEmpty) {
    monitor().start();
    PowerView view(monitor());
    view.show();
    // The loop was running: one refresh at its start, none doubled by the tab.
    ASSERT_TRUE(processEventsUntil([&] { return m_fake.battery.reads() >= 1; }));
    waitForHistory();
    EXPECT_EQ(m_fake.battery.reads(), 1);
    EXPECT_EQ(journalReads(), 1);
    EXPECT_FALSE(view.progressBar()->isVisible());

    // Still empty: showing the tab again loads again; the refresh button always does.
    view.hide();
    view.show();
    waitForHistory();
    EXPECT_EQ(journalReads(), 2);
    view.refreshButton()->click();
    waitForHistory();
    EXPECT_EQ(journalReads(), 3);
    EXPECT_EQ(view.refreshButton()->toolTip(), "Refresh Wattlog history");

    // With events, appearing leaves the history as it is.
    m_fake.powerLog.state().lock()->entries = {{m_fake.clock.now().toMSecsSinceEpoch() * 1000,
                                                "boot-1",
                                                "kernel",
                                                "PM: suspend entry (deep)",
                                                {}}};
    view.refreshButton()->click();
    waitForHistory();
    ASSERT_FALSE(monitor().powerEvents().isEmpty());
    const int reads = journalReads();
    view.hide();
    view.show();
    processEventsUntil([] { return false; }, 50);
    EXPECT_EQ(journalReads(), reads);
    EXPECT_EQ(m_fake.battery.reads(), 1);
}

TEST_F(PowerViewTest, SummaryLeavesOutAbsentMetricsAndFollowsThePowerSource) {
    PowerView view(monitor());
    view.show();
    waitForHistory();
    // No battery: neither cycles nor health.
    ASSERT_TRUE(processEventsUntil([&] { return m_fake.battery.reads() >= 1; }));
    processEventsUntil([&] { return view.summaryMetrics().size() == 1; }, 1000);
    EXPECT_EQ(view.summaryMetrics().size(), 1);
    EXPECT_TRUE(view.summaryMetrics().value(0).startsWith("Updated "))
        << view.summaryMetrics().value(0).toStdString();
    EXPECT_EQ(view.summarySymbol(), "battery.75");

    m_fake.battery.set(BatteryReading{.percent = 64,
                                      .isExternalConnected = true,
                                      .isCharging = true,
                                      .amperageMA = 1200,
                                      .voltageMV = 12000,
                                      .maxCapacity = 4000,
                                      .designCapacity = 5000,
                                      .cycleCount = 412});
    monitor().refreshNow();
    ASSERT_TRUE(processEventsUntil([&] { return view.summarySymbol() == "bolt.fill"; }));
    EXPECT_EQ(view.summaryMetrics().mid(0, 2), QStringList({"Cycle 412", "Health 80%"}));
    EXPECT_TRUE(view.summaryTexts().value(0).contains("64%"));

    // The subtab bar switches the page below it.
    QStringList labels;
    for (PowerSubtab subtab : allPowerSubtabs()) {
        labels << view.subtabButton(subtab)->text();
    }
    EXPECT_EQ(labels, QStringList({"Overview", "Battery", "Timeline", "Events", "Live",
                                   "Correlation", "Samples"}));
    view.subtabButton(PowerSubtab::Events)->click();
    EXPECT_EQ(view.selectedSubtab(), PowerSubtab::Events);
    EXPECT_TRUE(view.page(PowerSubtab::Events)->isVisible());
    EXPECT_FALSE(view.page(PowerSubtab::Overview)->isVisible());
}

}  // namespace
}  // namespace zelvar::test
