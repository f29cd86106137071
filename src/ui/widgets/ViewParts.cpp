#include "ui/widgets/ViewParts.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/Palette.h"
#include "ui/Symbols.h"

namespace zelvar {

QLabel* textLabel(const QString& text, const QFont& font, QWidget* parent, const QColor& color) {
    auto* result = new QLabel(text, parent);
    result->setFont(font);
    if (color.isValid()) {
        QPalette palette = result->palette();
        palette.setColor(QPalette::WindowText, color);
        result->setPalette(palette);
    }
    return result;
}

QLabel* symbolLabel(const QString& symbol, int size, const QColor& tint, QWidget* parent) {
    auto* result = new QLabel(parent);
    result->setPixmap(symbolPixmap(symbol, size, tint));
    result->setFixedWidth(std::max(size, 16));
    return result;
}

QFrame* card(const QString& name, QWidget* parent) {
    auto* frame = new QFrame(parent);
    makeCard(frame, name);
    return frame;
}

void makeCard(QFrame* frame, const QString& name) {
    frame->setObjectName(name);
    frame->setFrameShape(QFrame::StyledPanel);
    frame->setAutoFillBackground(true);
    frame->setBackgroundRole(QPalette::Base);
}

QVBoxLayout* symbolBesideTexts(QWidget* container, QLabel* symbol) {
    auto* row = new QHBoxLayout(container);
    row->setContentsMargins(12, 10, 12, 10);
    row->setSpacing(12);
    row->addWidget(symbol, 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    row->addLayout(texts, 1);
    return texts;
}

QVBoxLayout* scrollingColumn(QWidget* page) {
    auto* outer = new QVBoxLayout(page);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* scroll = new QScrollArea(page);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* content = new QWidget(scroll);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 4, 4, 4);
    scroll->setWidget(content);
    outer->addWidget(scroll);
    return column;
}

void clearLayout(QWidget* container) {
    QLayout* layout = container->layout();
    while (QLayoutItem* item = layout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

QWidget* sectionHeader(const QString& title, QWidget* trailing, QWidget* parent) {
    auto* header = new QWidget(parent);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 8, 0, 4);
    row->addWidget(textLabel(title, headlineFont(), header));
    row->addStretch(1);
    if (trailing) {
        row->addWidget(trailing);
    }
    return header;
}

FillBar::FillBar(double fraction, QColor fill, int height, QWidget* parent)
    : QWidget(parent), m_fraction(fraction), m_fill(fill) {
    setFixedHeight(height);
    setObjectName(QStringLiteral("bar"));
    setProperty("fraction", fraction);
    setProperty("fill", fill);
}

void FillBar::setFraction(double fraction, QColor fill) {
    m_fraction = fraction;
    m_fill = fill;
    setProperty("fraction", fraction);
    setProperty("fill", fill);
    update();
}

void FillBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Mid));
    painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    painter.setBrush(m_fill);
    painter.drawRoundedRect(QRectF(0, 0, width() * std::clamp(m_fraction, 0.0, 1.0), height()),
                            height() / 2.0, height() / 2.0);
}

}  // namespace zelvar
