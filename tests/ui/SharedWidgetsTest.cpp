#include <QImage>

#include "power/WattlogEventKind.h"
#include "support/Testing.h"
#include "ui/Symbols.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/SearchBar.h"

namespace {

// Whether any pixel of the symbol, drawn on transparency, is opaque.
bool drawsSomething(const QString& symbol, const QColor& tint = {}) {
    const QImage image = symbolPixmap(symbol, 24, tint).toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

// Every symbol that the dashboard names either resolves in the installed theme or is drawn:
// none comes out blank, tinted or not.
TEST(Symbols, EveryDashboardSymbolDrawsSomething) {
    QStringList symbols{"memorychip",
                        "internaldrive",
                        "network",
                        "bolt",
                        "speaker.wave.2",
                        "app.window",
                        "bell.badge",
                        "dot.radiowaves.left.and.right",
                        "gear",
                        "gauge",
                        "checkmark.shield",
                        "checkmark.shield.fill",
                        "exclamationmark.triangle.fill",
                        "circle.fill",
                        "bolt.fill",
                        "bolt.slash",
                        "cpu",
                        "chevron.down",
                        "chevron.right",
                        "magnifyingglass",
                        "xmark.circle.fill",
                        "plus.circle",
                        "ellipsis.circle",
                        "pencil",
                        "trash",
                        "bell.badge.slash",
                        "folder.fill",
                        "doc.fill",
                        "checkmark.circle",
                        "arrow.down",
                        "arrow.up",
                        "arrow.up.arrow.down",
                        "app",
                        "terminal",
                        "xmark.circle",
                        "tray",
                        "point.3.connected.trianglepath.dotted",
                        "sun.max",
                        "arrow.up.arrow.down.square",
                        "arrow.clockwise"};
    for (WattlogEventKind kind : WattlogEventKinds::all()) {
        symbols << WattlogEventKinds::symbol(kind);
    }
    for (const QString& symbol : symbols) {
        const QString name = freedesktopIconName(symbol);
        EXPECT_TRUE(name.isEmpty() || QIcon::hasThemeIcon(name))
            << symbol.toStdString() << " names " << name.toStdString();
        EXPECT_TRUE(drawsSomething(symbol)) << symbol.toStdString();
        EXPECT_TRUE(drawsSomething(symbol, Qt::red)) << symbol.toStdString();
    }
}

TEST(Symbols, TintColoursTheShape) {
    const QImage image = symbolPixmap("gauge", 24, QColor(0, 0, 255)).toImage();
    bool sawOpaque = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (pixel.alpha() == 255) {
                sawOpaque = true;
                EXPECT_EQ(pixel.rgb(), QColor(0, 0, 255).rgb());
            }
        }
    }
    EXPECT_TRUE(sawOpaque);
}

TEST(SharedWidgets, SearchBarShowsClearButtonOnlyWithTextAndClears) {
    SearchBar bar("Filter alerts...");
    QStringList changes;
    QObject::connect(&bar, &SearchBar::textChanged,
                     [&changes](const QString& text) { changes << text; });
    EXPECT_EQ(bar.placeholder(), "Filter alerts...");
    EXPECT_FALSE(bar.isClearButtonShown());

    bar.setText(" ");
    EXPECT_TRUE(bar.isClearButtonShown());
    bar.clear();
    EXPECT_EQ(bar.text(), "");
    EXPECT_FALSE(bar.isClearButtonShown());
    EXPECT_EQ(changes, QStringList({" ", ""}));
    EXPECT_EQ(SearchBar().placeholder(), "Search...");
}
