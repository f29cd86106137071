#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include "alerts/AlertRecord.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(NotificationHelperTest, LimitBodyCutsFiguresAndShowsOnlyAWholeExcess) {
    EXPECT_EQ(NotificationHelper::limitAlertBody("a", 1, 1000.9, 1000.0),  // 0.9 over cuts to 0
              "a (PID 1) is using 1000MB (limit: 1000MB)");
    EXPECT_EQ(NotificationHelper::limitAlertBody("a", 1, 501.9, 500.0),  // 1.9 over cuts to 1
              "a (PID 1) is using 501MB (limit: 500MB) (over by 1MB)");
}

TEST(NotificationHelperTest, AuthorizationStatusDecidesWhatIsLoggedAndDelivered) {
    const QString already = "✅ Notification permissions already granted";
    const QString denied = "⚠️ Notification permissions denied - ";  // and the desktop's advice
    const QString error = "❌ Notification authorization error: no";
    using enum NotificationCenter::Status;
    const std::tuple<int, bool, QString, bool, int, QStringList> cases[] = {
        {Authorized, false, "", true, 0, {already}},
        {Provisional, false, "", true, 0, {already}},
        {Ephemeral, false, "", true, 0, {already}},
        {Denied, true, "", false, 0, {denied + "enable it in the fake centre"}},
        {NotDetermined, true, "", true, 1, {"✅ Notification permissions granted"}},
        {NotDetermined, false, "no", false, 1, {error, denied + "ask the fake centre again"}},
        {7, true, "", false, 0, {}}};
    for (const auto& [status, grant, requestError, authorized, requests, lines] : cases) {
        SCOPED_TRACE(testing::Message() << "status " << status << ", grant " << grant);
        LogCapture log;
        FakeNotificationCenter center(status);
        center.grantOnRequest(grant, requestError);
        center.failDelivery("busy");
        NotificationHelper helper(center);
        QCoreApplication::processEvents();
        EXPECT_EQ(std::pair(helper.isAuthorized(), center.requests()),
                  std::pair(authorized, requests));
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
    const std::pair<double, int> steps[] = {{0, 6}, {0.19, 6}, {0.01, 7}, {0.2, 8}};
    for (const auto& [step, played] : steps) {
        clock.advance(step);
        EXPECT_EQ(output.played().size(), played) << clock.elapsed();
    }
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
    EXPECT_DOUBLE_EQ(record.exceededByMB(), 104.5);

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
