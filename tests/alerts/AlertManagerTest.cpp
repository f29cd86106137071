#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include "config/ConfigManager.h"
#include "support/FakeClock.h"
#include "support/RecordingAlerts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

class AlertManagerTest : public ::testing::Test {
protected:
    AlertManagerTest() {
        QCoreApplication::processEvents();  // the helper's authorization answer
        m_alerts.setConfigManager(&m_config);
    }

    void setSwitches(bool sound, bool notifications) {
        MonitorConfig config = m_config.config();
        config.enableSoundAlerts = sound;
        config.enableNotifications = notifications;
        m_config.setConfig(config);
    }
    void violate(const QString& name, qint32 pid = 1) {
        m_alerts.handleLimitViolation(name, pid, 700, 500, false);
    }
    std::size_t notifications() const { return m_center.delivered().size(); }

    QTemporaryDir m_dir;
    FakeClock m_clock;
    ConfigManager m_config{m_dir.filePath("config.json"), m_clock};
    RecordingAlerts m_recording{m_clock, m_clock, m_dir.path()};
    AlertManager& m_alerts = m_recording.manager;
    FakeNotificationCenter& m_center = m_recording.center;
    FakeSoundOutput& m_sound = m_recording.sound;
};

}  // namespace

TEST_F(AlertManagerTest, OneNamesCooldownHoldsBackAlertsForThirtySeconds) {
    // Two processes of one name over their limits in one cycle: one alert, one count.
    violate("Electron", 10);
    violate("Electron", 11);
    violate("Electron Helper", 12);  // another name has a cooldown of its own
    EXPECT_EQ(notifications(), 2u);
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
    EXPECT_EQ(m_center.delivered()[0].body,
              "Electron (PID 10) is using 700MB (limit: 500MB) (over by 200MB)");

    for (int second = 5; second < 30; second += 5) {
        m_clock.advance(5);
        violate("Electron");
    }
    EXPECT_EQ(notifications(), 2u);
    m_clock.advance(4.999);
    violate("Electron");
    EXPECT_EQ(notifications(), 2u);
    m_clock.advance(0.001);  // 30 seconds after the first alert
    violate("Electron");
    EXPECT_EQ(notifications(), 3u);
    EXPECT_EQ(m_alerts.recentAlertCount(), 3);
}

TEST_F(AlertManagerTest, SwitchesChooseSoundAndNotificationButEveryAlertCounts) {
    setSwitches(false, true);
    violate("a");
    ASSERT_EQ(notifications(), 1u);
    EXPECT_FALSE(m_center.delivered()[0].playSound);
    EXPECT_TRUE(m_sound.played().isEmpty());

    setSwitches(true, false);
    violate("b");
    EXPECT_EQ(notifications(), 1u);
    EXPECT_EQ(m_sound.played(), QStringList{"sound:Glass"});

    setSwitches(true, true);
    violate("c");
    ASSERT_EQ(notifications(), 2u);
    EXPECT_TRUE(m_center.delivered()[1].playSound);
    EXPECT_EQ(m_sound.played().size(), 2);

    setSwitches(false, false);
    violate("d");
    EXPECT_EQ(notifications(), 2u);
    EXPECT_EQ(m_sound.played().size(), 2);
    EXPECT_EQ(m_alerts.recentAlertCount(), 4);
}

TEST_F(AlertManagerTest, CountCoversTheLastFiveMinutesAsOfTheLatestAlert) {
    violate("a");
    m_clock.advance(299);
    violate("b");
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
    m_clock.advance(2);  // 301 seconds after the first
    violate("c");
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
    EXPECT_EQ(m_alerts.recentAlerts().size(), 2);
    m_clock.advance(1000);  // ageing alone changes nothing until the next alert
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
}

TEST_F(AlertManagerTest, ClearingTheCountLeavesTheCooldown) {
    violate("Chrome");
    m_alerts.clearRecentAlerts();
    EXPECT_EQ(m_alerts.recentAlertCount(), 0);
    EXPECT_TRUE(m_alerts.recentAlerts().isEmpty());
    m_clock.advance(10);
    violate("Chrome");
    EXPECT_EQ(notifications(), 1u);
    EXPECT_EQ(m_alerts.recentAlertCount(), 0);
    EXPECT_EQ(m_alerts.alertedProcesses(), QSet<QString>{"Chrome"});
}

TEST_F(AlertManagerTest, DiskChangesHaveNoCooldown) {
    m_alerts.handleDiskChange("Disk usage jumped", "Macintosh HD", "5 GB in 1 minute");
    m_alerts.handleDiskChange("Disk usage jumped", "Macintosh HD", "5 GB in 1 minute");
    ASSERT_EQ(notifications(), 2u);
    EXPECT_EQ(m_center.delivered()[1].categoryIdentifier, "DISK_ALERT");
    EXPECT_EQ(m_sound.played().size(), 2);
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
    EXPECT_TRUE(m_alerts.alertedProcesses().isEmpty());
}

TEST_F(AlertManagerTest, WithoutAConfigurationBothSwitchesAreOn) {
    AlertManager alone(m_recording.helper, m_recording.player, m_clock, m_clock);
    setSwitches(false, false);  // not seen by a manager without configuration
    alone.handleLimitViolation("x", 1, 2, 1, true);
    ASSERT_EQ(notifications(), 1u);
    EXPECT_TRUE(m_center.delivered()[0].playSound);
    EXPECT_EQ(m_sound.played(), QStringList{"sound:Glass"});
}
