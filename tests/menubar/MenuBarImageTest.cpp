#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QFontMetricsF>
#include <cmath>

#include "menubar/MenuBarRateImageRenderer.h"
#include "menubar/MenuBarStatus.h"
#include "network/BandwidthMonitorFixture.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

double widthOf(const QString& text, double size, QFont::Weight weight) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(static_cast<int>(size));
    font.setWeight(weight);
    return std::ceil(QFontMetricsF(font).horizontalAdvance(text));
}

// Columns of the image that hold any visible pixel.
QList<int> inkedColumns(const QImage& image) {
    QList<int> columns;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (qAlpha(image.pixel(x, y)) > 0) {
                columns.append(x);
                break;
            }
        }
    }
    return columns;
}

}  // namespace

TEST(MenuBarRateImageRendererTest, WidthIsTheWiderRateLineAndGrowsByThePowerText) {
    const double rateWidth = std::max(widthOf("↓ 1.50MB/s", 9, QFont::DemiBold),
                                      widthOf("↑ 999B/s", 9, QFont::DemiBold));
    ASSERT_GT(rateWidth, 20.0);  // a font was found

    const QImage plain = MenuBarRateImageRenderer::render("1.50MB/s", "999B/s", std::nullopt);
    EXPECT_EQ(plain.deviceIndependentSize(), QSizeF(rateWidth, 22.0));

    const double powerWidth = widthOf("P 12.5W", 13, QFont::Medium);
    const QImage withPower = MenuBarRateImageRenderer::render("1.50MB/s", "999B/s", "12.5W");
    EXPECT_EQ(withPower.deviceIndependentSize(), QSizeF(rateWidth + 2.0 + powerWidth, 22.0));

    // The rate lines stay in the left column; the power text is drawn right of the gap.
    const QList<int> columns = inkedColumns(withPower);
    ASSERT_FALSE(columns.isEmpty());
    EXPECT_GE(columns.last(), static_cast<int>(rateWidth + 2.0));
    const QList<int> plainColumns = inkedColumns(plain);
    ASSERT_FALSE(plainColumns.isEmpty());
    EXPECT_LT(plainColumns.last(), static_cast<int>(rateWidth));
}

TEST(MenuBarRateImageRendererTest, DrawsAtTheScreensPixelRatio) {
    const QImage image = MenuBarRateImageRenderer::render("0B/s", "0B/s", "0%", 2.0);
    EXPECT_EQ(image.devicePixelRatio(), 2.0);
    EXPECT_EQ(image.height(), 44);
    EXPECT_EQ(image.deviceIndependentSize().height(), 22.0);
    EXPECT_FALSE(inkedColumns(image).isEmpty());
}

TEST(MenuBarRateImageRendererTest, SquareVariantFitsEverythingInTheSquare) {
    const QImage image =
        MenuBarRateImageRenderer::renderSquare("123KB/s", "1000TB/s", "100%", 22.0, 2.0);
    EXPECT_EQ(image.deviceIndependentSize(), QSizeF(22.0, 22.0));
    const QList<int> columns = inkedColumns(image);
    ASSERT_FALSE(columns.isEmpty());
    EXPECT_LT(columns.last(), image.width());
    EXPECT_EQ(MenuBarRateImageRenderer::compactRate("1.50MB/s"), "1.50M");
    EXPECT_EQ(MenuBarRateImageRenderer::compactRate("999B/s"), "999");
    EXPECT_EQ(MenuBarRateImageRenderer::compactRate("12%"), "12%");
}

// Counts the status item's updates and keeps the last tool tip.
struct StatusSpy {
    explicit StatusSpy(MenuBarStatus& status) {
        QObject::connect(&status, &MenuBarStatus::statusChanged,
                         [this](const QImage&, const QString& toolTip) {
                             ++count;
                             lastToolTip = toolTip;
                         });
    }
    qsizetype size() const { return count; }
    qsizetype count = 0;
    QString lastToolTip;
};

using MenuBarStatusTest = BandwidthMonitorFixture;

TEST_F(MenuBarStatusTest, ShowsZeroRatesAtOnceAndFollowsEveryRateChange) {
    MenuBarStatus status(m_monitor, MenuBarStatus::Shape::Wide);
    StatusSpy spy(status);
    ASSERT_TRUE(processEventsUntil([&] { return spy.size() == 1; }));
    EXPECT_EQ(status.toolTip(), "Down 0B/s, Up 0B/s, Power 0%");
    EXPECT_EQ(status.image().deviceIndependentSize().height(), 22.0);
    const double emptyWidth = status.image().deviceIndependentSize().width();

    startAndWait();
    m_counters.add("eth0", 3000000, 4000);
    nextSample();
    processEventsUntil([] { return false; }, 50);
    EXPECT_EQ(status.toolTip(), "Down 1.50MB/s, Up 2.00KB/s, Power 0%");
    EXPECT_EQ(spy.lastToolTip, status.toolTip());
    EXPECT_GT(status.image().deviceIndependentSize().width(), emptyWidth);
    // One update for each rate that a sample sets, two a sample.
    EXPECT_EQ(spy.size(), 1 + 2 * m_samples);
}

TEST_F(MenuBarStatusTest, PowerTextComesFromItsSourceOnEachPowerChange) {
    MenuBarStatus status(m_monitor, MenuBarStatus::Shape::Square);
    QString power = "-12.5W";
    status.setPowerTextSource([&] { return power; });
    StatusSpy spy(status);
    ASSERT_TRUE(processEventsUntil([&] { return spy.size() == 1; }));
    EXPECT_EQ(status.toolTip(), "Down 0B/s, Up 0B/s, Power -12.5W");
    EXPECT_EQ(status.image().deviceIndependentSize(), QSizeF(22.0, 22.0));
    power = "3.0W";
    status.powerChanged();
    ASSERT_TRUE(processEventsUntil([&] { return spy.size() == 2; }));
    EXPECT_EQ(status.toolTip(), "Down 0B/s, Up 0B/s, Power 3.0W");
}
