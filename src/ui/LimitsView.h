#pragma once

#include <QWidget>

class QStackedWidget;

namespace zelvar {

class ConfigManager;
class EmptyStateView;
class ProcessMonitor;
class RowList;

// The limits panel: "Configured Limits" with a "+" that opens AddLimitSheet, then one
// LimitRow per limit in the configuration's order, or an empty state without limits. Follows
// the configuration as it changes. No tab shows it; it stands ready for one.
class LimitsView final : public QWidget {
    Q_OBJECT

public:
    LimitsView(ProcessMonitor& processMonitor, ConfigManager& configManager,
               QWidget* parent = nullptr);

    RowList* rows() const { return m_rows; }
    bool isShowingEmptyState() const;
    // Opens AddLimitSheet, as the "+" button does.
    void presentAddLimitSheet();

private:
    void rebuild();

    ProcessMonitor& m_processMonitor;
    ConfigManager& m_configManager;
    QStackedWidget* m_stack;
    EmptyStateView* m_empty;
    RowList* m_rows;
};

}  // namespace zelvar
