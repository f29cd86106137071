#pragma once

#include "platform/Paths.h"

namespace zelvar::test {

// Every location under one root, a folder per kind: <root>/data/<App>, <root>/state/<App>, ...,
// so that a file put in the wrong kind of folder is found missing.
class FakePaths final : public Paths {
public:
    explicit FakePaths(QString root) : m_root(std::move(root)) {}

    QString homeDirectory() const override { return m_root; }
    QString dataDirectory(const QString& app) const override { return in("data", app); }
    QString stateDirectory(const QString& app) const override { return in("state", app); }
    QString configDirectory(const QString& app) const override { return in("config", app); }
    QString runtimeDirectory(const QString& app) const override { return in("runtime", app); }

private:
    QString in(const char* kind, const QString& app) const {
        return m_root + QLatin1Char('/') + QLatin1String(kind) + QLatin1Char('/') + app;
    }

    QString m_root;
};

}  // namespace zelvar::test
