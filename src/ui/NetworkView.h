#pragma once

#include <QWidget>

#include "network/NetworkUsage.h"

class QAbstractButton;
class QLabel;
class QPushButton;
class QStackedWidget;
class QTableView;

namespace zelvar {

class BandwidthMonitor;
class EmptyStateView;
class NetworkUsageModel;
class RateGraph;

// The Network tab: the network's name with today's rates and total, a graph of the last five
// minutes, and a table of the processes using the network now or of today's totals per
// application as the daemon records them. The choice between the two lives in the monitor,
// so it outlasts the tab. Suspending a process asks nothing; the row's tool tip and the line
// under the table say how to continue it.
class NetworkView final : public QWidget {
    Q_OBJECT

public:
    explicit NetworkView(BandwidthMonitor& monitor, QWidget* parent = nullptr);

    QString networkNameText() const;
    // The Down, Up and Total values as shown.
    QString downText() const;
    QString upText() const;
    QString totalText() const;
    QString footerText() const;
    // The line under the table after a suspension, empty before.
    QString suspendStatusText() const;
    // The empty state shown instead of the table, or null while rows show.
    EmptyStateView* shownEmptyState() const;

    QPushButton* resetButton() const { return m_reset; }
    QAbstractButton* modeButton(AppUsageMode mode) const;
    QTableView* table() const { return m_table; }
    NetworkUsageModel* model() const { return m_model; }
    RateGraph* rateGraph() const { return m_graph; }

    // What the row's suspend button does in the current mode.
    void suspendRow(int row);

private:
    QWidget* buildSummary();
    QWidget* buildHeader();
    void refreshSummary();
    void refreshTable();

    BandwidthMonitor& m_monitor;
    QLabel* m_name = nullptr;
    QLabel* m_down = nullptr;
    QLabel* m_up = nullptr;
    QLabel* m_total = nullptr;
    QPushButton* m_reset = nullptr;
    RateGraph* m_graph = nullptr;
    QAbstractButton* m_currentButton = nullptr;
    QAbstractButton* m_dailyButton = nullptr;
    QLabel* m_amountHeader = nullptr;
    QStackedWidget* m_stack = nullptr;
    QTableView* m_table = nullptr;
    NetworkUsageModel* m_model = nullptr;
    EmptyStateView* m_waiting = nullptr;
    EmptyStateView* m_noDaily = nullptr;
    QLabel* m_suspendStatus = nullptr;
    QLabel* m_footer = nullptr;
};

}  // namespace zelvar
