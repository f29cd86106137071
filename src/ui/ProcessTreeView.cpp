#include "ui/ProcessTreeView.h"

#include <QPainter>

#include "ui/Palette.h"
#include "ui/SymbolCache.h"

namespace zelvar {

ProcessTreeView::ProcessTreeView(QWidget* parent) : QTreeView(parent) {
    setIndentation(kIndent);
    setRootIsDecorated(true);
    // Every row is one line: the view then needn't measure each row to lay out thousands.
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
}

void ProcessTreeView::drawBranches(QPainter* painter, const QRect& rect,
                                   const QModelIndex& index) const {
    if (selectionModel() && selectionModel()->isSelected(index)) {
        painter->fillRect(rect, palette().brush(hasFocus() ? QPalette::Active : QPalette::Inactive,
                                                QPalette::Highlight));
    }
    if (!model() || model()->rowCount(index) == 0) {
        return;
    }
    constexpr int kChevron = 12;
    const QRect cell(rect.right() - kIndent + 1, rect.top(), kIndent, rect.height());
    QRect chevron(0, 0, kChevron, kChevron);
    chevron.moveCenter(cell.center());
    const QString symbol =
        isExpanded(index) ? QStringLiteral("chevron.down") : QStringLiteral("chevron.right");
    painter->drawPixmap(chevron, cachedSymbolPixmap(symbol, kChevron, secondaryColor(this)));
}

}  // namespace zelvar
