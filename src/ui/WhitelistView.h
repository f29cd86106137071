#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>
#include <set>

#include "process/ProcessInfo.h"

class QStackedWidget;

namespace zelvar {

class ConfigManager;
class EmptyStateView;
class ProcessMonitor;
class RowList;
class SearchBar;

// The whitelist sorted ascending, reduced to the names that contain `filter` (localized and
// case-insensitive) when it isn't empty.
QStringList filteredWhitelist(const std::set<QString>& whitelist, const QString& filter);
// How many of `processes` have exactly `name`.
int instanceCount(const QList<ProcessInfo>& processes, const QString& name);
// "Running (1 instance)", "Running (2 instances)", or "Not running" for none.
QString runningText(int count);

// The whitelist panel: "Whitelisted Processes" with a "+" that opens AddWhitelistSheet, a
// filter, and one row per name with how many of its processes run and a button that removes
// it. Follows the configuration and the process list. No tab shows it; it stands ready.
class WhitelistView final : public QWidget {
    Q_OBJECT

public:
    WhitelistView(ProcessMonitor& processMonitor, ConfigManager& configManager,
                  QWidget* parent = nullptr);

    SearchBar* searchBar() const { return m_search; }
    RowList* rows() const { return m_rows; }
    bool isShowingEmptyState() const;
    void presentAddWhitelistSheet();

private:
    void rebuild();
    QWidget* makeRow(const QString& name);

    ProcessMonitor& m_processMonitor;
    ConfigManager& m_configManager;
    SearchBar* m_search;
    QStackedWidget* m_stack;
    EmptyStateView* m_empty;
    RowList* m_rows;
};

}  // namespace zelvar
