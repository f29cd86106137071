#include <thread>

#include "NotificationServer.h"
#include "alerts/NotificationHelper.h"
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "support/EventLoop.h"
#include "support/LogCapture.h"
#include "support/SessionBus.h"
#include "support/Testing.h"

TEST(NotificationDeliveryLiveTest, AlertsReachAServerOnceOneAnswers) {
    SessionBus bus;
    ASSERT_TRUE(bus.started()) << "dbus-daemon did not start";
    LogCapture log;
    FreedesktopNotificationCenter center(bus.connect("client"));
    NotificationHelper helper(center);
    ASSERT_TRUE(processEventsUntil([&] {
        return log.contains(
            "⚠️ Notification permissions denied - no notification service "
            "answers on the session bus (org.freedesktop.Notifications)");
    }));
    EXPECT_TRUE(log.contains("❌ Notification authorization error: "));

    // A server that appears later is found by the next request and by a new helper's check.
    NotificationServer server(bus.connect("server"));
    ASSERT_TRUE(server.registerOnBus());
    helper.requestAuthorization();
    ASSERT_TRUE(processEventsUntil([&] { return helper.isAuthorized(); }));
    NotificationHelper later(center);
    EXPECT_TRUE(processEventsUntil(
        [&] { return log.contains("✅ Notification permissions already granted"); }));

    // The monitoring thread is where limit alerts come from.
    std::thread([&] { helper.showLimitAlert("Chrome", 4242, 2048.9, 1024.0, true); }).join();
    ASSERT_TRUE(processEventsUntil([&] { return server.received().size() == 1; }));
    helper.showDiskChangeAlert("Disk space dropped", "Macintosh HD", "12 GB in 5 minutes", false);
    ASSERT_TRUE(processEventsUntil([&] { return server.received().size() == 2; }));

    const auto limit = server.received()[0];
    EXPECT_EQ(std::tuple(limit.appName, limit.summary, limit.body),
              std::tuple("Zelvar+", "RAM Limit Exceeded",
                         "Chrome (PID 4242) is using 2048MB (limit: 1024MB) (over by 1024MB)"));
    EXPECT_EQ(limit.hints, (QVariantMap{{"category", "RAM_ALERT"},
                                        {"x-zelvar2-thread-id", "Chrome"},
                                        {"sound-name", "message-new-instant"}}));
    const auto disk = server.received()[1];
    EXPECT_EQ(std::tuple(disk.summary, disk.body),
              std::tuple("Disk space dropped", "Macintosh HD\n12 GB in 5 minutes"));
    EXPECT_EQ(disk.hints, (QVariantMap{{"category", "DISK_ALERT"},
                                       {"x-zelvar2-thread-id", "disk_changes"},
                                       {"suppress-sound", true}}));
    EXPECT_FALSE(log.contains("Notification error"));
}
