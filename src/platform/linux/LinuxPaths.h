#pragma once

#include "platform/Paths.h"

namespace zelvar {

// XDG base directories: data under $XDG_DATA_HOME (~/.local/share), state under
// $XDG_STATE_HOME (~/.local/state), settings under $XDG_CONFIG_HOME (~/.config), runtime files
// under $XDG_RUNTIME_DIR (else the state directory), each in a lower-case application folder.
// Empty or relative XDG values fall back to the defaults, as the XDG rules say.
class LinuxPaths final : public Paths {
public:
    struct Xdg {
        QString dataHome, stateHome, configHome, runtimeDir;
    };

    explicit LinuxPaths(QString home, const Xdg& xdg = {});

    QString homeDirectory() const override { return m_home; }
    QString dataDirectory(const QString& app) const override { return in(m_dataHome, app); }
    QString stateDirectory(const QString& app) const override { return in(m_stateHome, app); }
    QString configDirectory(const QString& app) const override { return in(m_configHome, app); }
    QString runtimeDirectory(const QString& app) const override { return in(m_runtimeDir, app); }

private:
    static QString in(const QString& base, const QString& app) {
        return base + QLatin1Char('/') + app.toLower();
    }

    QString m_home;
    QString m_dataHome;
    QString m_stateHome;
    QString m_configHome;
    QString m_runtimeDir;
};

}  // namespace zelvar
