#include <gtest/gtest.h>

#include "focus/FocusMonitor.h"
#include "support/FakePorts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

struct FocusFixture : ::testing::Test {
    FakeClock clock;
    FakeWorkspace workspace;
    FocusMonitor monitor{workspace, clock};

    // Moves time on by `seconds`, then the desktop activates `name`.
    void after(double seconds, const QString& name) {
        clock.advance(seconds);
        workspace.activate(name);
    }
    // How often `signal` fires from now on.
    template <typename Signal>
    std::shared_ptr<int> count(Signal signal) {
        auto fired = std::make_shared<int>(0);
        QObject::connect(&monitor, signal, [fired] { ++*fired; });
        return fired;
    }
};

}  // namespace

TEST_F(FocusFixture, StartTakesTheFrontmostWithoutAnEventAndTheFirstChangeCountsFromThere) {
    workspace.setFrontmost(RunningApplication{.pid = 7, .localizedName = "Editor"});
    const auto monitoring = count(&FocusMonitor::isMonitoringChanged);
    monitor.start();
    EXPECT_EQ(monitor.currentApp(), "Editor");
    EXPECT_TRUE(monitor.isMonitoring());
    EXPECT_TRUE(monitor.focusHistory().isEmpty());

    // A second start neither reads again nor restarts the measure.
    clock.advance(2);
    workspace.setFrontmost(RunningApplication{.localizedName = "Other"});
    monitor.start();
    EXPECT_EQ(monitor.currentApp(), "Editor");
    EXPECT_EQ(*monitoring, 1);

    // The current application again is no change and keeps the time running; a nameless one is
    // no activation.
    after(2, "Editor");
    after(0.5, "");
    after(0.5, "Browser");
    ASSERT_EQ(monitor.focusHistory().size(), 1);
    const FocusEvent& first = monitor.focusHistory().first();
    EXPECT_EQ(first.appName, "Browser");
    EXPECT_EQ(first.previousApp, "Editor");
    EXPECT_EQ(first.duration, 5.0);
    EXPECT_EQ(first.timestamp, clock.now());
    EXPECT_FALSE(first.id.isNull());
    EXPECT_EQ(monitor.currentApp(), "Browser");
}

TEST_F(FocusFixture, AnUnknownFrontmostIsUnknownAndStopKeepsStateUntilARestartMeasuresAfresh) {
    monitor.start();
    EXPECT_EQ(monitor.currentApp(), FocusMonitor::kUnknownApp);
    after(1, "Terminal");
    EXPECT_EQ(monitor.focusHistory().first().previousApp, "Unknown");

    monitor.stop();
    EXPECT_FALSE(workspace.isSubscribed());
    EXPECT_FALSE(monitor.isMonitoring());
    after(1, "Mail");
    EXPECT_EQ(monitor.currentApp(), "Terminal");
    EXPECT_EQ(monitor.focusHistory().size(), 1);

    // The restart reads the desktop again (Mail took the focus meanwhile), and the time stopped
    // does not count into the next duration.
    clock.advance(100);
    monitor.start();
    EXPECT_EQ(monitor.currentApp(), "Mail");
    after(4, "Terminal");
    ASSERT_EQ(monitor.focusHistory().size(), 2);
    EXPECT_EQ(monitor.focusHistory().last().previousApp, "Mail");
    EXPECT_EQ(monitor.focusHistory().last().duration, 4.0);
}

TEST_F(FocusFixture, StolenOnlyWhenTheLastTwoChangesGoThereAndBackInUnderThreeSeconds) {
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

    // The verdict lasts until the next change.
    after(10, "X");
    after(1, "C");
    EXPECT_EQ(monitor.lastStolenBy(), "X");
    after(10, "D");
    EXPECT_EQ(monitor.lastStolenBy(), std::nullopt);
}

TEST_F(FocusFixture, TheHistoryKeepsTheNewestTwoHundred) {
    monitor.start();
    const auto history = count(&FocusMonitor::focusHistoryChanged);
    for (int i = 0; i < 201; ++i) {
        after(1, QStringLiteral("App %1").arg(i));
    }
    ASSERT_EQ(monitor.focusHistory().size(), FocusMonitor::kMaxHistory);
    EXPECT_EQ(monitor.focusHistory().first().appName, "App 1");
    EXPECT_EQ(monitor.focusHistory().last().appName, "App 200");
    EXPECT_EQ(*history, 201);
}

TEST(FocusEventTest, DurationTextSwitchesUnitAtOneSecondAndOneMinute) {
    EXPECT_EQ(FocusEvent::durationText(0.0), "0ms");
    EXPECT_EQ(FocusEvent::durationText(0.8094), "809ms");
    EXPECT_EQ(FocusEvent::durationText(1.0), "1.0s");
    EXPECT_EQ(FocusEvent::durationText(59.94), "59.9s");
    EXPECT_EQ(FocusEvent::durationText(60.0), "1.0m");
    EXPECT_EQ(FocusEvent::durationText(5400.0), "90.0m");
}
