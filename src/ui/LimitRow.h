#pragma once

#include <QWidget>

#include "config/ProcessLimit.h"

class QMenu;

namespace zelvar {

class ConfigManager;

// One limit of the limits panel: its name, "<n> MB" in blue, "Auto-Kill" in red when on, and
// when it has fired "Triggered: " with the date, in orange. Its "…" menu edits the limit in
// EditLimitSheet, switches auto-kill, and asks its panel to remove it (removeRequested).
class LimitRow final : public QWidget {
    Q_OBJECT

public:
    LimitRow(const ProcessLimit& limit, ConfigManager& configManager, QWidget* parent = nullptr);

    const ProcessLimit& limit() const { return m_limit; }
    // The "…" menu as it stands: Edit, the auto-kill entry, Remove.
    QMenu* menu() const { return m_menu; }
    // The texts the row shows, top to bottom and left to right.
    QStringList texts() const;

    // "Triggered: " with the date in the abbreviated style of the current locale.
    static QString triggeredText(const QDateTime& when);

signals:
    void removeRequested();

private:
    void edit();

    ProcessLimit m_limit;
    ConfigManager& m_configManager;
    QMenu* m_menu;
};

}  // namespace zelvar
