#include "platform/linux/LinuxPaths.h"

namespace zelvar {
namespace {

// XDG says relative values are invalid and must be ignored.
QString xdgOr(const QString& value, const QString& fallback) {
    return value.startsWith(QLatin1Char('/')) ? value : fallback;
}

}  // namespace

LinuxPaths::LinuxPaths(QString home, QString xdgDataHome, QString xdgStateHome)
    : m_home(std::move(home)),
      m_dataHome(xdgOr(xdgDataHome, m_home + QStringLiteral("/.local/share"))),
      m_stateHome(xdgOr(xdgStateHome, m_home + QStringLiteral("/.local/state"))) {}

}  // namespace zelvar
