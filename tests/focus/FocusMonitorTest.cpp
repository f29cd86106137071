#include <gtest/gtest.h>

#include "focus/FocusMonitor.h"
#include "support/FakePorts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

struct FocusMonitorTest : ::testing::Test {
    FakeClock clock;
    FakeWorkspace workspace;
    FocusMonitor monitor{workspace, clock};
    int monitoringChanges = 0;
    int historyChanges = 0;

    FocusMonitorTest() {
        QObject::connect(&monitor, &FocusMonitor::isMonitoringChanged,
                         [this] { ++monitoringChanges; });
        QObject::connect(&monitor, &FocusMonitor::focusHistoryChanged,
                         [this] { ++historyChanges; });
    }
    // Moves time on by `seconds`, then the desktop activates `name`.
    void after(double seconds, const QString& name) {
        clock.advance(seconds);
        workspace.activate(name);
    }
};

}  // namespace

TEST_F(FocusMonitorTest, StartTakesTheFrontmostWithoutAnEventAndTheFirstChangeCountsFromThere) {
    workspace.setFrontmost(RunningApplication{.pid = 7, .localizedName = "Editor"});
    monitor.start();
    EXPECT_TRUE(monitor.isMonitoring() && monitor.focusHistory().isEmpty());
    // A second start neither reads again nor restarts the measure; the current application
    // again is no change and keeps its time running; a nameless one is no activation.
    clock.advance(2);
    workspace.setFrontmost(RunningApplication{.localizedName = "Other"});
    monitor.start();
    after(2, "Editor");
    after(0.5, "");
    after(0.5, "Browser");
    EXPECT_EQ(monitoringChanges, 1);
    ASSERT_EQ(monitor.focusHistory().size(), 1);
    const FocusEvent& e = monitor.focusHistory().last();
    EXPECT_EQ(std::tuple(e.appName, e.previousApp, e.duration, e.timestamp),
              std::tuple(QString("Browser"), std::optional<QString>("Editor"), std::optional(5.0),
                         clock.now()));
    EXPECT_FALSE(e.id.isNull());
    EXPECT_EQ(monitor.currentApp(), "Browser");
}

TEST_F(FocusMonitorTest, UnknownAtStartAndStopKeepsStateUntilARestartMeasuresAfresh) {
    monitor.start();
    after(1, "Terminal");
    EXPECT_EQ(monitor.focusHistory().first().previousApp, "Unknown");
    monitor.stop();
    EXPECT_FALSE(workspace.isSubscribed() || monitor.isMonitoring());
    after(1, "Mail");
    EXPECT_EQ(monitor.currentApp(), "Terminal");
    // The restart reads the desktop again; the time stopped does not count.
    clock.advance(100);
    monitor.start();
    EXPECT_EQ(monitor.currentApp(), "Mail");
    after(4, "Terminal");
    EXPECT_EQ(monitor.focusHistory().size(), 2);
    EXPECT_EQ(monitor.focusHistory().last().duration, 4.0);
}

TEST_F(FocusMonitorTest, StolenOnlyWhenTheLastTwoChangesGoThereAndBackInUnderThreeSeconds) {
    monitor.start();
    after(10, "A");
    EXPECT_EQ(monitor.lastStolenBy(), std::nullopt) << "one event";
    after(10, "B");
    after(2.999, "A");
    EXPECT_EQ(monitor.lastStolenBy(), "B");
    after(10, "B");
    after(3.0, "A");
    EXPECT_EQ(monitor.lastStolenBy(), std::nullopt) << "exactly three seconds";
    after(10, "B");
    after(0.1, "C");
    EXPECT_EQ(monitor.lastStolenBy(), std::nullopt) << "A to B to C";
}

TEST_F(FocusMonitorTest, TheHistoryKeepsTheNewestTwoHundred) {
    monitor.start();
    for (int i = 0; i < 201; ++i) {
        after(1, QStringLiteral("App %1").arg(i));
    }
    ASSERT_EQ(monitor.focusHistory().size(), 200);
    EXPECT_EQ(monitor.focusHistory().first().appName, "App 1");
    EXPECT_EQ(monitor.focusHistory().last().appName, "App 200");
    EXPECT_EQ(historyChanges, 201);
}

TEST(FocusEventTest, DurationTextSwitchesUnitAtOneSecondAndOneMinute) {
    EXPECT_EQ(QStringList({FocusEvent::durationText(0.8094), FocusEvent::durationText(1.0),
                           FocusEvent::durationText(59.94), FocusEvent::durationText(60.0)}),
              QStringList({"809ms", "1.0s", "59.9s", "1.0m"}));
}
