#include "platform/linux/LinuxPaths.h"

namespace zelvar {
namespace {

// XDG says relative values are invalid and must be ignored.
QString xdgOr(const QString& value, const QString& fallback) {
    return value.startsWith(QLatin1Char('/')) ? value : fallback;
}

}  // namespace

LinuxPaths::LinuxPaths(QString home, const Xdg& xdg)
    : m_home(std::move(home)),
      m_dataHome(xdgOr(xdg.dataHome, m_home + QStringLiteral("/.local/share"))),
      m_stateHome(xdgOr(xdg.stateHome, m_home + QStringLiteral("/.local/state"))),
      m_configHome(xdgOr(xdg.configHome, m_home + QStringLiteral("/.config"))),
      m_runtimeDir(xdgOr(xdg.runtimeDir, m_stateHome)) {}

}  // namespace zelvar
