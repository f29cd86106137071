#include <QCoreApplication>

#include "alerts/AlertRecord.h"
#include "config/ConfigManager.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

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
    QStringList sent() const {
        QStringList lines;
        for (const NotificationContent& sent : m_recording.center.delivered()) {
            lines << sent.body + (sent.playSound ? " +sound" : "");
        }
        return lines;
    }

    QTemporaryDir m_dir;
    FakeClock m_clock;
    ConfigManager m_config{m_dir.filePath("config.json"), m_clock};
    RecordingAlerts m_recording{m_clock, m_clock, m_dir.path()};
    AlertManager& m_alerts = m_recording.manager;
};

}  // namespace

TEST_F(AlertManagerTest, OneNamesCooldownHoldsBackAlertsForThirtySecondsEvenAfterClearing) {
    violate("Electron", 10);
    violate("Electron", 11);
    violate("Electron Helper", 12);
    m_clock.advance(29.999);
    m_alerts.clearRecentAlerts();  // empties the count, not the cooldown
    violate("Electron");
    EXPECT_TRUE(m_alerts.recentAlerts().isEmpty());
    m_clock.advance(0.001);
    violate("Electron");
    const QString over = " is using 700MB (limit: 500MB) (over by 200MB) +sound";
    EXPECT_EQ(sent(), (QStringList{"Electron (PID 10)" + over, "Electron Helper (PID 12)" + over,
                                   "Electron (PID 1)" + over}));
    EXPECT_EQ(m_alerts.alertedProcesses(), QSet<QString>{"Electron"});
}

TEST_F(AlertManagerTest, SwitchesChooseSoundAndNotificationButEveryAlertCounts) {
    for (const bool sound : {false, true}) {
        m_config.setConfig({.enableSoundAlerts = sound, .enableNotifications = !sound});
        violate(sound ? "a" : "b");
        m_alerts.handleDiskChange("Disk usage jumped", "Macintosh HD", "5 GB");
    }
    // Without a configuration both switches are on.
    AlertManager alone(m_recording.helper, m_recording.player, m_clock, m_clock);
    alone.handleLimitViolation("x", 1, 1000.9, 1000, true);  // under 1MB over
    EXPECT_EQ(sent(), (QStringList{"b (PID 1) is using 700MB (limit: 500MB) (over by 200MB)",
                                   "5 GB", "x (PID 1) is using 1000MB (limit: 1000MB) +sound"}));
    EXPECT_EQ(m_recording.sound.played(), QStringList(3, "sound:Glass"));
    EXPECT_EQ(m_alerts.recentAlertCount(), 4);
}

TEST_F(AlertManagerTest, CountCoversTheLastFiveMinutesAsOfTheLatestAlert) {
    violate("a");
    m_clock.advance(299);
    violate("b");
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
    m_clock.advance(2);
    violate("c");
    EXPECT_EQ(m_alerts.recentAlerts().size(), 2);
    m_clock.advance(1000);  // ageing alone changes nothing until the next alert
    EXPECT_EQ(m_alerts.recentAlertCount(), 2);
}

TEST(NotificationHelperTest, AuthorizationStatusDecidesWhatIsLoggedAndDelivered) {
    const QString already = "✅ Notification permissions already granted";
    const QString denied = "⚠️ Notification permissions denied - ";  // and the desktop's advice
    const QString error = "❌ Notification authorization error: no";
    using enum NotificationCenter::Status;
    const std::tuple<int, bool, QString, bool, QStringList> cases[] = {
        {Authorized, false, "", true, {already}},
        {Provisional, false, "", true, {already}},
        {Ephemeral, false, "", true, {already}},
        {Denied, true, "", false, {denied + "enable it in the fake centre"}},
        {NotDetermined, true, "", true, {"✅ Notification permissions granted"}},
        {NotDetermined, false, "no", false, {error, denied + "ask the fake centre again"}},
        {7, true, "", false, {}}};
    for (const auto& [status, grant, requestError, authorized, lines] : cases) {
        SCOPED_TRACE(testing::Message() << "status " << status << ", grant " << grant);
        LogCapture log;
        FakeNotificationCenter center(status);
        center.grantOnRequest(grant, requestError);
        center.failDelivery("busy");
        NotificationHelper helper(center);
        QCoreApplication::processEvents();
        EXPECT_EQ(helper.isAuthorized(), authorized);
        helper.showLimitAlert("Slack", 9, 600, 500, true);
        helper.showDiskChangeAlert("Title", "Sub", "Body", false);
        const QString after =
            authorized ? "Notification error: busy" : "Notifications not authorized for Zelvar+";
        EXPECT_EQ(log.lines(), (lines + QStringList{after, after}));
        // The request identifier doesn't travel over the bus, so its freshness is checked here.
        const auto sent = center.delivered();
        ASSERT_EQ(sent.size(), authorized ? 2u : 0u);
        EXPECT_TRUE(sent.empty() ||
                    (!sent[0].identifier.isEmpty() && sent[0].identifier != sent[1].identifier));
    }
}

TEST(SoundPlayerTest, EveryFailureFallsBackToTheBeep) {
    QTemporaryDir dir;
    ASSERT_TRUE(QFile(dir.filePath("alarm.wav")).open(QIODevice::WriteOnly));
    LogCapture log;
    FakeSoundOutput output;
    FakeClock clock;
    SoundPlayer player(output, clock, dir.path());
    player.playAlertSound();
    player.playCustomSound("alarm.wav");
    player.playCustomSound("missing.wav");
    output.setSystemSounds({});
    output.failFiles("unsupported format");
    player.playAlertSound();
    player.playCustomSound("alarm.wav");
    EXPECT_EQ(output.played(), (QStringList{"sound:Glass", "file:" + dir.filePath("alarm.wav"),
                                            "beep", "beep", "beep"}));
    EXPECT_EQ(log.lines(), (QStringList{"Sound file not found: missing.wav",
                                        "Error playing custom sound: unsupported format"}));

    output.setSystemSounds({"Glass"});
    player.playTestSound();  // three beeps, a fifth of a second apart
    QList<qsizetype> played;
    for (const double step : {0.0, 0.19, 0.01, 0.2}) {
        clock.advance(step);
        played << output.played().size();
    }
    EXPECT_EQ(played, (QList<qsizetype>{6, 6, 7, 8}));
    EXPECT_EQ(output.played().mid(5), QStringList(3, "beep"));
}

TEST(AlertRecordTest, JsonRoundTripNeedsEveryKey) {
    const AlertRecord record{
        .processName = "Xcode",
        .pid = 501,
        .memoryMB = 4200.5,
        .limitMB = 4096,
        .timestamp = QDateTime(QDate(2026, 3, 1), QTime(9, 30, 15), QTimeZone::utc()),
        .wasAutoKilled = true};
    EXPECT_TRUE(record.displayTime().contains(
        QLocale().toString(record.timestamp.toLocalTime().time(), "ss")));

    const QJsonObject json = record.toJson();
    EXPECT_EQ(json.keys(), (QStringList{"id", "limit_mb", "memory_mb", "pid", "process_name",
                                        "timestamp", "was_auto_killed"}));
    EXPECT_EQ(AlertRecord::fromJson(json), record);
    for (const QString& key : json.keys()) {
        QJsonObject missing = json;
        missing.remove(key);
        EXPECT_FALSE(AlertRecord::fromJson(missing).has_value()) << key.toStdString();
    }
    EXPECT_NE(AlertRecord().id, AlertRecord().id);
}
