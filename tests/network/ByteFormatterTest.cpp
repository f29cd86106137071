#include <gtest/gtest.h>

#include <QLocale>
#include <limits>

#include "network/ByteFormatter.h"

using namespace zelvar;

TEST(ByteFormatterTest, StepsByThousandsWithThreeNumberFormatsWhateverTheLocale) {
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));  // a decimal comma
    const std::pair<QString, const char*> cases[] = {
        {ByteFormatter::bytes(0), "0B"},
        {ByteFormatter::bytes(1000), "1.00KB"},
        {ByteFormatter::bytes(9999), "10.00KB"},  // 9.999 is below 10: it keeps two decimals
        {ByteFormatter::bytes(12250), "12.2KB"},  // an exact tie rounds to even, as printf does
        {ByteFormatter::bytes(99999), "100.0KB"},
        {ByteFormatter::bytes(100000), "100KB"},
        {ByteFormatter::bytes(999999), "1000KB"},
        {ByteFormatter::bytes(1000000000), "1.00GB"},
        {ByteFormatter::bytes(1000000000000ULL), "1.00TB"},
        {ByteFormatter::bytes(std::numeric_limits<quint64>::max()), "18446744TB"},
        {ByteFormatter::signedBytes(-1500), "-1.50KB"},
        {ByteFormatter::signedBytes(0), "0B"},
        {ByteFormatter::signedBytes(std::numeric_limits<qint64>::min()), "-9223372TB"},
        {ByteFormatter::rate(999.4), "999B/s"},
        {ByteFormatter::rate(2.5), "2B/s"},  // 5 bytes in 2 seconds: a tie, to even
        {ByteFormatter::rate(3.5), "4B/s"},
        {ByteFormatter::rate(2000000.0), "2.00MB/s"}};
    QLocale::setDefault(previous);
    for (const auto& [formatted, expected] : cases) {
        EXPECT_EQ(formatted.toStdString(), expected);
    }
}
