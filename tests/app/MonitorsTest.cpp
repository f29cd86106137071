#include "compose/Monitors.h"
#include "config/ConfigManager.h"
#include "process/ProcessMonitor.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

// One cycle over a process above its auto-kill limit, with notifications switched off in the
// file: the desktop kills, sounds, keeps quiet as the file says and records the trigger; a
// headless look does none of that and leaves the file as it was.
TEST(MonitorsTest, DesktopEnforcesTheUsersLimitsWhileHeadlessOnlyLooks) {
    for (const auto mode : {Monitors::Mode::Desktop, Monitors::Mode::Headless}) {
        const bool desktop = mode == Monitors::Mode::Desktop;
        SCOPED_TRACE(desktop ? "desktop" : "headless");
        LogCapture quiet;
        FakePorts fakes;
        fakes.processTable.setProcesses(
            {{1, 0, "init", 4 << 20, 0}, {42, 1, "hog", quint64(500) << 20, 0}});
        const QByteArray config =
            R"({"enable_notifications": false, "limits": [{"id": )"
            R"("6F9619FF-8B86-D011-B42D-00C04FC964FF", "process_name": "hog", "limit_mb": 100,)"
            R"( "auto_kill_enabled": true, "created_at": "2026-01-01T00:00:00Z"}]})";
        QFile file(ConfigManager::defaultFile(fakes.paths));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(config) == config.size());
        file.close();

        Monitors monitors(fakes.ports(), mode);
        monitors.start();
        const ProcessMonitor& monitor = *monitors.processMonitor();
        ASSERT_TRUE(processEventsUntil(
            [&] { return !monitor.currentProcesses().isEmpty() && !monitor.isRefreshInFlight(); }));
        monitors.stop();

        EXPECT_FALSE(monitor.isMonitoring());
        EXPECT_EQ(monitor.currentProcesses().size(), 2);
        EXPECT_EQ(fakes.signaller.sent().size(), desktop ? 1u : 0u);
        EXPECT_EQ(fakes.sounds.played(), desktop ? QStringList{"sound:Glass"} : QStringList{});
        EXPECT_TRUE(fakes.notifications.delivered().empty());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray written = file.readAll();
        EXPECT_EQ(written == config, !desktop);
        EXPECT_EQ(written.contains("last_triggered"), desktop);
    }
}
