#include "ui/Palette.h"

#include <QApplication>
#include <QPalette>
#include <QWidget>
#include <array>

namespace zelvar {

namespace {

QPalette paletteOf(const QWidget* widget) {
    return widget ? widget->palette() : QApplication::palette();
}

QFont scaled(double factor) {
    QFont font = QApplication::font();
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(std::max(1, qRound(font.pixelSize() * factor)));
    }
    return font;
}

}  // namespace

QColor namedColor(NamedColor name) {
    // Indexed by NamedColor.
    static const std::array<QColor, 11> colors{
        QColor(255, 59, 48),    // red
        QColor(255, 149, 0),    // orange
        QColor(52, 199, 89),    // green
        QColor(0, 122, 255),    // blue
        QColor(175, 82, 222),   // purple
        QColor(48, 176, 199),   // teal
        QColor(88, 86, 214),    // indigo
        QColor(255, 45, 85),    // pink
        QColor(255, 204, 0),    // yellow
        QColor(142, 142, 147),  // gray
        QColor(0, 199, 190),    // mint
    };
    return colors.at(static_cast<std::size_t>(name));
}

QColor secondaryColor(const QWidget* widget) {
    QColor color = paletteOf(widget).color(QPalette::WindowText);
    color.setAlphaF(0.55f);
    return color;
}

QColor accentColor(const QWidget* widget) {
    return paletteOf(widget).color(QPalette::Highlight);
}

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

QFont captionFont() {
    return scaled(0.85);
}

QFont caption2Font() {
    return scaled(0.77);
}

QFont headlineFont() {
    return semibold(QApplication::font());
}

QFont subheadlineFont() {
    return scaled(0.92);
}

QFont titleFont() {
    return semibold(scaled(1.3));
}

QFont monospacedDigits(QFont font) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    font.setFeature(QFont::Tag("tnum"), 1);
#endif
    // Before Qt 6.7 no font feature can be asked for; the desktop's sans fonts (DejaVu,
    // Cantarell, Noto) already give their digits one width.
    return font;
}

QFont semibold(QFont font) {
    font.setWeight(QFont::DemiBold);
    return font;
}

QString styleColor(const QColor& color) {
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(color.alpha());
}

}  // namespace zelvar
