#include "ui/LimitsView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "config/ConfigManager.h"
#include "ui/AddLimitSheet.h"
#include "ui/LimitRow.h"
#include "ui/Palette.h"
#include "ui/Symbols.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/RowList.h"

namespace zelvar {

LimitsView::LimitsView(ProcessMonitor& processMonitor, ConfigManager& configManager,
                       QWidget* parent)
    : QWidget(parent),
      m_processMonitor(processMonitor),
      m_configManager(configManager),
      m_stack(new QStackedWidget(this)),
      m_empty(new EmptyStateView(QStringLiteral("gauge"), tr("No Limits Configured"), this)),
      m_rows(new RowList(this)) {
    auto* layout = new QVBoxLayout(this);
    auto* header = new QHBoxLayout;
    auto* title = new QLabel(tr("Configured Limits"), this);
    title->setFont(headlineFont());
    header->addWidget(title);
    header->addStretch(1);
    auto* add = new QToolButton(this);
    add->setIcon(symbolIcon(QStringLiteral("plus.circle")));
    add->setAutoRaise(true);
    add->setToolTip(tr("Add Limit"));
    header->addWidget(add);
    layout->addLayout(header);

    m_empty->setMessageAsHeadline(true);
    m_empty->setDetail(tr("Click the + button to add a limit for a process"));
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_rows);
    layout->addWidget(m_stack, 1);

    connect(add, &QToolButton::clicked, this, &LimitsView::presentAddLimitSheet);
    connect(&m_configManager, &ConfigManager::configChanged, this, &LimitsView::rebuild);
    rebuild();
}

bool LimitsView::isShowingEmptyState() const {
    return m_stack->currentWidget() == m_empty;
}

void LimitsView::presentAddLimitSheet() {
    auto* sheet = new AddLimitSheet(m_processMonitor, m_configManager, window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

void LimitsView::rebuild() {
    QList<QWidget*> rows;
    for (const ProcessLimit& limit : m_configManager.config().limits) {
        auto* row = new LimitRow(limit, m_configManager);
        connect(row, &LimitRow::removeRequested, this,
                [this, id = limit.id] { m_configManager.removeLimit(id); });
        rows << row;
    }
    m_rows->setRows(rows);
    m_stack->setCurrentWidget(rows.isEmpty() ? static_cast<QWidget*>(m_empty) : m_rows);
}

}  // namespace zelvar
