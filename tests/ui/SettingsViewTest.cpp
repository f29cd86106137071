#include <QCheckBox>
#include <QPushButton>
#include <QSlider>

#include "UiFixture.h"
#include "compose/AlertStack.h"
#include "ui/SettingsView.h"

namespace {

class SettingsViewTest : public UiFixture {
protected:
    std::unique_ptr<SettingsView> openSheet() {
        auto sheet = std::make_unique<SettingsView>(config(), m_fake.notifications,
                                                    m_monitors->alerts()->sounds, m_fake.clock);
        sheet->show();
        return sheet;
    }
};

}  // namespace

TEST(SettingsPermission, StatusTextsByAuthorizationStatus) {
    const SettingsWording wording = SettingsWording::desktop();
    EXPECT_EQ(permissionStatusText(0, wording), "⚠️ Not requested");
    EXPECT_EQ(permissionStatusText(1, wording), wording.deniedStatus);
    for (int status : {2, 3, 4}) {
        EXPECT_EQ(permissionStatusText(status, wording), "✅ Enabled") << status;
    }
    EXPECT_EQ(permissionStatusText(5, wording), "⚠️ Unknown");
    EXPECT_EQ(permissionStatusText(-1, wording), "⚠️ Unknown");
    EXPECT_EQ(SettingsWording::mac().deniedStatus, "❌ Denied - Enable in System Preferences");
}

TEST_F(SettingsViewTest, CancelKeepsTheConfigurationAndTheTogglesOnlyDisableTheTests) {
    const MonitorConfig before = config().config();
    auto sheet = openSheet();
    EXPECT_EQ(sheet->notificationPermissionStatus(), "✅ Enabled");
    EXPECT_TRUE(sheet->enableButton()->isVisible());

    sheet->intervalSlider()->setValue(42);
    EXPECT_EQ(sheet->checkInterval(), 42);
    sheet->soundToggle()->setChecked(false);
    sheet->notificationsToggle()->setChecked(false);
    EXPECT_TRUE(before.enableSoundAlerts);
    EXPECT_FALSE(sheet->testSoundButton()->isEnabled());
    EXPECT_FALSE(sheet->testNotificationButton()->isEnabled());
    ASSERT_NE(buttonNamed(*sheet, "Cancel"), nullptr);
    buttonNamed(*sheet, "Cancel")->click();

    EXPECT_EQ(sheet->result(), QDialog::Rejected);
    EXPECT_EQ(config().config(), before);
    EXPECT_FALSE(QFile::exists(config().configPath()));
}

TEST_F(SettingsViewTest, SaveCopiesTheFourValuesInOrderThenWritesTheFile) {
    config().addLimit("kept", 500, false);
    auto sheet = openSheet();
    sheet->intervalSlider()->setValue(12);
    sheet->soundToggle()->setChecked(false);
    sheet->notificationsToggle()->setChecked(false);
    sheet->launchAtLoginToggle()->setChecked(true);

    // Which fields each change of the configuration brought, and whether the file had them.
    QStringList changes;
    MonitorConfig previous = config().config();
    QObject::connect(&config(), &ConfigManager::configChanged, [&] {
        const MonitorConfig now = config().config();
        QStringList changed;
        if (now.checkIntervalSeconds != previous.checkIntervalSeconds)
            changed << "interval";
        if (now.enableSoundAlerts != previous.enableSoundAlerts)
            changed << "sound";
        if (now.enableNotifications != previous.enableNotifications)
            changed << "notifications";
        if (now.launchAtLogin != previous.launchAtLogin)
            changed << "login";
        changes << changed.join('+');
        previous = now;
    });
    sheet->saveButton()->click();

    EXPECT_EQ(changes, QStringList({"interval", "sound", "notifications", "login"}));
    EXPECT_EQ(sheet->result(), QDialog::Accepted);
    const MonitorConfig saved = savedConfig();
    EXPECT_EQ(saved.checkIntervalSeconds, 12);
    EXPECT_FALSE(saved.enableSoundAlerts);
    EXPECT_FALSE(saved.enableNotifications);
    EXPECT_TRUE(saved.launchAtLogin);
    EXPECT_EQ(saved.limits, config().config().limits);
}

TEST_F(SettingsViewTest, TestMessagesAreClearedByTheFirstTimer) {
    auto sheet = openSheet();
    sheet->testSoundButton()->click();
    EXPECT_EQ(sheet->testAlertMessage(), "Sound played!");
    m_fake.clock.advance(1.5);
    sheet->testSoundButton()->click();
    m_fake.clock.advance(0.4);
    EXPECT_EQ(sheet->testAlertMessage(), "Sound played!");
    m_fake.clock.advance(0.1);  // two seconds after the first press
    EXPECT_EQ(sheet->testAlertMessage(), "");
    m_fake.clock.advance(2);                             // past the second press's timer
    EXPECT_EQ(m_fake.sounds.played().count("beep"), 6);  // three beeps a press

    sheet->testNotificationButton()->click();
    ASSERT_FALSE(m_fake.notifications.delivered().empty());
    const NotificationContent sent = m_fake.notifications.delivered().back();
    EXPECT_EQ(sent.title, "Zelvar+ Test");
    EXPECT_EQ(sent.body,
              "This is a test notification to verify your alert settings are working correctly.");
    EXPECT_TRUE(sent.playSound);
    EXPECT_EQ(sheet->testAlertMessage(), "Test notification sent!");
    m_fake.clock.advance(2.9);
    EXPECT_EQ(sheet->testAlertMessage(), "Test notification sent!");
    m_fake.clock.advance(0.1);
    EXPECT_EQ(sheet->testAlertMessage(), "");

    m_fake.notifications.failDelivery("no server");
    sheet->testNotificationButton()->click();
    EXPECT_EQ(sheet->testAlertMessage(), "Notification failed: no server");
}

TEST_F(SettingsViewTest, RefusedPermissionShowsTheAdviceThenClearsIt) {
    auto sheet = openSheet();
    m_fake.notifications.grantOnRequest(false);
    sheet->enableButton()->click();
    EXPECT_EQ(sheet->notificationPermissionStatus(), sheet->wording().deniedStatus);
    EXPECT_EQ(sheet->testAlertMessage(), sheet->wording().enableAdvice);
    m_fake.clock.advance(3);
    EXPECT_EQ(sheet->testAlertMessage(), "");
    EXPECT_EQ(sheet->notificationPermissionStatus(), sheet->wording().deniedStatus);

    m_fake.notifications.grantOnRequest(true);
    sheet->enableButton()->click();
    EXPECT_EQ(sheet->notificationPermissionStatus(), "✅ Enabled");
    EXPECT_EQ(sheet->testAlertMessage(), "Notifications enabled!");
}
