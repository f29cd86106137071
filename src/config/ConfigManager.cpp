#include "config/ConfigManager.h"

#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>

#include "common/BoundedFile.h"
#include "common/LocalizedText.h"
#include "common/Log.h"
#include "config/ConfigCoding.h"
#include "platform/Clock.h"
#include "platform/Paths.h"

namespace zelvar {

ConfigManager::ConfigManager(QString configPath, const Clock& clock, QObject* parent)
    : QObject(parent), m_configPath(std::move(configPath)), m_clock(clock) {
    load();
}

void ConfigManager::load() {
    // Never opened for blocking reads: a FIFO or a device at the path is refused at once
    // rather than waited on.
    const BoundedFile::Result file = BoundedFile::readOnce(m_configPath);
    switch (file.status) {
        case BoundedFile::Status::missing:
            return;  // defaults; the first save() creates the file
        case BoundedFile::Status::unchanged:
        case BoundedFile::Status::refused:
        case BoundedFile::Status::failed:
            logLine(QStringLiteral("Error loading config: %1: %2").arg(m_configPath, file.error));
            return;
        case BoundedFile::Status::read:
            break;
    }
    const auto decoded = ConfigCoding::decode(file.data);
    if (!decoded.config) {
        logLine(QStringLiteral("Error loading config: ") + decoded.error);
        return;
    }
    m_config = *decoded.config;
}

void ConfigManager::setConfig(MonitorConfig config) {
    mutate([&](MonitorConfig& c) { c = std::move(config); });
}

MonitorConfig ConfigManager::snapshot() const {
    std::lock_guard lock(m_mutex);
    return m_config;
}

template <typename Change>
void ConfigManager::mutate(Change&& change) {
    {
        std::lock_guard lock(m_mutex);
        change(m_config);
    }
    emit configChanged();
}

void ConfigManager::save() {
    // The save replaces the file by renaming a new one over it; something that isn't a file
    // (a FIFO, a device, a directory) is left alone.
    const QFileInfo existing(m_configPath);
    if (existing.exists() && !existing.isFile()) {
        reportSaveFailure(QStringLiteral("%1: not a regular file").arg(m_configPath));
        return;
    }
    QSaveFile file(m_configPath);
    if (!file.open(QIODevice::WriteOnly)) {
        reportSaveFailure(file.errorString());
        return;
    }
    file.write(ConfigCoding::encode(m_config));
    if (!file.commit()) {
        reportSaveFailure(file.errorString());
    }
}

void ConfigManager::reportSaveFailure(const QString& reason) {
    const QString message = QStringLiteral("Error saving config: ") + reason;
    logLine(message);
    // The change stays in memory, but the user must hear that it won't outlive this run.
    emit saveFailed(message);
}

ProcessLimit* ConfigManager::findLimit(const QUuid& id) {
    auto it = std::find_if(m_config.limits.begin(), m_config.limits.end(),
                           [&](const ProcessLimit& l) { return l.id == id; });
    return it == m_config.limits.end() ? nullptr : &*it;
}

ProcessLimit* ConfigManager::findLimitNamed(const QString& processName) {
    auto it = std::find_if(m_config.limits.begin(), m_config.limits.end(), [&](const auto& l) {
        return localizedCaseInsensitiveEquals(l.processName, processName);
    });
    return it == m_config.limits.end() ? nullptr : &*it;
}

void ConfigManager::addLimit(const QString& processName, double limitMB, bool autoKill) {
    const QString name = processName.trimmed();
    if (name.isEmpty()) {
        return;
    }
    ProcessLimit limit = ProcessLimit::create(name, limitMB, autoKill, m_clock.now());
    mutate([&](MonitorConfig& c) {
        c.limits.removeIf([&](const ProcessLimit& l) {
            return localizedCaseInsensitiveEquals(l.processName, name);
        });
        c.limits.append(std::move(limit));
    });
    save();
}

void ConfigManager::removeLimit(const QUuid& id) {
    mutate([&](MonitorConfig& c) {
        c.limits.removeIf([&](const ProcessLimit& l) { return l.id == id; });
    });
    save();
}

void ConfigManager::updateLimit(const QUuid& id, double limitMB, bool autoKill) {
    if (!findLimit(id)) {
        return;
    }
    mutate([&](MonitorConfig&) {
        ProcessLimit* limit = findLimit(id);
        limit->limitMB = limitMB;
        limit->autoKillEnabled = autoKill;
    });
    save();
}

void ConfigManager::toggleAutoKill(const QUuid& id) {
    if (!findLimit(id)) {
        return;
    }
    mutate([&](MonitorConfig&) {
        ProcessLimit* limit = findLimit(id);
        limit->autoKillEnabled = !limit->autoKillEnabled;
    });
    save();
}

void ConfigManager::markLimitTriggered(const QUuid& id) {
    if (!findLimit(id)) {
        return;
    }
    const QDateTime now = m_clock.now();
    mutate([&](MonitorConfig&) { findLimit(id)->markTriggered(now); });
    save();
}

bool ConfigManager::limitMatches(const ProcessLimit& limit, const QString& processName) {
    if (limit.processName.trimmed().isEmpty()) {
        return false;
    }
    // The stored, untrimmed name is what is searched for; trimming only decides emptiness.
    return localizedCaseInsensitiveContains(processName, limit.processName);
}

std::optional<ProcessLimit> ConfigManager::limitForProcess(const QString& processName) const {
    for (const ProcessLimit& limit : m_config.limits) {
        if (limitMatches(limit, processName)) {
            return limit;
        }
    }
    return std::nullopt;
}

bool ConfigManager::whitelistCovers(const std::set<QString>& whitelist, const QString& name) {
    return std::any_of(whitelist.begin(), whitelist.end(), [&](const QString& entry) {
        return !entry.trimmed().isEmpty() && localizedCaseInsensitiveContains(name, entry);
    });
}

bool ConfigManager::isWhitelisted(const QString& processName) const {
    return whitelistCovers(m_config.whitelistedProcesses, processName);
}

void ConfigManager::addToWhitelist(const QString& processName) {
    const QString name = processName.trimmed();
    if (name.isEmpty()) {
        return;
    }
    mutate([&](MonitorConfig& c) { c.whitelistedProcesses.insert(name); });
    save();
}

void ConfigManager::removeFromWhitelist(const QString& processName) {
    // Dropping entries that the name contains as well means that a process really stops being
    // whitelisted, not only its exact entry.
    mutate([&](MonitorConfig& c) {
        std::erase_if(c.whitelistedProcesses, [&](const QString& entry) {
            return localizedCaseInsensitiveEquals(entry, processName) ||
                   localizedCaseInsensitiveContains(processName, entry);
        });
    });
    save();
}

void ConfigManager::setAutoLimit(const QString& processName, double limitMB) {
    if (findLimitNamed(processName)) {
        mutate([&](MonitorConfig&) {
            ProcessLimit* limit = findLimitNamed(processName);
            limit->autoKillEnabled = true;
            limit->limitMB = limitMB;
        });
    } else {
        addLimit(processName, limitMB, true);
    }
    save();
}

void ConfigManager::removeAutoLimit(const QString& processName) {
    if (!findLimitNamed(processName)) {
        return;
    }
    mutate([&](MonitorConfig&) { findLimitNamed(processName)->autoKillEnabled = false; });
    save();
}

QString ConfigManager::defaultFile(const Paths& paths) {
    return paths.homeDirectory() + QStringLiteral("/.zel_var_2_config.json");
}

}  // namespace zelvar
