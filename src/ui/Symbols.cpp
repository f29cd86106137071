#include "ui/Symbols.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>
#include <QStandardPaths>

namespace zelvar {

namespace {

// An empty name marks a symbol that the themes don't draw the way the views mean it, painted
// here instead: the filled circle is the tree row's 6-point limit dot, where a theme's
// "record" icon has a ring; Adwaita's only bolt is the Thunderbolt port's logo in a ring, and
// its "clear" is a backspace key rather than the crossed disc of a search field.
const QHash<QString, QString>& symbolTable() {
    static const QHash<QString, QString> table{
        // The dashboard's frame and its tabs.
        {QStringLiteral("memorychip"), QStringLiteral("media-flash-symbolic")},
        {QStringLiteral("internaldrive"), QStringLiteral("drive-harddisk-symbolic")},
        {QStringLiteral("network"), QStringLiteral("network-workgroup-symbolic")},
        {QStringLiteral("bolt"), QString()},
        {QStringLiteral("speaker.wave.2"), QStringLiteral("audio-volume-high-symbolic")},
        {QStringLiteral("app.window"), QStringLiteral("focus-windows-symbolic")},
        {QStringLiteral("bell.badge"), QStringLiteral("preferences-system-notifications-symbolic")},
        {QStringLiteral("dot.radiowaves.left.and.right"),
         QStringLiteral("network-wireless-signal-excellent-symbolic")},
        {QStringLiteral("gear"), QStringLiteral("emblem-system-symbolic")},
        // Limits, whitelist and process status.
        {QStringLiteral("gauge"), QStringLiteral("power-profile-balanced-symbolic")},
        {QStringLiteral("checkmark.shield"), QStringLiteral("security-high-symbolic")},
        {QStringLiteral("checkmark.shield.fill"), QStringLiteral("security-high-symbolic")},
        {QStringLiteral("exclamationmark.triangle.fill"),
         QStringLiteral("dialog-warning-symbolic")},
        {QStringLiteral("circle.fill"), QString()},
        {QStringLiteral("bolt.fill"), QString()},
        {QStringLiteral("bolt.slash"), QString()},
        {QStringLiteral("cpu"), QStringLiteral("application-x-firmware-symbolic")},
        // Controls.
        {QStringLiteral("chevron.down"), QStringLiteral("pan-down-symbolic")},
        {QStringLiteral("chevron.right"), QStringLiteral("pan-end-symbolic")},
        {QStringLiteral("magnifyingglass"), QStringLiteral("edit-find-symbolic")},
        {QStringLiteral("xmark.circle.fill"), QString()},
        {QStringLiteral("plus.circle"), QStringLiteral("list-add-symbolic")},
        {QStringLiteral("ellipsis.circle"), QStringLiteral("view-more-horizontal-symbolic")},
        {QStringLiteral("pencil"), QStringLiteral("document-edit-symbolic")},
        {QStringLiteral("trash"), QStringLiteral("user-trash-symbolic")},
        // Disk and network tabs.
        {QStringLiteral("folder.fill"), QStringLiteral("folder-symbolic")},
        {QStringLiteral("doc.fill"), QStringLiteral("text-x-generic-symbolic")},
        {QStringLiteral("checkmark.circle"), QStringLiteral("emblem-ok-symbolic")},
        {QStringLiteral("arrow.down"), QStringLiteral("go-down-symbolic")},
        {QStringLiteral("arrow.up"), QStringLiteral("go-up-symbolic")},
        {QStringLiteral("arrow.up.arrow.down"),
         QStringLiteral("network-transmit-receive-symbolic")},
        {QStringLiteral("app"), QStringLiteral("application-x-executable-symbolic")},
        {QStringLiteral("terminal"), QStringLiteral("utilities-terminal-symbolic")},
        {QStringLiteral("xmark.circle"), QStringLiteral("window-close-symbolic")},
        {QStringLiteral("tray"), QStringLiteral("folder-download-symbolic")},
        // Alert history.
        {QStringLiteral("bell.badge.slash"), QStringLiteral("notifications-disabled-symbolic")},
        // The power history's event kinds.
        {QStringLiteral("moon.fill"), QStringLiteral("weather-clear-night-symbolic")},
        {QStringLiteral("moon.stars.fill"), QStringLiteral("night-light-symbolic")},
        {QStringLiteral("sun.max.fill"), QStringLiteral("weather-clear-symbolic")},
        {QStringLiteral("display"), QStringLiteral("video-display-symbolic")},
        {QStringLiteral("display.trianglebadge.exclamationmark"),
         QStringLiteral("computer-fail-symbolic")},
        {QStringLiteral("bolt.slash.fill"), QString()},
        {QStringLiteral("battery.75"), QStringLiteral("battery-level-80-symbolic")},
        {QStringLiteral("laptopcomputer"), QStringLiteral("computer-symbolic")},
        {QStringLiteral("laptopcomputer.slash"), QStringLiteral("system-shutdown-symbolic")},
        {QStringLiteral("arrow.clockwise.circle.fill"), QStringLiteral("system-reboot-symbolic")},
        {QStringLiteral("heart.circle"), QStringLiteral("emblem-favorite-symbolic")},
        {QStringLiteral("clock.badge.exclamationmark"),
         QStringLiteral("preferences-system-time-symbolic")},
        {QStringLiteral("memorychip.fill"), QStringLiteral("media-flash-symbolic")},
        {QStringLiteral("wifi"), QStringLiteral("network-wireless-signal-excellent-symbolic")},
        {QStringLiteral("wifi.slash"), QStringLiteral("network-wireless-offline-symbolic")},
        // The power correlation's figures, and the history's refresh.
        {QStringLiteral("point.3.connected.trianglepath.dotted"),
         QStringLiteral("preferences-system-details-symbolic")},
        {QStringLiteral("sun.max"), QStringLiteral("display-brightness-symbolic")},
        {QStringLiteral("arrow.up.arrow.down.square"),
         QStringLiteral("network-transmit-receive-symbolic")},
        {QStringLiteral("arrow.clockwise"), QStringLiteral("view-refresh-symbolic")},
    };
    return table;
}

QPainterPath boltPath(const QRectF& box) {
    const auto at = [&box](double x, double y) {
        return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    QPainterPath path;
    path.moveTo(at(0.58, 0.04));
    path.lineTo(at(0.18, 0.56));
    path.lineTo(at(0.46, 0.56));
    path.lineTo(at(0.38, 0.96));
    path.lineTo(at(0.82, 0.42));
    path.lineTo(at(0.54, 0.42));
    path.closeSubpath();
    return path;
}

// The drawn stand-in: a disc for the filled circle, a disc with a cut-out cross for
// "xmark.circle.fill", a bolt (struck through for "bolt.slash"), and a ring for anything
// unknown, which makes a missing table entry visible but not blank.
QPixmap drawnPixmap(const QString& symbol, int size, const QColor& colour) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(0, 0, size, size).adjusted(1, 1, -1, -1);
    if (symbol == QLatin1String("circle.fill") || symbol == QLatin1String("xmark.circle.fill")) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawEllipse(box);
        if (symbol == QLatin1String("xmark.circle.fill")) {
            painter.setCompositionMode(QPainter::CompositionMode_Clear);
            painter.setPen(QPen(Qt::black, std::max(1.0, size / 9.0), Qt::SolidLine, Qt::RoundCap));
            const QRectF cross = box.adjusted(size * 0.3, size * 0.3, -size * 0.3, -size * 0.3);
            painter.drawLine(cross.topLeft(), cross.bottomRight());
            painter.drawLine(cross.topRight(), cross.bottomLeft());
        }
    } else if (symbol.startsWith(QLatin1String("bolt"))) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawPath(boltPath(box));
        if (symbol.startsWith(QLatin1String("bolt.slash"))) {
            painter.setPen(QPen(colour, std::max(1.0, size / 10.0), Qt::SolidLine, Qt::RoundCap));
            painter.drawLine(box.topLeft(), box.bottomRight());
        }
    } else {
        painter.setPen(QPen(colour, std::max(1.0, size / 10.0)));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(box.adjusted(1, 1, -1, -1));
    }
    return pixmap;
}

// Paints `colour` over the opaque parts of `pixmap`: a symbolic icon keeps its shape.
QPixmap tinted(QPixmap pixmap, const QColor& colour) {
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), colour);
    return pixmap;
}

// Renders the symbol anew at every size it is asked for, so that tinted and drawn icons stay
// sharp at any size and device pixel ratio.
class SymbolIconEngine final : public QIconEngine {
public:
    SymbolIconEngine(QString symbol, QColor tint) : m_symbol(std::move(symbol)), m_tint(tint) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
        const int side = std::min(rect.width(), rect.height());
        QPixmap picture = pixmap(QSize(side, side) * ratio, mode, state);
        picture.setDevicePixelRatio(ratio);
        painter->drawPixmap(
            rect.topLeft() + QPoint((rect.width() - side) / 2, (rect.height() - side) / 2),
            picture);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        const int side = std::max(1, std::min(size.width(), size.height()));
        // Untinted symbols take the text colour, as in a dark theme they must.
        const QColor colour =
            m_tint.isValid() ? m_tint : QGuiApplication::palette().color(QPalette::WindowText);
        const QString name = freedesktopIconName(m_symbol);
        QPixmap picture;
        if (!name.isEmpty() && QIcon::hasThemeIcon(name)) {
            picture = tinted(QIcon::fromTheme(name).pixmap(QSize(side, side)), colour);
        }
        if (picture.isNull()) {
            picture = drawnPixmap(m_symbol, side, colour);
        }
        if (mode == QIcon::Disabled) {
            QPainter painter(&picture);
            painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
            painter.fillRect(picture.rect(), QColor(0, 0, 0, 100));
        }
        return picture;
    }

    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
        const int side = std::min(size.width(), size.height());
        return {side, side};
    }

    QIconEngine* clone() const override { return new SymbolIconEngine(m_symbol, m_tint); }
    QString key() const override { return QStringLiteral("zelvar-symbol"); }

private:
    QString m_symbol;
    QColor m_tint;
};

}  // namespace

QString freedesktopIconName(const QString& symbol) {
    return symbolTable().value(symbol);
}

QIcon symbolIcon(const QString& symbol, const QColor& tint) {
    return QIcon(new SymbolIconEngine(symbol, tint));
}

QPixmap symbolPixmap(const QString& symbol, int size, const QColor& tint) {
    return symbolIcon(symbol, tint).pixmap(size, size);
}

void installSymbolTheme() {
    // Platforms without a desktop theme plugin (offscreen, minimal) search only Qt's resources;
    // the XDG data folders are where icon themes are installed.
    QStringList searchPaths = QIcon::themeSearchPaths();
    for (const QString& data :
         QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        const QString icons = data + QStringLiteral("/icons");
        if (!searchPaths.contains(icons) && QFileInfo(icons).isDir()) {
            searchPaths << icons;
        }
    }
    QIcon::setThemeSearchPaths(searchPaths);
    QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
    // Without a desktop session (offscreen, a bare window manager) Qt names no theme at all,
    // and then the fallback is the only theme there is.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor")) {
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    }
}

}  // namespace zelvar
