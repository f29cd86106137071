#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include "config/ConfigManager.h"
#include "support/FakePorts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

class AlertManagerTest : public ::testing::Test {
protected:
    AlertManagerTest() {
        QCoreApplication::processEvents();  // the helper's authorization answer
        m_alerts.setConfigManager(&m_config);
    }

    void violate(const QString& name, qint32 pid = 1) {
        m_alerts.handleLimitViolation(name, pid, 700, 500, false);
    }
    std::vector<NotificationContent> sent() const { return m_recording.center.delivered(); }

    QTemporaryDir m_dir;
    FakeClock m_clock;
    ConfigManager m_config{m_dir.filePath("config.json"), m_clock};
    RecordingAlerts m_recording{m_clock, m_clock, m_dir.path()};
    AlertManager& m_alerts = m_recording.manager;
};

}  // namespace

TEST_F(AlertManagerTest, OneNamesCooldownHoldsBackAlertsForThirtySecondsEvenAfterClearing) {
    // Two processes of one name over their limits in one cycle: one alert, one count.
    violate("Electron", 10);
    violate("Electron", 11);
    violate("Electron Helper", 12);  // another name has a cooldown of its own
    ASSERT_EQ(sent().size(), 2u);
    EXPECT_EQ(sent()[0].body, "Electron (PID 10) is using 700MB (limit: 500MB) (over by 200MB)");
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
    m_clock.advance(29.999);
    m_alerts.clearRecentAlerts();  // empties the count, not the cooldown
    violate("Electron");
    EXPECT_EQ(sent().size(), 2u);
    EXPECT_TRUE(m_alerts.recentAlerts().isEmpty());
    m_clock.advance(0.001);  // 30 seconds after the first alert
    violate("Electron");
    EXPECT_EQ(sent().size(), 3u);
    EXPECT_EQ(m_alerts.alertedProcesses(), QSet<QString>{"Electron"});
}

TEST_F(AlertManagerTest, SwitchesChooseSoundAndNotificationButEveryAlertCounts) {
    const std::pair<bool, bool> cases[] = {
        {false, true}, {true, false}, {true, true}, {false, false}};
    for (const auto& [sound, notify] : cases) {
        SCOPED_TRACE(testing::Message() << "sound " << sound << ", notifications " << notify);
        const std::size_t notified = sent().size();
        const qsizetype played = m_recording.sound.played().size();
        m_config.setConfig({.enableSoundAlerts = sound, .enableNotifications = notify});
        violate(QString("p%1%2").arg(sound).arg(notify));
        m_alerts.handleDiskChange("Disk usage jumped", "Macintosh HD", "5 GB");  // no cooldown
        EXPECT_EQ(m_recording.sound.played().size(), played + 2 * sound);
        ASSERT_EQ(sent().size(), notified + 2 * notify);
        for (std::size_t i = notified; i < sent().size(); ++i) {
            EXPECT_EQ(sent()[i].playSound, sound);
        }
        EXPECT_TRUE(!notify || sent().back().categoryIdentifier == "DISK_ALERT");
    }
    EXPECT_EQ(m_alerts.recentAlertCount(), 8);
    EXPECT_EQ(m_alerts.alertedProcesses().size(), 4);  // disk changes are not among them

    // Without a configuration both switches are on, whatever the configuration says.
    AlertManager alone(m_recording.helper, m_recording.player, m_clock, m_clock);
    alone.handleLimitViolation("x", 1, 2, 1, true);
    ASSERT_EQ(sent().size(), 5u);
    EXPECT_TRUE(sent().back().playSound);
    EXPECT_EQ(m_recording.sound.played(), QStringList(5, "sound:Glass"));
}

TEST_F(AlertManagerTest, CountCoversTheLastFiveMinutesAsOfTheLatestAlert) {
    violate("a");
    m_clock.advance(299);
    violate("b");
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
    m_clock.advance(2);  // 301 seconds after the first
    violate("c");
    EXPECT_EQ(m_alerts.recentAlerts().size(), 2);
    m_clock.advance(1000);  // ageing alone changes nothing until the next alert
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
}
