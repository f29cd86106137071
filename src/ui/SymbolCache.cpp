#include "ui/SymbolCache.h"

#include <QPixmapCache>

#include "ui/Symbols.h"

namespace zelvar {

QPixmap cachedSymbolPixmap(const QString& symbol, int size, const QColor& tint) {
    const QString key = QStringLiteral("zelvar-symbol:%1:%2:%3")
                            .arg(symbol)
                            .arg(size)
                            .arg(tint.isValid() ? tint.name(QColor::HexArgb) : QString());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = symbolPixmap(symbol, size, tint);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

}  // namespace zelvar
