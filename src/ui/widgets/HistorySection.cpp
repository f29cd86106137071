#include "ui/widgets/HistorySection.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "ui/Palette.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

HistorySection::HistorySection(const Look& look, QAbstractItemModel* model,
                               QAbstractItemDelegate* delegate, QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("HistorySection"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto* header = new QHBoxLayout;
    header->addWidget(symbolLabel(look.symbol, 16, secondaryColor(this), this));
    header->addWidget(textLabel(look.title, headlineFont(), this));
    header->addStretch(1);
    m_count = textLabel({}, captionFont(), this, secondaryColor(this));
    m_count->setObjectName(QStringLiteral("count"));
    header->addWidget(m_count);
    column->addLayout(header);

    m_stack = new QStackedWidget(this);
    m_empty = new EmptyStateView(look.emptySymbol, look.emptyMessage, m_stack);
    m_stack->addWidget(m_empty);
    m_list = new QListView(m_stack);
    m_list->setObjectName(QStringLiteral("events"));
    m_list->setMinimumHeight(kMinimumListHeight);
    m_list->setUniformItemSizes(true);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setModel(model);
    m_list->setItemDelegate(delegate);
    m_stack->addWidget(m_list);
    column->addWidget(m_stack, 1);

    connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this,
            [this] { m_scrollBeforeInsert = m_list->verticalScrollBar()->value(); });
    connect(model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { keepViewedRows(first, last); });
    setTotal(0);
}

void HistorySection::setTotal(qsizetype total) {
    m_count->setText(QString::number(total) + QStringLiteral(" events"));
    m_stack->setCurrentWidget(m_list->model()->rowCount() > 0 ? static_cast<QWidget*>(m_list)
                                                              : m_empty);
}

QString HistorySection::countText() const {
    return m_count->text();
}

QString HistorySection::emptyMessage() const {
    return m_empty->message();
}

bool HistorySection::showsList() const {
    return m_stack->currentWidget() == m_list;
}

void HistorySection::keepViewedRows(int first, int last) {
    // At the top the newest events come into view; scrolled down, the rows being read stay
    // put, the new ones above them.
    if (first != 0 || m_scrollBeforeInsert == 0) {
        return;
    }
    m_list->doItemsLayout();
    const int step = m_list->verticalScrollMode() == QAbstractItemView::ScrollPerItem
                         ? 1
                         : m_list->sizeHintForRow(0);
    m_list->verticalScrollBar()->setValue(m_scrollBeforeInsert + (last - first + 1) * step);
}

}  // namespace zelvar
