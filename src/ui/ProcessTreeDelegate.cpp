#include "ui/ProcessTreeDelegate.h"

#include <QApplication>
#include <QPainter>

#include "ui/OriginChips.h"
#include "ui/Palette.h"
#include "ui/ProcessLimitStatus.h"
#include "ui/ProcessTreeModel.h"
#include "ui/SymbolCache.h"

namespace zelvar {
namespace {

QColor originColor(const ProcessOrigin& origin, const QWidget* widget) {
    switch (origin.kind()) {
        case ProcessOrigin::Kind::LaunchAgent:
            return namedColor(NamedColor::Blue);
        case ProcessOrigin::Kind::Gui:
            return namedColor(NamedColor::Purple);
        case ProcessOrigin::Kind::Cli:
            return namedColor(NamedColor::Green);
        default:
            return secondaryColor(widget);
    }
}

// The second caption size for the main chip; the lesser one a point smaller (10 against 9).
QFont chipFont(bool lesser) {
    QFont font = caption2Font();
    if (lesser) {
        font.setPointSizeF(font.pointSizeF() * 0.9);
    }
    return font;
}

}  // namespace

ProcessTreeDelegate::ProcessTreeDelegate(const ConfigManager& configManager, QObject* parent)
    : QStyledItemDelegate(parent), m_configManager(configManager) {}

void ProcessTreeDelegate::initStyleOption(QStyleOptionViewItem* option,
                                          const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    switch (index.column()) {
        case ProcessTreeModel::ProcessColumn:
            option->font = semibold(QApplication::font());
            break;
        case ProcessTreeModel::RamColumn:
            option->font = monospacedDigits(QApplication::font());
            break;
        case ProcessTreeModel::OwnColumn:
        case ProcessTreeModel::CpuColumn:
            option->font = monospacedDigits(captionFont());
            option->palette.setColor(QPalette::Text, secondaryColor(option->widget));
            break;
        default:
            break;
    }
    option->fontMetrics = QFontMetrics(option->font);
}

void ProcessTreeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const int column = index.column();
    if (column != ProcessTreeModel::OriginColumn && column != ProcessTreeModel::BadgeColumn) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    const QWidget* widget = option.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &background, painter, widget);

    const ProcessInfo process = index.data(ProcessTreeModel::ProcessRole).value<ProcessInfo>();
    if (column == ProcessTreeModel::OriginColumn) {
        paintOriginChips(painter, option.rect, process, widget);
    } else {
        paintLimitBadge(painter, option.rect, process, m_configManager);
    }
}

QSize ProcessTreeDelegate::sizeHint(const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(std::max(size.height(), QFontMetrics(QApplication::font()).height() + 8));
    return size;
}

void ProcessTreeDelegate::paintOriginChips(QPainter* painter, const QRect& rect,
                                           const ProcessInfo& process, const QWidget* widget) {
    constexpr int kSpacing = 4;
    int x = rect.left() + 2;
    painter->save();
    for (const OriginChips::Chip& chip :
         OriginChips::chips(process.immediateOrigin, process.rootOrigin)) {
        const QFont font = chipFont(chip.lesser);
        const QFontMetrics metrics(font);
        const int room = rect.right() - x;
        if (room <= metrics.horizontalAdvance(QLatin1Char('M'))) {
            break;
        }
        const QString text = metrics.elidedText(chip.text(), Qt::ElideRight, room);
        QColor color = originColor(chip.origin, widget);
        if (chip.lesser) {
            color = withOpacity(color, 0.6);
        }
        painter->setFont(font);
        painter->setPen(color);
        const QRect area(x, rect.top(), room, rect.height());
        painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter, text);
        x += metrics.horizontalAdvance(text) + kSpacing;
    }
    painter->restore();
}

void ProcessTreeDelegate::paintLimitBadge(QPainter* painter, const QRect& rect,
                                          const ProcessInfo& process,
                                          const ConfigManager& configManager) {
    QString symbol;
    QColor color;
    int size = 12;
    switch (ProcessLimitStatus::of(configManager, process).kind) {
        case ProcessLimitStatus::Kind::Whitelisted:
            symbol = QStringLiteral("checkmark.shield.fill");
            color = namedColor(NamedColor::Green);
            break;
        case ProcessLimitStatus::Kind::OverLimit:
            symbol = QStringLiteral("exclamationmark.triangle.fill");
            color = namedColor(NamedColor::Orange);
            break;
        case ProcessLimitStatus::Kind::WithinLimit:
            symbol = QStringLiteral("circle.fill");
            color = namedColor(NamedColor::Blue);
            size = 6;
            break;
        case ProcessLimitStatus::Kind::None:
            return;
    }
    QRect area(0, 0, size, size);
    area.moveCenter(rect.center());
    painter->drawPixmap(area, cachedSymbolPixmap(symbol, size, color));
}

}  // namespace zelvar
