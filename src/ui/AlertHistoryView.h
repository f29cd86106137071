#pragma once

#include <QList>
#include <QWidget>

#include "alerts/AlertRecord.h"

class QStackedWidget;
class QToolButton;

namespace zelvar {

class EmptyStateView;
class ProcessMonitor;
class RowList;
class SearchBar;

// The records whose process name contains `searchText` (localized, case-insensitive), in
// their order; all of them for an empty text.
QList<AlertRecord> filteredAlerts(const QList<AlertRecord>& alertHistory,
                                  const QString& searchText);

// The "Alerts" tab: the monitor's recorded limit violations, newest first, with a filter and
// a trash button that clears the whole history (not only what the filter shows). The empty
// state depends on the history alone: a filter that matches nothing shows an empty list.
class AlertHistoryView final : public QWidget {
    Q_OBJECT

public:
    explicit AlertHistoryView(ProcessMonitor& processMonitor, QWidget* parent = nullptr);

    SearchBar* searchBar() const { return m_search; }
    RowList* rows() const { return m_rows; }
    // Shown while the history isn't empty.
    QToolButton* clearButton() const { return m_clearButton; }
    bool isShowingEmptyState() const;

private:
    void rebuild();

    ProcessMonitor& m_processMonitor;
    QToolButton* m_clearButton;
    SearchBar* m_search;
    QStackedWidget* m_stack;
    EmptyStateView* m_empty;
    RowList* m_rows;
};

}  // namespace zelvar
