#pragma once

#include "platform/Paths.h"

namespace zelvar {

class MacPaths final : public Paths {
public:
    explicit MacPaths(QString home) : m_home(std::move(home)) {}

    QString homeDirectory() const override { return m_home; }
    QString appDataDirectory() const override {
        return m_home + QStringLiteral("/Library/Application Support/Zelvar2");
    }
    QString logsDirectory() const override {
        return m_home + QStringLiteral("/Library/Logs/Zelvar2");
    }
    QString powerDataDirectory() const override {
        return m_home + QStringLiteral("/Library/Application Support/Wattlog");
    }

private:
    QString m_home;
};

}  // namespace zelvar
