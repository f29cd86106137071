#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace zelvar {

// The dashboard names its pictures by the macOS symbol names ("memorychip", "bolt.fill"), so
// that every view says what it shows in one vocabulary; this table turns them into
// freedesktop icon names. Symbolic (monochrome) icons are chosen so that a tint colours the
// whole shape.

// The freedesktop icon name for `symbol`, or the empty text for a symbol that no icon theme
// has (those are drawn by symbolIcon).
QString freedesktopIconName(const QString& symbol);

// The symbol's icon, tinted when `tint` is valid. A symbol that the theme lacks, or that is
// not in the table, is drawn here, so an icon is never blank.
QIcon symbolIcon(const QString& symbol, const QColor& tint = {});

// The symbol as a square pixmap of `size` device-independent pixels, tinted like symbolIcon.
QPixmap symbolPixmap(const QString& symbol, int size, const QColor& tint = {});

// Makes the symbolic icons resolvable: Adwaita (installed by scripts/install-deps.sh) as the
// fallback theme behind the desktop's own. Called once by the application, before any view.
void installSymbolTheme();

}  // namespace zelvar
