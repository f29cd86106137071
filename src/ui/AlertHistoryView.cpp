#include "ui/AlertHistoryView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "common/LocalizedText.h"
#include "process/ProcessMonitor.h"
#include "ui/AlertRow.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/Symbols.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/RowList.h"
#include "ui/widgets/SearchBar.h"

namespace zelvar {

QList<AlertRecord> filteredAlerts(const QList<AlertRecord>& alertHistory,
                                  const QString& searchText) {
    if (searchText.isEmpty()) {
        return alertHistory;
    }
    QList<AlertRecord> matching;
    for (const AlertRecord& alert : alertHistory) {
        if (localizedCaseInsensitiveContains(alert.processName, searchText)) {
            matching << alert;
        }
    }
    return matching;
}

AlertHistoryView::AlertHistoryView(ProcessMonitor& processMonitor, QWidget* parent)
    : QWidget(parent),
      m_processMonitor(processMonitor),
      m_clearButton(new QToolButton(this)),
      m_search(new SearchBar(tr("Filter alerts..."), this)),
      m_stack(new QStackedWidget(this)),
      m_empty(new EmptyStateView(QStringLiteral("bell.badge.slash"), tr("No Alerts Yet"), this)),
      m_rows(new RowList(this)) {
    auto* layout = new QVBoxLayout(this);
    auto* header = new QHBoxLayout;
    auto* title = new QLabel(tr("Alert History"), this);
    title->setFont(headlineFont());
    header->addWidget(title);
    header->addStretch(1);
    m_clearButton->setIcon(symbolIcon(QStringLiteral("trash"), namedColor(NamedColor::Red)));
    m_clearButton->setAutoRaise(true);
    m_clearButton->setToolTip(tr("Clear History"));
    header->addWidget(m_clearButton);
    layout->addLayout(header);
    layout->addWidget(m_search);

    m_empty->setMessageAsHeadline(true);
    m_empty->setDetail(tr("Limit violations will appear here"));
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_rows);
    layout->addWidget(m_stack, 1);

    // No confirmation: the history is in memory only, and clearing it touches no file.
    connect(m_clearButton, &QToolButton::clicked, &m_processMonitor,
            &ProcessMonitor::clearAlertHistory);
    connect(m_search, &SearchBar::textChanged, this, &AlertHistoryView::rebuild);
    // Alerts arrive while the tab is hidden too; its rows are rebuilt when it shows.
    auto* refresh = new ShownRefresh(this, [this] { rebuild(); });
    connect(&m_processMonitor, &ProcessMonitor::alertHistoryChanged, refresh,
            &ShownRefresh::request);
    rebuild();
}

bool AlertHistoryView::isShowingEmptyState() const {
    return m_stack->currentWidget() == m_empty;
}

void AlertHistoryView::rebuild() {
    const QList<AlertRecord>& history = m_processMonitor.alertHistory();
    QList<QWidget*> rows;
    for (const AlertRecord& alert : filteredAlerts(history, m_search->text())) {
        rows << new AlertRow(alert);
    }
    m_rows->setRows(rows);
    m_clearButton->setVisible(!history.isEmpty());
    m_stack->setCurrentWidget(history.isEmpty() ? static_cast<QWidget*>(m_empty) : m_rows);
}

}  // namespace zelvar
