#pragma once

#include "platform/Paths.h"

namespace zelvar {

// XDG locations: data under $XDG_DATA_HOME (~/.local/share), logs under $XDG_STATE_HOME
// (~/.local/state). Empty XDG values fall back to the defaults, as the XDG rules say.
class LinuxPaths final : public Paths {
public:
    explicit LinuxPaths(QString home, QString xdgDataHome = {}, QString xdgStateHome = {});

    QString homeDirectory() const override { return m_home; }
    QString appDataDirectory() const override { return m_dataHome + QStringLiteral("/zelvar2"); }
    QString logsDirectory() const override { return m_stateHome + QStringLiteral("/zelvar2"); }
    QString powerDataDirectory() const override { return m_dataHome + QStringLiteral("/wattlog"); }

private:
    QString m_home;
    QString m_dataHome;
    QString m_stateHome;
};

}  // namespace zelvar
