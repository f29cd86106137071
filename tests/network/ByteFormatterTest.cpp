#include <gtest/gtest.h>

#include <QLocale>
#include <limits>

#include "network/ByteFormatter.h"

using namespace zelvar;

TEST(ByteFormatterTest, BytesStepByThousandsWithThreeNumberFormats) {
    const std::pair<quint64, const char*> cases[] = {
        {0, "0B"},
        {999, "999B"},
        {1000, "1.00KB"},
        {1500, "1.50KB"},
        {9999, "10.00KB"},  // 9.999 is below 10, so it keeps two decimals
        {12345, "12.3KB"},
        {12250, "12.2KB"},   // an exact tie rounds to even, as printf does
        {99999, "100.0KB"},  // 99.999 is below 100 and rounds up in "%.1f"
        {100000, "100KB"},
        {123456, "123KB"},
        {999999, "1000KB"},
        {2000000, "2.00MB"},
        {1000000000, "1.00GB"},
        {1000000000000ULL, "1.00TB"},
        {5000000000000000ULL, "5000TB"},
        {std::numeric_limits<quint64>::max(), "18446744TB"},
    };
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(ByteFormatter::bytes(value), QLatin1String(expected)) << value;
    }
}

TEST(ByteFormatterTest, SignedBytesPutsTheSignBeforeTheMagnitude) {
    EXPECT_EQ(ByteFormatter::signedBytes(-1500), "-1.50KB");
    EXPECT_EQ(ByteFormatter::signedBytes(0), "0B");
    EXPECT_EQ(ByteFormatter::signedBytes(1500), "1.50KB");
    EXPECT_EQ(ByteFormatter::signedBytes(-999), "-999B");
    EXPECT_EQ(ByteFormatter::signedBytes(std::numeric_limits<qint64>::min()), "-9223372TB");
}

TEST(ByteFormatterTest, RatesCarryThePerSecondSuffix) {
    EXPECT_EQ(ByteFormatter::rate(0.0), "0B/s");
    EXPECT_EQ(ByteFormatter::rate(2000000.0), "2.00MB/s");
    EXPECT_EQ(ByteFormatter::rate(999.4), "999B/s");
    EXPECT_EQ(ByteFormatter::rate(2.5), "2B/s");  // 5 bytes in 2 seconds: a tie, to even
    EXPECT_EQ(ByteFormatter::rate(3.5), "4B/s");
    EXPECT_EQ(ByteFormatter::rate(1e21), "1000000000TB/s");
}

TEST(ByteFormatterTest, DecimalPointIgnoresTheUserLocale) {
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(ByteFormatter::bytes(1500), "1.50KB");
    QLocale::setDefault(previous);
}
