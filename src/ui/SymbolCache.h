#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

namespace zelvar {

// symbolPixmap through QPixmapCache: the rows of the process lists draw the same few badges
// and chevrons on every repaint, and looking a symbol up in the icon theme and tinting it
// each time would cost more than the rest of the row.
QPixmap cachedSymbolPixmap(const QString& symbol, int size, const QColor& tint);

}  // namespace zelvar
