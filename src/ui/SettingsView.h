#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "ui/SettingsWording.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QSlider;

namespace zelvar {

class ConfigManager;
class NotificationCenter;
class Scheduler;
class SoundPlayer;

// "✅ Enabled", "❌ Denied - ..." (the wording's), "⚠️ Not requested" or "⚠️ Unknown" for
// an authorization status of the notification centre.
QString permissionStatusText(int authorizationStatus, const SettingsWording& wording);

// The settings sheet behind the dashboard's gear: a working copy of the check interval and
// the sound, notification and login switches, written to the configuration only by "Save";
// tests of the alert sound and of a notification; and the notification permission.
//
// It takes the smallest set of objects that does this: the configuration it edits; the
// notification port itself (the permission status, the request and a test notification
// with its error are the port's, which NotificationHelper doesn't pass on); the SoundPlayer
// for the test sound; and the Scheduler that clears the test messages after their delay.
// All must outlive the sheet. Modal, 450 × 400; built anew for each opening.
class SettingsView final : public QDialog {
    Q_OBJECT

public:
    SettingsView(ConfigManager& configManager, NotificationCenter& notificationCenter,
                 SoundPlayer& soundPlayer, Scheduler& scheduler, QWidget* parent = nullptr);
    ~SettingsView() override;

    double checkInterval() const { return m_checkInterval; }
    QString testAlertMessage() const { return m_testAlertMessage; }
    QString notificationPermissionStatus() const { return m_notificationPermissionStatus; }
    const SettingsWording& wording() const { return m_wording; }

    QSlider* intervalSlider() const { return m_intervalSlider; }
    QCheckBox* soundToggle() const { return m_soundToggle; }
    QCheckBox* notificationsToggle() const { return m_notificationsToggle; }
    QCheckBox* launchAtLoginToggle() const { return m_launchAtLoginToggle; }
    QPushButton* testSoundButton() const { return m_testSoundButton; }
    QPushButton* testNotificationButton() const { return m_testNotificationButton; }
    QPushButton* enableButton() const { return m_enableButton; }
    QPushButton* saveButton() const { return m_saveButton; }

public slots:
    void testSound();
    void testNotification();
    void checkNotificationPermission();
    void requestNotificationPermission();
    // Copies the working values into the configuration one by one, saves, and closes.
    void save();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeMonitoringSection();
    QWidget* makeAlertsSection();
    QWidget* makeStartupSection();
    void setTestAlertMessage(const QString& message);
    void setPermissionStatus(const QString& status);
    // Clears the test message after `seconds`; never cancelled, so an earlier timer clears a
    // later message too.
    void clearMessageAfter(double seconds);

    ConfigManager& m_configManager;
    NotificationCenter& m_notificationCenter;
    SoundPlayer& m_soundPlayer;
    Scheduler& m_scheduler;
    const SettingsWording m_wording;
    // Cleared by the destructor: a late completion of the notification port then does nothing.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);

    double m_checkInterval;
    QString m_testAlertMessage;
    QString m_notificationPermissionStatus;

    QSlider* m_intervalSlider = nullptr;
    QLabel* m_intervalLabel = nullptr;
    QCheckBox* m_soundToggle = nullptr;
    QCheckBox* m_notificationsToggle = nullptr;
    QCheckBox* m_launchAtLoginToggle = nullptr;
    QPushButton* m_testSoundButton = nullptr;
    QPushButton* m_testNotificationButton = nullptr;
    QLabel* m_soundMessage = nullptr;
    QLabel* m_notificationMessage = nullptr;
    QLabel* m_permissionLabel = nullptr;
    QPushButton* m_enableButton = nullptr;
    QPushButton* m_saveButton = nullptr;
};

}  // namespace zelvar
