#include <gtest/gtest.h>

#include <QThread>

#include "NotificationServer.h"
#include "alerts/NotificationHelper.h"
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "support/EventLoop.h"
#include "support/LogCapture.h"
#include "support/SessionBus.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

// Notifications through a real dbus-daemon to a notification server of the test's own.
class NotificationDeliveryTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_bus.started()) << "dbus-daemon did not start"; }

    SessionBus m_bus;
    LogCapture m_log;
};

}  // namespace

TEST_F(NotificationDeliveryTest, AnsweringServerReceivesTheExactAlerts) {
    NotificationServer server(m_bus.connect(QStringLiteral("server")));
    ASSERT_TRUE(server.registerOnBus());
    FreedesktopNotificationCenter center(m_bus.connect(QStringLiteral("client")));
    NotificationHelper helper(center);
    ASSERT_TRUE(processEventsUntil([&] { return helper.isAuthorized(); }));
    EXPECT_TRUE(m_log.contains(QStringLiteral("✅ Notification permissions already granted")));

    // The monitoring thread is where limit alerts come from.
    QThread* worker = QThread::create([&] {
        helper.showLimitAlert(QStringLiteral("Chrome Helper"), 4242, 2048.9, 1024.0, true);
    });
    worker->start();
    worker->wait();
    delete worker;
    ASSERT_TRUE(processEventsUntil([&] { return server.received().size() == 1; }));

    const auto limit = server.received()[0];
    EXPECT_EQ(limit.appName, "Zelvar+");
    EXPECT_EQ(limit.summary, "RAM Limit Exceeded");
    EXPECT_EQ(limit.body,
              "Chrome Helper (PID 4242) is using 2048MB (limit: 1024MB) (over by 1024MB)");
    EXPECT_EQ(limit.hints.value("category").toString(), "RAM_ALERT");
    EXPECT_EQ(limit.hints.value("x-zelvar2-thread-id").toString(), "Chrome Helper");
    EXPECT_EQ(limit.hints.value("sound-name").toString(), "message-new-instant");
    EXPECT_FALSE(limit.hints.contains("suppress-sound"));

    helper.showDiskChangeAlert(QStringLiteral("Disk space dropped"), QStringLiteral("Macintosh HD"),
                               QStringLiteral("12 GB written in 5 minutes"), false);
    ASSERT_TRUE(processEventsUntil([&] { return server.received().size() == 2; }));
    const auto disk = server.received()[1];
    EXPECT_EQ(disk.summary, "Disk space dropped");
    EXPECT_EQ(disk.body, "Macintosh HD\n12 GB written in 5 minutes");
    EXPECT_EQ(disk.hints.value("category").toString(), "DISK_ALERT");
    EXPECT_EQ(disk.hints.value("x-zelvar2-thread-id").toString(), "disk_changes");
    EXPECT_TRUE(disk.hints.value("suppress-sound").toBool());
    EXPECT_FALSE(disk.hints.contains("sound-name"));
    EXPECT_FALSE(m_log.contains(QStringLiteral("Notification error")));
}

TEST_F(NotificationDeliveryTest, WithoutAServerNothingIsAuthorizedOrSent) {
    FreedesktopNotificationCenter center(m_bus.connect(QStringLiteral("client")));
    NotificationHelper helper(center);
    ASSERT_TRUE(processEventsUntil([&] {
        return m_log.contains(
            QStringLiteral("⚠️ Notification permissions denied - no notification service "
                           "answers on the session bus (org.freedesktop.Notifications)"));
    }));
    EXPECT_FALSE(helper.isAuthorized());
    EXPECT_TRUE(m_log.contains(QStringLiteral("❌ Notification authorization error: ")));

    helper.showLimitAlert(QStringLiteral("Slack"), 7, 900, 500, true);
    EXPECT_TRUE(m_log.contains(QStringLiteral("Notifications not authorized for Zelvar+")));

    // A server that appears later is found by the next request.
    NotificationServer server(m_bus.connect(QStringLiteral("server")));
    ASSERT_TRUE(server.registerOnBus());
    helper.requestAuthorization();
    ASSERT_TRUE(processEventsUntil([&] { return helper.isAuthorized(); }));
    EXPECT_TRUE(m_log.contains(QStringLiteral("✅ Notification permissions granted")));
    EXPECT_TRUE(server.received().isEmpty());
}
