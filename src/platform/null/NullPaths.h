#pragma once

#include "platform/Paths.h"

namespace zelvar {

// For systems without known conventions and for runs that must leave the user's folders
// alone: every application's files go to one folder of its own under a root given here.
class NullPaths final : public Paths {
public:
    explicit NullPaths(QString root) : m_root(std::move(root)) {}

    QString homeDirectory() const override { return m_root; }
    QString dataDirectory(const QString& app) const override { return in(app); }
    QString stateDirectory(const QString& app) const override { return in(app); }
    QString configDirectory(const QString& app) const override { return in(app); }
    QString runtimeDirectory(const QString& app) const override { return in(app); }

private:
    QString in(const QString& app) const { return m_root + QLatin1Char('/') + app; }

    QString m_root;
};

}  // namespace zelvar
