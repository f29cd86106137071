#include <gtest/gtest.h>

#include "audio/AudioFakes.h"
#include "audio/AudioMonitor.h"
#include "platform/SystemProfile.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/QtPrinters.h"

namespace zelvar {
namespace {

using test::FakeAudioDevices;
using test::FakeClock;
using test::FakeCommandRunner;
using test::FakeWorkspace;
using test::processEventsUntil;

struct MonitorRig {
    explicit MonitorRig(SystemProfile profile = linuxSystemProfile())
        : system(std::move(profile)),
          monitor({devices, commands, workspace, clock, clock, system}) {
        workspace.setRunning({{7, "Player", true}});
        QObject::connect(&monitor, &AudioMonitor::refreshFinished, [this] { ++finished; });
    }
    // Lets the refresh under way end.
    void settle() {
        const int before = finished;
        ASSERT_TRUE(processEventsUntil([&] { return finished > before; }));
    }
    // One second on: the next refresh starts, and ends.
    void tick() {
        clock.advance(AudioMonitor::kRefreshIntervalSeconds);
        settle();
    }

    FakeClock clock;
    FakeCommandRunner commands;
    FakeAudioDevices devices;
    FakeWorkspace workspace;
    SystemProfile system;
    AudioMonitor monitor;
    int finished = 0;
};

TEST(AudioMonitorTest, OnlyRisingEdgesMakeEventsAndTheStatusFollows) {
    MonitorRig rig;
    EXPECT_EQ(rig.monitor.outputStatusText(), "Speaker idle");
    EXPECT_EQ(rig.monitor.inputStatusText(), "Microphone idle");

    // Running from the start: one event, on the first refresh.
    rig.devices.output = true;
    rig.monitor.start();
    rig.settle();
    rig.tick();
    rig.tick();
    ASSERT_EQ(rig.monitor.outputHistory().size(), 1);
    const AudioAppEvent& event = rig.monitor.outputHistory().first();
    EXPECT_EQ(event.appName, "Player");
    EXPECT_EQ(event.source, "frontmost fallback");
    EXPECT_EQ(event.bundleID, std::nullopt);
    EXPECT_EQ(rig.monitor.outputStatusText(), "Player");

    // Idle again: the name stays, the status text no longer shows it.
    rig.devices.output = false;
    rig.tick();
    EXPECT_EQ(rig.monitor.mostRecentOutputApp(), "Player");
    EXPECT_EQ(rig.monitor.outputStatusText(), "Speaker idle");

    // The microphone toggling every second: every rising edge counts, none is deduplicated.
    for (int second = 0; second < 4; ++second) {
        rig.devices.input = second % 2 == 0;
        rig.tick();
    }
    EXPECT_EQ(rig.monitor.inputHistory().size(), 2);
    EXPECT_EQ(rig.monitor.mostRecentInputApp(), "Player");
    rig.devices.input = true;
    rig.tick();
    EXPECT_EQ(rig.monitor.inputStatusText(), "Player");
}

TEST(AudioMonitorTest, OutputEventsAreDedupedByKeyForTwoSecondsAndCapped) {
    MonitorRig rig;
    int added = 0;
    QObject::connect(&rig.monitor, &AudioMonitor::eventAdded, [&] { ++added; });
    rig.monitor.addOutputEvent("Music", std::nullopt, "process scan");
    rig.clock.advance(1.9);
    // Dropped, but still the most recent application, and the output is active.
    rig.monitor.addOutputEvent("Music", std::nullopt, "process scan");
    EXPECT_EQ(rig.monitor.outputHistory().size(), 1);
    EXPECT_TRUE(rig.monitor.isOutputActive());
    // The stored time is not refreshed by a dropped one: 2.0 s after the first is accepted.
    rig.clock.advance(0.1);
    rig.monitor.addOutputEvent("Music", std::nullopt, "process scan");
    // The same application by bundle identifier from the log is another key.
    rig.monitor.addOutputEvent("Music", QString("com.apple.Music"), "CoreAudio log");
    rig.monitor.addOutputEvent("Music", QString("com.apple.Music"), "CoreAudio log");
    rig.monitor.addOutputEvent("Other", QString("com.apple.Music"), "CoreAudio log");
    EXPECT_EQ(rig.monitor.outputHistory().size(), 3);
    EXPECT_EQ(rig.monitor.outputHistory().last().bundleID, "com.apple.Music");
    EXPECT_EQ(rig.monitor.mostRecentOutputApp(), "Other");
    EXPECT_EQ(added, 3);

    for (int i = 0; i < AudioMonitor::kHistoryLimit + 5; ++i) {
        rig.monitor.addOutputEvent(QString("App %1").arg(i), std::nullopt, "process scan");
    }
    ASSERT_EQ(rig.monitor.outputHistory().size(), AudioMonitor::kHistoryLimit);
    EXPECT_EQ(rig.monitor.outputHistory().first().appName, "App 5");
    EXPECT_EQ(rig.monitor.outputHistory().last().appName, "App 204");
}

TEST(AudioMonitorTest, TheLogScanRunsEveryFiveSecondsOverOverlappingWindows) {
    MonitorRig rig(macSystemProfile());
    rig.devices.outputClients = std::nullopt;
    const auto logStarts = [&] {
        QStringList starts;
        for (const CommandRequest& request : rig.commands.requests()) {
            if (request.program == "/usr/bin/log") {
                starts.append(request.arguments.at(4));
            }
        }
        return starts;
    };
    const auto local = [&](double offset) {
        return rig.clock.now()
            .addMSecs(qint64(offset * 1000))
            .toLocalTime()
            .toString("yyyy-MM-dd HH:mm:ss");
    };
    const QString firstWindow = local(-5.0);
    const QString secondWindow = local(-0.5);
    // A log line while the speaker is idle: an event, and the output active until the device
    // read of the same refresh puts it back.
    const QString logLine = "\"com.spotify.client\" : 1";
    rig.commands.respond(
        QStringList{"/usr/bin/log", "show", "--style", "compact", "--start", firstWindow,
                    "--predicate", AudioAppDetection::unifiedLogPredicate()}
            .join(' '),
        logLine.toUtf8());
    int outputActive = 0;
    QObject::connect(&rig.monitor, &AudioMonitor::isOutputActiveChanged, [&] { ++outputActive; });
    rig.monitor.start();
    rig.settle();
    EXPECT_EQ(outputActive, 2);
    EXPECT_FALSE(rig.monitor.isOutputActive());
    ASSERT_EQ(rig.monitor.outputHistory().size(), 1);
    EXPECT_EQ(rig.monitor.outputHistory().first().source, "CoreAudio log");

    for (int second = 0; second < 5; ++second) {
        rig.tick();
    }
    // At 0 s the window from 5 s before the start, at 5 s from half a second before 0 s.
    EXPECT_EQ(logStarts(), (QStringList{firstWindow, secondWindow}));
}

TEST(AudioMonitorTest, StopLetsTheRefreshFinishAndArmsNothing) {
    MonitorRig rig;
    rig.devices.output = true;
    rig.monitor.start();
    rig.monitor.start();  // no second loop
    rig.monitor.stop();
    rig.settle();
    EXPECT_EQ(rig.monitor.outputHistory().size(), 1);
    EXPECT_EQ(rig.clock.pendingCallbacks(), 0u);
    EXPECT_FALSE(rig.monitor.isRunning());
    // Started again, the histories stay.
    rig.monitor.start();
    rig.settle();
    EXPECT_EQ(rig.monitor.outputHistory().size(), 1);
    EXPECT_EQ(rig.finished, 2);
}

}  // namespace
}  // namespace zelvar
