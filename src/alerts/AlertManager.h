#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QSet>
#include <mutex>

namespace zelvar {

class Clock;
class ConfigManager;
class NotificationHelper;
class Scheduler;
class SoundPlayer;

// Decides when a limit violation reaches the user: at most once per process name every 30
// seconds, by sound and by notification as the two alert switches say, and counts the alerts
// of the last five minutes for the dashboard. The record of violations is kept by the process
// monitor. Violations arrive on the monitoring thread; the count is written on the main thread.
class AlertManager final : public QObject {
    Q_OBJECT
    Q_PROPERTY(int recentAlertCount READ recentAlertCount NOTIFY recentAlertCountChanged)

public:
    static constexpr double kAlertCooldownSeconds = 30.0;
    static constexpr double kRecentWindowSeconds = 300.0;

    AlertManager(NotificationHelper& notificationHelper, SoundPlayer& soundPlayer,
                 const Clock& clock, Scheduler& scheduler, QObject* parent = nullptr);

    int recentAlertCount() const { return m_recentAlertCount; }
    void setConfigManager(ConfigManager* manager) { m_configManager = manager; }

    // `autoKill` takes no part: a killed process is announced like one only over its limit.
    void handleLimitViolation(const QString& processName, qint32 pid, double currentMB,
                              double limitMB, bool autoKill);
    // No cooldown: each change is announced.
    void handleDiskChange(const QString& title, const QString& subtitle, const QString& body);
    // Empties the count; process names stay in their cooldown.
    void clearRecentAlerts();

    // Names in their cooldown and the moments of recent alerts, for inspection.
    QSet<QString> alertedProcesses() const;
    QList<QDateTime> recentAlerts() const;

signals:
    void recentAlertCountChanged();

private:
    struct Switches {
        bool sound = true;
        bool notifications = true;
    };
    Switches switches() const;
    void countAlert();
    void setRecentAlertCount(int count);  // main thread

    NotificationHelper& m_notificationHelper;
    SoundPlayer& m_soundPlayer;
    const Clock& m_clock;
    Scheduler& m_scheduler;
    ConfigManager* m_configManager = nullptr;

    int m_recentAlertCount = 0;
    mutable std::mutex m_mutex;       // the monitoring thread and the main thread share these two
    QList<QDateTime> m_recentAlerts;  // oldest first
    QSet<QString> m_alertedProcesses;
};

}  // namespace zelvar
