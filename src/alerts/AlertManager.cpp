#include "alerts/AlertManager.h"

#include <QPointer>

#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "config/ConfigManager.h"
#include "platform/Clock.h"
#include "platform/Scheduler.h"

namespace zelvar {

AlertManager::AlertManager(NotificationHelper& notificationHelper, SoundPlayer& soundPlayer,
                           const Clock& clock, Scheduler& scheduler, QObject* parent)
    : QObject(parent),
      m_notificationHelper(notificationHelper),
      m_soundPlayer(soundPlayer),
      m_clock(clock),
      m_scheduler(scheduler) {}

AlertManager::Switches AlertManager::switches() const {
    // Without a configuration manager both switches are on, as in a new configuration.
    const MonitorConfig config = m_configManager ? m_configManager->snapshot() : MonitorConfig();
    return {config.enableSoundAlerts, config.enableNotifications};
}

void AlertManager::handleLimitViolation(const QString& processName, qint32 pid, double currentMB,
                                        double limitMB, bool autoKill) {
    Q_UNUSED(autoKill);
    {
        // Keyed by the exact name, so every process of one name shares the cooldown.
        std::lock_guard lock(m_mutex);
        if (m_alertedProcesses.contains(processName)) {
            return;
        }
        m_alertedProcesses.insert(processName);
    }
    // The end of the cooldown runs on the main thread, whichever thread reported.
    QPointer<AlertManager> self(this);
    QMetaObject::invokeMethod(this, [self, processName] {
        if (!self) {
            return;
        }
        self->m_scheduler.callAfter(kAlertCooldownSeconds, self, [self, processName] {
            std::lock_guard lock(self->m_mutex);
            self->m_alertedProcesses.remove(processName);
        });
    });

    const Switches on = switches();
    if (on.sound) {
        m_soundPlayer.playAlertSound();
    }
    if (on.notifications) {
        m_notificationHelper.showLimitAlert(processName, pid, currentMB, limitMB, on.sound);
    }
    countAlert();
}

void AlertManager::handleDiskChange(const QString& title, const QString& subtitle,
                                    const QString& body) {
    const Switches on = switches();
    if (on.sound) {
        m_soundPlayer.playAlertSound();
    }
    if (on.notifications) {
        m_notificationHelper.showDiskChangeAlert(title, subtitle, body, on.sound);
    }
    countAlert();
}

void AlertManager::countAlert() {
    const QDateTime now = m_clock.now();
    int count = 0;
    {
        std::lock_guard lock(m_mutex);
        m_recentAlerts.append(now);
        m_recentAlerts.removeIf(
            [&](const QDateTime& at) { return !(secondsBetween(at, now) < kRecentWindowSeconds); });
        count = static_cast<int>(m_recentAlerts.size());
    }
    QMetaObject::invokeMethod(this, [this, count] { setRecentAlertCount(count); });
}

void AlertManager::clearRecentAlerts() {
    {
        std::lock_guard lock(m_mutex);
        m_recentAlerts.clear();
    }
    setRecentAlertCount(0);
}

void AlertManager::setRecentAlertCount(int count) {
    if (m_recentAlertCount != count) {
        m_recentAlertCount = count;
        emit recentAlertCountChanged();
    }
}

QSet<QString> AlertManager::alertedProcesses() const {
    std::lock_guard lock(m_mutex);
    return m_alertedProcesses;
}

QList<QDateTime> AlertManager::recentAlerts() const {
    std::lock_guard lock(m_mutex);
    return m_recentAlerts;
}

}  // namespace zelvar
