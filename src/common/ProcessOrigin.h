#pragma once

#include <QJsonObject>
#include <QString>
#include <optional>

#include "platform/SystemProfile.h"

namespace zelvar {

// Who started a process: a service manager job, a GUI application, a shell, the system, or
// nobody we could tell.
class ProcessOrigin {
public:
    enum class Kind { LaunchAgent, Gui, Cli, System, Unknown };

    ProcessOrigin() = default;
    static ProcessOrigin launchAgent(QString label) {
        return {Kind::LaunchAgent, std::move(label)};
    }
    static ProcessOrigin gui(QString app) { return {Kind::Gui, std::move(app)}; }
    static ProcessOrigin cli(QString shell) { return {Kind::Cli, std::move(shell)}; }
    static ProcessOrigin system() { return {Kind::System, {}}; }
    static ProcessOrigin unknown() { return {}; }

    Kind kind() const { return m_kind; }
    // The label, app or shell name; empty for system and unknown.
    const QString& value() const { return m_value; }

    // How the system kind shows in icon() and fullLabel(): set once by the composition at
    // start, before other threads run, from this system's profile. Until then the system
    // shows with no icon as "System".
    static void setSystemStyle(SystemOriginStyle style);

    QString icon() const;
    QString shortLabel() const;
    QString fullLabel() const;

    // {"type": ..., "value": ...}; "value" only for the three kinds that carry one.
    QJsonObject toJson() const;
    // An unknown "type" gives `unknown`; a missing "value" where one is required gives no value.
    static std::optional<ProcessOrigin> fromJson(const QJsonObject& object);

    bool operator==(const ProcessOrigin&) const = default;

private:
    ProcessOrigin(Kind kind, QString value) : m_kind(kind), m_value(std::move(value)) {}

    Kind m_kind = Kind::Unknown;
    QString m_value;
};

}  // namespace zelvar
