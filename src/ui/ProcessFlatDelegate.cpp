#include "ui/ProcessFlatDelegate.h"

#include <QApplication>
#include <QPainter>

#include "process/ProcessInfo.h"
#include "ui/Palette.h"
#include "ui/ProcessLimitStatus.h"
#include "ui/ProcessListModel.h"
#include "ui/SymbolCache.h"

namespace zelvar {
namespace {

constexpr int kPadding = 6;
constexpr int kHorizontalPadding = 8;

}  // namespace

ProcessFlatDelegate::ProcessFlatDelegate(const ConfigManager& configManager, QObject* parent)
    : QStyledItemDelegate(parent), m_configManager(configManager) {}

QSize ProcessFlatDelegate::sizeHint(const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    Q_UNUSED(index);
    const int height = QFontMetrics(semibold(QApplication::font())).height() +
                       QFontMetrics(captionFont()).height() + 2 * kPadding + 2;
    return {option.rect.width(), height};
}

void ProcessFlatDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    const QWidget* widget = option.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &background, painter, widget);

    const ProcessInfo process = index.data(ProcessListModel::ProcessRole).value<ProcessInfo>();
    const QRect area =
        option.rect.adjusted(kHorizontalPadding, kPadding, -kHorizontalPadding, -kPadding);
    painter->save();

    // The standing first, so that the name knows how much room is left.
    const bool selected = option.state & QStyle::State_Selected;
    const ProcessLimitStatus status = ProcessLimitStatus::of(m_configManager, process);
    int right = area.right();
    if (status.kind != ProcessLimitStatus::Kind::None) {
        QColor color = namedColor(NamedColor::Blue);
        QString symbol;
        if (status.kind == ProcessLimitStatus::Kind::Whitelisted) {
            color = namedColor(NamedColor::Green);
            symbol = QStringLiteral("checkmark.shield.fill");
        } else if (status.kind == ProcessLimitStatus::Kind::OverLimit) {
            color = namedColor(NamedColor::Orange);
            symbol = QStringLiteral("exclamationmark.triangle.fill");
        }
        if (selected) {
            // A coloured text on the selection's colour (blue on blue) can't be read.
            color = option.palette.color(QPalette::HighlightedText);
        }
        const QFont font = captionFont();
        const QFontMetrics metrics(font);
        const QString text = status.text();
        const int textWidth = metrics.horizontalAdvance(text);
        painter->setFont(font);
        painter->setPen(color);
        painter->drawText(QRect(right - textWidth, area.top(), textWidth, area.height()),
                          Qt::AlignRight | Qt::AlignVCenter, text);
        right -= textWidth + 4;
        if (!symbol.isEmpty()) {
            const int size = metrics.height();
            const QRect icon(right - size, area.center().y() - size / 2, size, size);
            painter->drawPixmap(icon, cachedSymbolPixmap(symbol, size, color));
            right = icon.left() - 4;
        }
        right -= 8;
    }

    const QFont nameFont = semibold(QApplication::font());
    const QFontMetrics nameMetrics(nameFont);
    painter->setFont(nameFont);
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    const QRect nameRect(area.left(), area.top(), right - area.left(), nameMetrics.height());
    painter->drawText(nameRect, Qt::AlignLeft | Qt::AlignVCenter,
                      nameMetrics.elidedText(process.name, Qt::ElideRight, nameRect.width()));

    const QFont detailFont = monospacedDigits(captionFont());
    const QFontMetrics detailMetrics(detailFont);
    painter->setFont(detailFont);
    painter->setPen(selected ? option.palette.color(QPalette::HighlightedText)
                             : secondaryColor(widget));
    const QString detail = QStringLiteral("PID: %1    %2    %3")
                               .arg(process.id)
                               .arg(process.displayMemory(), process.displayCPU());
    const QRect detailRect(area.left(), nameRect.bottom() + 2, right - area.left(),
                           detailMetrics.height());
    painter->drawText(detailRect, Qt::AlignLeft | Qt::AlignVCenter,
                      detailMetrics.elidedText(detail, Qt::ElideRight, detailRect.width()));
    painter->restore();
}

}  // namespace zelvar
