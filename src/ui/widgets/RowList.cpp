#include "ui/widgets/RowList.h"

#include <QFrame>
#include <QVBoxLayout>

namespace zelvar {

RowList::RowList(QWidget* parent)
    : QScrollArea(parent), m_content(new QWidget), m_layout(new QVBoxLayout(m_content)) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_layout->addStretch(1);
    setWidget(m_content);
}

void RowList::setRows(const QList<QWidget*>& rows) {
    for (QWidget* old : m_rows + m_dividers) {
        old->hide();
        m_layout->removeWidget(old);
        old->deleteLater();
    }
    m_rows = rows;
    m_dividers.clear();
    int position = 0;
    for (QWidget* row : rows) {
        m_layout->insertWidget(position++, row);
        auto* divider = new QFrame(m_content);
        divider->setFrameShape(QFrame::HLine);
        divider->setFrameShadow(QFrame::Plain);
        divider->setStyleSheet(QStringLiteral("color: rgba(128, 128, 128, 60);"));
        m_layout->insertWidget(position++, divider);
        m_dividers << divider;
    }
}

}  // namespace zelvar
