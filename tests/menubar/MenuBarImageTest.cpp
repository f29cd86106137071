#include <QFontDatabase>
#include <QFontMetricsF>
#include <cmath>

#include "menubar/MenuBarRateImageRenderer.h"
#include "menubar/MenuBarStatus.h"
#include "network/BandwidthMonitorFixture.h"
#include "support/Testing.h"

namespace {

double widthOf(const QString& text, double size, QFont::Weight weight) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(static_cast<int>(size));
    font.setWeight(weight);
    return std::ceil(QFontMetricsF(font).horizontalAdvance(text));
}

// The last column of the image that holds a visible pixel, or -1.
int lastInkedColumn(const QImage& image) {
    for (int x = image.width() - 1; x >= 0; --x) {
        for (int y = 0; y < image.height(); ++y) {
            if (qAlpha(image.pixel(x, y)) > 0) {
                return x;
            }
        }
    }
    return -1;
}

}  // namespace

TEST(MenuBarRateImageRendererTest, WidthIsTheWiderRateLineAndGrowsByThePowerText) {
    const double rateWidth = std::max(widthOf("↓ 1.50MB/s", 9, QFont::DemiBold),
                                      widthOf("↑ 999B/s", 9, QFont::DemiBold));
    ASSERT_GT(rateWidth, 20.0);  // a font was found

    const QImage plain = MenuBarRateImageRenderer::render("1.50MB/s", "999B/s", std::nullopt);
    EXPECT_EQ(plain.deviceIndependentSize(), QSizeF(rateWidth, 22.0));
    EXPECT_THAT(lastInkedColumn(plain),
                ::testing::AllOf(::testing::Ge(0), ::testing::Lt(static_cast<int>(rateWidth))));

    // The rate lines stay in the left column; the power text is drawn right of the gap, here at
    // a screen's pixel ratio of 2.
    const double powerWidth = widthOf("P 12.5W", 13, QFont::Medium);
    const QImage withPower = MenuBarRateImageRenderer::render("1.50MB/s", "999B/s", "12.5W", 2.0);
    EXPECT_EQ(std::tuple(withPower.devicePixelRatio(), withPower.height(),
                         withPower.deviceIndependentSize()),
              std::tuple(2.0, 44, QSizeF(rateWidth + 2.0 + powerWidth, 22.0)));
    EXPECT_GE(lastInkedColumn(withPower), static_cast<int>(2 * (rateWidth + 2.0)));
}

TEST(MenuBarRateImageRendererTest, SquareShapeAndCompactRates) {
    const QImage square =
        MenuBarRateImageRenderer::renderSquare("123KB/s", "1000TB/s", "100%", 22.0, 2.0);
    EXPECT_EQ(std::pair(square.devicePixelRatio(), square.deviceIndependentSize()),
              std::pair(2.0, QSizeF(22.0, 22.0)));
    EXPECT_GE(lastInkedColumn(square), 0);
    EXPECT_EQ(MenuBarRateImageRenderer::compactRate("1.50MB/s"), "1.50M");
    EXPECT_EQ(MenuBarRateImageRenderer::compactRate("999B/s"), "999");
    EXPECT_EQ(MenuBarRateImageRenderer::compactRate("12%"), "12%");
}

using MenuBarStatusTest = BandwidthMonitorFixture;

TEST_F(MenuBarStatusTest, ShowsZeroRatesAtOnceAndFollowsEveryRateAndPowerChange) {
    MenuBarStatus wide(m_monitor, MenuBarStatus::Shape::Wide);
    MenuBarStatus square(m_monitor, MenuBarStatus::Shape::Square);
    QString power = "-12.5W";
    square.setPowerTextSource([&] { return power; });
    QStringList shown;  // the wide one's tool tips as sent
    int squareUpdates = 0;
    QObject::connect(&wide, &MenuBarStatus::statusChanged,
                     [&](const QImage&, const QString& toolTip) { shown << toolTip; });
    QObject::connect(&square, &MenuBarStatus::statusChanged, [&] { ++squareUpdates; });
    ASSERT_TRUE(processEventsUntil([&] { return shown.size() == 1 && squareUpdates == 1; }));
    EXPECT_EQ(wide.toolTip(), "Down 0B/s, Up 0B/s, Power 0%");
    EXPECT_EQ(square.toolTip(), "Down 0B/s, Up 0B/s, Power -12.5W");
    EXPECT_EQ(square.image().deviceIndependentSize(), QSizeF(22.0, 22.0));
    const double emptyWidth = wide.image().deviceIndependentSize().width();
    power = "3.0W";
    square.powerChanged();
    ASSERT_TRUE(processEventsUntil([&] { return squareUpdates == 2; }));
    EXPECT_EQ(square.toolTip(), "Down 0B/s, Up 0B/s, Power 3.0W");
    // The same texts again are sent with the picture already drawn, not a new one.
    const qint64 drawn = square.image().cacheKey();
    square.powerChanged();
    ASSERT_TRUE(processEventsUntil([&] { return squareUpdates == 3; }));
    EXPECT_EQ(square.image().cacheKey(), drawn);

    startAndWait();
    m_counters.add("eth0", 3000000, 4000);
    nextSample();
    processEventsUntil([] { return false; }, 50);
    EXPECT_EQ(wide.toolTip(), "Down 1.50MB/s, Up 2.00KB/s, Power 0%");
    EXPECT_EQ(shown.last(), wide.toolTip());
    EXPECT_GT(wide.image().deviceIndependentSize().width(), emptyWidth);
    EXPECT_EQ(wide.menuRateText(), "1.50MB/s\n2.00KB/s");
    EXPECT_EQ(wide.menuRateImage("1W"),
              MenuBarRateImageRenderer::render("1.50MB/s", "2.00KB/s", "1W"));
    // One update for each rate that a sample sets, two a sample.
    EXPECT_EQ(shown.size(), 1 + 2 * m_samples);
}
