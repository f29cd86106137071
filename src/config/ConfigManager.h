#pragma once

#include <QObject>
#include <QString>
#include <QUuid>
#include <mutex>
#include <optional>

#include "config/MonitorConfig.h"

namespace zelvar {

class Paths;

class Clock;

// The one owner of the configuration file (~/.zel_var_2_config.json) and the only place where
// limits and whitelist entries change. Loads once at creation; every mutating operation saves
// the whole file at once, except where it changes nothing. Mutations happen on the main
// thread; other threads read whole-value copies through snapshot().
class ConfigManager final : public QObject {
    Q_OBJECT
    Q_PROPERTY(zelvar::MonitorConfig config READ config WRITE setConfig NOTIFY configChanged)

public:
    // ~/.zel_var_2_config.json: the home directory on every system.
    static QString defaultFile(const Paths& paths);

    ConfigManager(QString configPath, const Clock& clock, QObject* parent = nullptr);

    const MonitorConfig& config() const { return m_config; }
    // Replaces the configuration and notifies; does not save (editors call save() themselves).
    void setConfig(MonitorConfig config);
    // A copy that is safe to take on any thread.
    MonitorConfig snapshot() const;
    const QString& configPath() const { return m_configPath; }

    void save();

    void addLimit(const QString& processName, double limitMB, bool autoKill);
    void setLimit(const QString& processName, double limitMB, bool autoKill) {
        addLimit(processName, limitMB, autoKill);
    }
    void removeLimit(const QUuid& id);
    void updateLimit(const QUuid& id, double limitMB, bool autoKill);
    void toggleAutoKill(const QUuid& id);
    void markLimitTriggered(const QUuid& id);
    std::optional<ProcessLimit> limitForProcess(const QString& processName) const;
    static bool limitMatches(const ProcessLimit& limit, const QString& processName);

    void addToWhitelist(const QString& processName);
    void removeFromWhitelist(const QString& processName);
    bool isWhitelisted(const QString& processName) const;
    // Whether `whitelist` exempts `name`: some non-blank entry is contained in it.
    static bool whitelistCovers(const std::set<QString>& whitelist, const QString& name);

    void setAutoLimit(const QString& processName, double limitMB);
    void removeAutoLimit(const QString& processName);

signals:
    void configChanged();
    // A save didn't reach the file; `message` is the line that was logged, starting with
    // "Error saving config: ".
    void saveFailed(const QString& message);

private:
    void load();
    void reportSaveFailure(const QString& reason);
    // Applies `change` to the configuration under the lock, then notifies.
    template <typename Change>
    void mutate(Change&& change);
    ProcessLimit* findLimit(const QUuid& id);
    ProcessLimit* findLimitNamed(const QString& processName);

    QString m_configPath;
    const Clock& m_clock;
    mutable std::mutex m_mutex;  // guards m_config against snapshot() from other threads
    MonitorConfig m_config;
};

}  // namespace zelvar
