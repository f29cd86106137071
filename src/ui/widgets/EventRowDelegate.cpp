#include "ui/widgets/EventRowDelegate.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

#include "ui/Palette.h"
#include "ui/Symbols.h"

namespace zelvar {

namespace {

constexpr int kHorizontalMargin = 8;
constexpr int kVerticalMargin = 5;
constexpr int kGap = 8;

int symbolSize() {
    // The third title size: a little above the body text.
    return qRound(QFontMetrics(QApplication::font()).height() * 1.15);
}

}  // namespace

EventRowDelegate::EventRowDelegate(ContentOf content, QObject* parent)
    : QStyledItemDelegate(parent), m_content(std::move(content)) {}

void EventRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    background.icon = {};
    const QWidget* widget = option.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &background, painter, widget);

    const EventRowContent content = m_content(index);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QColor primary =
        option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    const QColor secondary = selected ? primary : secondaryColor(widget);
    const QRect box = option.rect.adjusted(kHorizontalMargin, kVerticalMargin, -kHorizontalMargin,
                                           -kVerticalMargin);

    painter->save();
    const int size = symbolSize();
    const QRect symbolBox(box.left() + (kSymbolColumnWidth - size) / 2,
                          box.top() + (box.height() - size) / 2, size, size);
    painter->drawPixmap(symbolBox, symbolPixmap(content.symbol, size, content.tint));

    // The trailing lines first: the title and caption take what is left of the width.
    const QFont trailingFont = monospacedDigits(captionFont());
    const QFontMetrics trailingMetrics(trailingFont);
    int trailingWidth = 0;
    for (const QString& line : content.trailing) {
        trailingWidth = std::max(trailingWidth, trailingMetrics.horizontalAdvance(line));
    }
    painter->setFont(trailingFont);
    painter->setPen(secondary);
    const int trailingHeight = trailingMetrics.height() * int(content.trailing.size());
    int y = box.top() + (box.height() - trailingHeight) / 2;
    for (const QString& line : content.trailing) {
        painter->drawText(
            QRect(box.right() - trailingWidth, y, trailingWidth, trailingMetrics.height()),
            Qt::AlignRight | Qt::AlignVCenter, line);
        y += trailingMetrics.height();
    }

    const int textLeft = box.left() + kSymbolColumnWidth + kGap;
    const int textWidth = std::max(0, box.right() - trailingWidth - kGap - textLeft);
    const QFont titleFont = semibold(QApplication::font());
    const QFontMetrics titleMetrics(titleFont);
    const QFontMetrics captionMetrics(captionFont());
    const int textHeight =
        titleMetrics.height() + (content.caption.isEmpty() ? 0 : captionMetrics.height());
    y = box.top() + (box.height() - textHeight) / 2;
    painter->setFont(titleFont);
    painter->setPen(primary);
    painter->drawText(QRect(textLeft, y, textWidth, titleMetrics.height()),
                      Qt::AlignLeft | Qt::AlignVCenter,
                      titleMetrics.elidedText(content.title, Qt::ElideRight, textWidth));
    if (!content.caption.isEmpty()) {
        painter->setFont(captionFont());
        painter->setPen(secondary);
        painter->drawText(
            QRect(textLeft, y + titleMetrics.height(), textWidth, captionMetrics.height()),
            Qt::AlignLeft | Qt::AlignVCenter,
            captionMetrics.elidedText(content.caption, Qt::ElideRight, textWidth));
    }
    painter->restore();
}

QSize EventRowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    // One height for every row, whatever it holds, so that the view can lay out a long list
    // without asking each row.
    const int text = QFontMetrics(semibold(QApplication::font())).height() +
                     QFontMetrics(captionFont()).height();
    const int trailing = 2 * QFontMetrics(monospacedDigits(captionFont())).height();
    return {kSymbolColumnWidth + 2 * kHorizontalMargin,
            std::max({text, trailing, symbolSize()}) + 2 * kVerticalMargin};
}

}  // namespace zelvar
