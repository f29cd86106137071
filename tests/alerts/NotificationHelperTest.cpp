#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "alerts/AlertRecord.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "support/EventLoop.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/LogCapture.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(NotificationHelperTest, LimitBodyCutsFiguresAndShowsOnlyAWholeExcess) {
    EXPECT_EQ(NotificationHelper::limitAlertBody("Safari", 12, 1000.4, 1000.0),
              "Safari (PID 12) is using 1000MB (limit: 1000MB)");
    EXPECT_EQ(NotificationHelper::limitAlertBody("Safari", 12, 2048.9, 1024.0),
              "Safari (PID 12) is using 2048MB (limit: 1024MB) (over by 1024MB)");
    // 1.9 over cuts to 1: shown; 0.99 over cuts to 0: not shown.
    EXPECT_EQ(NotificationHelper::limitAlertBody("a", 1, 501.9, 500.0),
              "a (PID 1) is using 501MB (limit: 500MB) (over by 1MB)");
    EXPECT_EQ(NotificationHelper::limitAlertBody("a", 1, 500.99, 500.0),
              "a (PID 1) is using 500MB (limit: 500MB)");
}

TEST(NotificationHelperTest, AuthorizationStatusDecidesWhatIsLoggedAndAllowed) {
    struct Case {
        int status;
        bool grantOnRequest;
        bool authorized;
        QString line;
        int requests;
    };
    const QList<Case> cases{
        {NotificationCenter::Authorized, false, true, "✅ Notification permissions already granted",
         0},
        {NotificationCenter::Provisional, false, true, "✅ Notification permissions already granted",
         0},
        {NotificationCenter::Ephemeral, false, true, "✅ Notification permissions already granted",
         0},
        // The advice after the dash is the desktop's own.
        {NotificationCenter::Denied, true, false,
         "⚠️ Notification permissions denied - enable it in the fake centre", 0},
        {NotificationCenter::NotDetermined, true, true, "✅ Notification permissions granted", 1},
        {NotificationCenter::NotDetermined, false, false,
         "⚠️ Notification permissions denied - ask the fake centre again", 1},
        {7, true, false, "", 0},
    };
    for (const Case& c : cases) {
        LogCapture log;
        FakeNotificationCenter center(c.status);
        center.grantOnRequest(c.grantOnRequest);
        NotificationHelper helper(center);
        QCoreApplication::processEvents();
        EXPECT_EQ(helper.isAuthorized(), c.authorized) << c.status;
        EXPECT_EQ(center.requests(), c.requests) << c.status;
        if (c.line.isEmpty()) {
            EXPECT_TRUE(log.lines().isEmpty()) << log.lines().join('|').toStdString();
        } else {
            EXPECT_EQ(log.lines(), QStringList{c.line}) << c.status;
        }
    }
}

TEST(NotificationHelperTest, RequestErrorsAndDeliveryErrorsAreLoggedOnly) {
    LogCapture log;
    FakeNotificationCenter center(NotificationCenter::NotDetermined);
    center.grantOnRequest(false, "Notifications are not allowed for this application");
    center.failDelivery("The operation couldn't be completed");
    NotificationHelper helper(center);
    QCoreApplication::processEvents();
    EXPECT_TRUE(log.contains(
        "❌ Notification authorization error: Notifications are not allowed for this application"));
    EXPECT_FALSE(helper.isAuthorized());

    helper.showLimitAlert("Slack", 9, 600, 500, true);
    EXPECT_TRUE(log.contains("Notifications not authorized for Zelvar+"));
    EXPECT_TRUE(center.delivered().empty());

    center.grantOnRequest(true);
    helper.requestAuthorization();
    QCoreApplication::processEvents();
    ASSERT_TRUE(helper.isAuthorized());
    helper.showDiskChangeAlert("Title", "Sub", "Body", false);
    EXPECT_TRUE(log.contains("Notification error: The operation couldn't be completed"));
    ASSERT_EQ(center.delivered().size(), 1u);
}

// What reaches the server is checked over a real bus in NotificationDeliveryTest; the request
// identifier does not travel, so its freshness is checked here.
TEST(NotificationHelperTest, EveryRequestHasAFreshIdentifier) {
    FakeNotificationCenter center;
    NotificationHelper helper(center);
    QCoreApplication::processEvents();
    helper.showLimitAlert("Google Chrome", 100, 3000.5, 2000, false);
    helper.showLimitAlert("Google Chrome", 100, 3000.5, 2000, false);
    const auto sent = center.delivered();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_FALSE(sent[0].identifier.isEmpty());
    EXPECT_NE(sent[0].identifier, sent[1].identifier);
}

TEST(SoundPlayerTest, AlertSoundFallsBackToTheBeep) {
    FakeSoundOutput output;
    FakeClock clock;
    SoundPlayer player(output, clock, QString());
    player.playAlertSound();
    output.setSystemSounds({});
    player.playAlertSound();
    EXPECT_EQ(output.played(), (QStringList{"sound:Glass", "beep"}));
}

TEST(SoundPlayerTest, TestSoundIsThreeBeepsAFifthOfASecondApart) {
    FakeSoundOutput output;
    FakeClock clock;
    SoundPlayer player(output, clock, QString());
    player.playTestSound();
    clock.advance(0);
    EXPECT_EQ(output.played().size(), 1);
    clock.advance(0.19);
    EXPECT_EQ(output.played().size(), 1);
    clock.advance(0.01);
    EXPECT_EQ(output.played().size(), 2);
    clock.advance(0.2);
    EXPECT_EQ(output.played(), (QStringList{"beep", "beep", "beep"}));
}

TEST(SoundPlayerTest, CustomSoundsComeFromTheDataDirectoryOrBeep) {
    QTemporaryDir dir;
    QFile file(dir.filePath("alarm.wav"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    LogCapture log;
    FakeSoundOutput output;
    FakeClock clock;
    SoundPlayer player(output, clock, dir.path());

    player.playCustomSound("alarm.wav");
    player.playCustomSound("missing.wav");
    output.failFiles("unsupported format");
    player.playCustomSound("alarm.wav");
    EXPECT_EQ(output.played(), (QStringList{"file:" + dir.filePath("alarm.wav"), "beep", "beep"}));
    EXPECT_EQ(log.lines(), (QStringList{"Sound file not found: missing.wav",
                                        "Error playing custom sound: unsupported format"}));
}

TEST(AlertRecordTest, DerivedValuesAndStrictDecoding) {
    AlertRecord record;
    record.processName = "Xcode";
    record.pid = 501;
    record.memoryMB = 4200.5;
    record.limitMB = 4096;
    record.timestamp = QDateTime(QDate(2026, 3, 1), QTime(9, 30, 15), QTimeZone::utc());
    record.wasAutoKilled = true;
    EXPECT_DOUBLE_EQ(record.exceededByMB(), 104.5);
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

    const AlertRecord fresh;
    EXPECT_FALSE(fresh.id.isNull());
    EXPECT_NE(fresh.id, AlertRecord().id);
    EXPECT_FALSE(fresh.wasAutoKilled);
}
