#include "ui/SettingsView.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QThread>
#include <QUuid>
#include <QVBoxLayout>

#include "alerts/SoundPlayer.h"
#include "config/ConfigManager.h"
#include "platform/NotificationCenter.h"
#include "platform/Scheduler.h"
#include "ui/Palette.h"
#include "ui/SheetParts.h"
#include "ui/TextFormat.h"

namespace zelvar {

namespace {

constexpr double kSoundMessageSeconds = 2.0;
constexpr double kNotificationMessageSeconds = 3.0;

QLabel* captionLabel(const QString& text, const QFont& font, const QColor& color, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("color: %1;").arg(styleColor(color)));
    return label;
}

// Runs `change` on the main thread, where the sheet lives: now when called there, or else
// queued. The notification port's completions may arrive on any thread, and `alive` (read on
// the main thread only) drops a change whose sheet is gone by then.
void onMainThread(const std::shared_ptr<bool>& alive, std::function<void()> change) {
    QCoreApplication* app = QCoreApplication::instance();
    const bool onMain = QThread::currentThread() == app->thread();
    QMetaObject::invokeMethod(
        app,
        [alive, change = std::move(change)] {
            if (*alive) {
                change();
            }
        },
        onMain ? Qt::DirectConnection : Qt::QueuedConnection);
}

}  // namespace

QString permissionStatusText(int authorizationStatus, const SettingsWording& wording) {
    switch (authorizationStatus) {
        case NotificationCenter::NotDetermined:
            return QStringLiteral("⚠️ Not requested");
        case NotificationCenter::Denied:
            return wording.deniedStatus;
        case NotificationCenter::Authorized:
        case NotificationCenter::Provisional:
        case NotificationCenter::Ephemeral:
            return QStringLiteral("✅ Enabled");
        default:
            return QStringLiteral("⚠️ Unknown");
    }
}

SettingsView::SettingsView(ConfigManager& configManager, NotificationCenter& notificationCenter,
                           SoundPlayer& soundPlayer, Scheduler& scheduler, QWidget* parent)
    : QDialog(parent),
      m_configManager(configManager),
      m_notificationCenter(notificationCenter),
      m_soundPlayer(soundPlayer),
      m_scheduler(scheduler),
      m_wording(SettingsWording::forThisSystem()),
      m_checkInterval(configManager.config().checkIntervalSeconds),
      m_notificationPermissionStatus(tr("Checking...")) {
    setWindowTitle(tr("Settings"));
    setModal(true);
    resize(450, 400);

    QVBoxLayout* layout = sheetLayout(this);
    layout->addWidget(sheetTitle(tr("Settings"), this));
    layout->addWidget(makeMonitoringSection());
    layout->addWidget(makeAlertsSection());
    layout->addWidget(makeStartupSection());
    layout->addStretch(1);

    m_saveButton = new QPushButton(tr("Save"), this);
    addSheetButtons(this, layout, m_saveButton);
    connect(m_saveButton, &QPushButton::clicked, this, &SettingsView::save);
}

SettingsView::~SettingsView() {
    *m_alive = false;
}

QWidget* SettingsView::makeMonitoringSection() {
    auto* section = new QGroupBox(tr("Monitoring"), this);
    auto* layout = new QVBoxLayout(section);
    auto* heading = new QLabel(tr("Check Interval"), section);
    heading->setFont(semibold(subheadlineFont()));
    layout->addWidget(heading);

    auto* line = new QHBoxLayout;
    m_intervalSlider = new QSlider(Qt::Horizontal, section);
    m_intervalSlider->setRange(1, 60);
    m_intervalSlider->setSingleStep(1);
    {
        // Placing the knob changes nothing: an interval off the whole seconds is kept as it
        // is until the slider moves.
        const QSignalBlocker blocker(m_intervalSlider);
        m_intervalSlider->setValue(static_cast<int>(qBound(1.0, m_checkInterval, 60.0)));
    }
    m_intervalLabel = new QLabel(wholeNumber(m_checkInterval) + QStringLiteral("s"), section);
    m_intervalLabel->setFixedWidth(40);
    m_intervalLabel->setFont(monospacedDigits(font()));
    line->addWidget(m_intervalSlider, 1);
    line->addWidget(m_intervalLabel);
    layout->addLayout(line);
    connect(m_intervalSlider, &QSlider::valueChanged, this, [this](int seconds) {
        m_checkInterval = seconds;
        m_intervalLabel->setText(wholeNumber(m_checkInterval) + QStringLiteral("s"));
    });
    layout->addWidget(captionLabel(tr("How often to check process limits (1-60 seconds)"),
                                   captionFont(), secondaryColor(this), section));
    return section;
}

QWidget* SettingsView::makeAlertsSection() {
    const MonitorConfig& config = m_configManager.config();
    auto* section = new QGroupBox(tr("Alerts"), this);
    auto* layout = new QVBoxLayout(section);

    m_soundToggle = new QCheckBox(tr("Sound Alerts"), section);
    m_soundToggle->setChecked(config.enableSoundAlerts);
    layout->addWidget(m_soundToggle);
    layout->addWidget(captionLabel(tr("Play system sound when limit exceeded"), captionFont(),
                                   palette().color(QPalette::WindowText), section));

    m_notificationsToggle = new QCheckBox(tr("System Notifications"), section);
    m_notificationsToggle->setChecked(config.enableNotifications);
    layout->addWidget(m_notificationsToggle);
    layout->addWidget(captionLabel(m_wording.notificationsCaption, captionFont(),
                                   palette().color(QPalette::WindowText), section));

    const QColor green = namedColor(NamedColor::Green);
    const auto testLine = [&](QPushButton*& button, QLabel*& message, const QString& text) {
        auto* line = new QHBoxLayout;
        button = new QPushButton(text, section);
        message = captionLabel(QString(), captionFont(), green, section);
        message->setVisible(false);
        // The button keeps its own width whether or not the message beside it shows.
        line->addWidget(button);
        line->addWidget(message, 1);
        line->addStretch(1);
        layout->addLayout(line);
    };
    testLine(m_testSoundButton, m_soundMessage, tr("Test Sound"));
    testLine(m_testNotificationButton, m_notificationMessage, tr("Test Notification"));
    m_testSoundButton->setEnabled(m_soundToggle->isChecked());
    m_testNotificationButton->setEnabled(m_notificationsToggle->isChecked());
    connect(m_soundToggle, &QCheckBox::toggled, m_testSoundButton, &QPushButton::setEnabled);
    connect(m_notificationsToggle, &QCheckBox::toggled, m_testNotificationButton,
            &QPushButton::setEnabled);
    connect(m_testSoundButton, &QPushButton::clicked, this, &SettingsView::testSound);
    connect(m_testNotificationButton, &QPushButton::clicked, this, &SettingsView::testNotification);

    auto* permission = new QHBoxLayout;
    auto* texts = new QVBoxLayout;
    texts->addWidget(new QLabel(m_wording.permissionHeading, section));
    m_permissionLabel =
        captionLabel(m_notificationPermissionStatus, caption2Font(), secondaryColor(this), section);
    texts->addWidget(m_permissionLabel);
    permission->addLayout(texts, 1);
    // Shown whatever the status: asking again is harmless, and the only way to look again.
    m_enableButton = new QPushButton(tr("Enable"), section);
    permission->addWidget(m_enableButton);
    layout->addLayout(permission);
    connect(m_enableButton, &QPushButton::clicked, this,
            &SettingsView::requestNotificationPermission);
    return section;
}

QWidget* SettingsView::makeStartupSection() {
    auto* section = new QGroupBox(tr("Startup"), this);
    auto* layout = new QVBoxLayout(section);
    m_launchAtLoginToggle = new QCheckBox(tr("Launch at Login"), section);
    m_launchAtLoginToggle->setChecked(m_configManager.config().launchAtLogin);
    layout->addWidget(m_launchAtLoginToggle);
    layout->addWidget(captionLabel(m_wording.launchAtLoginCaption, captionFont(),
                                   palette().color(QPalette::WindowText), section));
    return section;
}

void SettingsView::testSound() {
    m_soundPlayer.playTestSound();
    setTestAlertMessage(tr("Sound played!"));
    clearMessageAfter(kSoundMessageSeconds);
}

void SettingsView::testNotification() {
    NotificationContent content;
    content.identifier = QUuid::createUuid().toString(QUuid::WithoutBraces);
    content.title = QStringLiteral("Zelvar+ Test");
    content.body = QStringLiteral(
        "This is a test notification to verify your alert settings are working correctly.");
    content.playSound = true;
    m_notificationCenter.add(content, [this, alive = m_alive](const QString& error) {
        onMainThread(alive, [this, error] {
            setTestAlertMessage(error.isEmpty() ? tr("Test notification sent!")
                                                : tr("Notification failed: ") + error);
            clearMessageAfter(kNotificationMessageSeconds);
        });
    });
}

void SettingsView::checkNotificationPermission() {
    m_notificationCenter.getAuthorizationStatus([this, alive = m_alive](int status) {
        onMainThread(alive, [this, status] {
            setPermissionStatus(permissionStatusText(status, m_wording));
        });
    });
}

void SettingsView::requestNotificationPermission() {
    m_notificationCenter.requestAuthorization(
        [this, alive = m_alive](bool granted, const QString&) {
            onMainThread(alive, [this, granted] {
                if (granted) {
                    setPermissionStatus(QStringLiteral("✅ Enabled"));
                    setTestAlertMessage(tr("Notifications enabled!"));
                } else {
                    setPermissionStatus(m_wording.deniedStatus);
                    setTestAlertMessage(m_wording.enableAdvice);
                }
                clearMessageAfter(kNotificationMessageSeconds);
            });
        });
}

void SettingsView::save() {
    // One field at a time, in this order, as observers of the configuration see each change.
    const auto write = [this](auto field, auto value) {
        MonitorConfig config = m_configManager.config();
        config.*field = value;
        m_configManager.setConfig(std::move(config));
    };
    write(&MonitorConfig::checkIntervalSeconds, m_checkInterval);
    write(&MonitorConfig::enableSoundAlerts, m_soundToggle->isChecked());
    write(&MonitorConfig::enableNotifications, m_notificationsToggle->isChecked());
    write(&MonitorConfig::launchAtLogin, m_launchAtLoginToggle->isChecked());
    m_configManager.save();
    accept();
}

void SettingsView::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    checkNotificationPermission();
}

void SettingsView::setTestAlertMessage(const QString& message) {
    m_testAlertMessage = message;
    for (QLabel* label : {m_soundMessage, m_notificationMessage}) {
        label->setText(message);
        label->setVisible(!message.isEmpty());
    }
}

void SettingsView::setPermissionStatus(const QString& status) {
    m_notificationPermissionStatus = status;
    m_permissionLabel->setText(status);
}

void SettingsView::clearMessageAfter(double seconds) {
    m_scheduler.callAfter(seconds, this, [this] { setTestAlertMessage(QString()); });
}

}  // namespace zelvar
