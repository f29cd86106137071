#pragma once

#include "platform/Paths.h"

namespace zelvar {

// ~/Library/Application Support/<App> for data, ~/Library/Logs/<App> for state,
// ~/Library/Preferences/<App> for settings, and the user's own temporary folder ($TMPDIR, one
// per user on macOS) for runtime files.
class MacPaths final : public Paths {
public:
    MacPaths(QString home, QString temporaryDirectory)
        : m_home(std::move(home)), m_temporary(std::move(temporaryDirectory)) {}

    QString homeDirectory() const override { return m_home; }
    QString dataDirectory(const QString& app) const override {
        return m_home + QStringLiteral("/Library/Application Support/") + app;
    }
    QString stateDirectory(const QString& app) const override {
        return m_home + QStringLiteral("/Library/Logs/") + app;
    }
    QString configDirectory(const QString& app) const override {
        return m_home + QStringLiteral("/Library/Preferences/") + app;
    }
    QString runtimeDirectory(const QString& app) const override {
        return m_temporary + QLatin1Char('/') + app;
    }

private:
    QString m_home;
    QString m_temporary;
};

}  // namespace zelvar
