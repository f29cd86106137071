#include "common/ProcessOrigin.h"

#include <QTextBoundaryFinder>
#include <optional>

namespace zelvar {
namespace {

SystemOriginStyle& systemStyle() {
    static SystemOriginStyle style{QString(), QStringLiteral("System")};
    return style;
}

// Whether `text` holds two or more characters as a reader counts them (grapheme clusters), so
// that one emoji or one accented letter made of several code units still counts as one.
bool hasTwoCharacters(const QString& text) {
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, text);
    return graphemes.toNextBoundary() > 0 && graphemes.toNextBoundary() > 0;
}

QString lastLabelComponent(const QString& label) {
    const QStringList parts = label.split(QLatin1Char('.'), Qt::SkipEmptyParts);
    if (parts.isEmpty() || !hasTwoCharacters(parts.last())) {
        return label;
    }
    return parts.last();
}

}  // namespace

void ProcessOrigin::setSystemStyle(SystemOriginStyle style) {
    systemStyle() = std::move(style);
}

QString ProcessOrigin::icon() const {
    switch (m_kind) {
        case Kind::LaunchAgent:
            return QStringLiteral("⚙️");
        case Kind::Gui:
            return QStringLiteral("🖥️");
        case Kind::Cli:
            return QStringLiteral("💻");
        case Kind::System:
            return systemStyle().icon;
        case Kind::Unknown:
            break;
    }
    return {};
}

QString ProcessOrigin::shortLabel() const {
    switch (m_kind) {
        case Kind::LaunchAgent:
            return lastLabelComponent(m_value);
        case Kind::Gui:
        case Kind::Cli:
            return m_value;
        case Kind::System:
            return QStringLiteral("system");
        case Kind::Unknown:
            break;
    }
    return {};
}

QString ProcessOrigin::fullLabel() const {
    switch (m_kind) {
        case Kind::LaunchAgent:
            return QStringLiteral("Launch Agent: ") + m_value;
        case Kind::Gui:
            return QStringLiteral("GUI App: ") + m_value;
        case Kind::Cli:
            return QStringLiteral("CLI (") + m_value + QLatin1Char(')');
        case Kind::System:
            return systemStyle().label;
        case Kind::Unknown:
            break;
    }
    return QStringLiteral("Unknown");
}

QJsonObject ProcessOrigin::toJson() const {
    static const char* const kTypes[] = {"launchAgent", "gui", "cli", "system", "unknown"};
    QJsonObject object{{QStringLiteral("type"), QLatin1String(kTypes[static_cast<int>(m_kind)])}};
    if (m_kind == Kind::LaunchAgent || m_kind == Kind::Gui || m_kind == Kind::Cli) {
        object.insert(QStringLiteral("value"), m_value);
    }
    return object;
}

std::optional<ProcessOrigin> ProcessOrigin::fromJson(const QJsonObject& object) {
    const QJsonValue type = object.value(QLatin1String("type"));
    if (!type.isString()) {
        return std::nullopt;
    }
    const QString name = type.toString();
    Kind kind;
    if (name == u"launchAgent") {
        kind = Kind::LaunchAgent;
    } else if (name == u"gui") {
        kind = Kind::Gui;
    } else if (name == u"cli") {
        kind = Kind::Cli;
    } else if (name == u"system") {
        return system();
    } else {
        return unknown();
    }
    const QJsonValue value = object.value(QLatin1String("value"));
    if (!value.isString()) {
        return std::nullopt;
    }
    return ProcessOrigin(kind, value.toString());
}

}  // namespace zelvar
