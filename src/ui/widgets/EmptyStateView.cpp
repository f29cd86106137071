#include "ui/widgets/EmptyStateView.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/Palette.h"
#include "ui/Symbols.h"

namespace zelvar {

namespace {
constexpr int kSymbolSize = 40;
}

EmptyStateView::EmptyStateView(const QString& symbol, const QString& message, QWidget* parent)
    : QWidget(parent),
      m_symbol(symbol),
      m_icon(new QLabel(this)),
      m_message(new QLabel(message, this)),
      m_detail(new QLabel(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->addStretch(1);
    for (QLabel* label : {m_icon, m_message, m_detail}) {
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(label != m_icon);
        layout->addWidget(label);
    }
    layout->addStretch(1);
    m_detail->setVisible(false);
    m_detail->setFont(captionFont());
    updateLook();
}

QString EmptyStateView::message() const {
    return m_message->text();
}

void EmptyStateView::setMessage(const QString& message) {
    m_message->setText(message);
}

void EmptyStateView::setDetail(const QString& detail) {
    m_detail->setText(detail);
    m_detail->setVisible(!detail.isEmpty());
}

QString EmptyStateView::detail() const {
    return m_detail->text();
}

void EmptyStateView::setMessageAsHeadline(bool headline) {
    m_headline = headline;
    updateLook();
}

void EmptyStateView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        updateLook();
    }
}

void EmptyStateView::updateLook() {
    const QColor secondary = secondaryColor(this);
    const QString secondaryStyle = QStringLiteral("color: %1;").arg(styleColor(secondary));
    m_icon->setPixmap(symbolPixmap(m_symbol, kSymbolSize, secondary));
    m_message->setFont(m_headline ? headlineFont() : font());
    m_message->setStyleSheet(m_headline ? QString() : secondaryStyle);
    m_detail->setStyleSheet(secondaryStyle);
}

}  // namespace zelvar
