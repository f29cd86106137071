#include <QLocale>
#include <limits>

#include "network/ByteFormatter.h"
#include "support/Testing.h"

TEST(ByteFormatterTest, StepsByThousandsWithThreeNumberFormatsWhateverTheLocale) {
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));  // a decimal comma
    const QStringList formatted = {
        ByteFormatter::bytes(0),
        ByteFormatter::bytes(1000),
        ByteFormatter::bytes(9999),
        ByteFormatter::bytes(12250),  // an exact tie rounds to even, as printf does
        ByteFormatter::bytes(99999),
        ByteFormatter::bytes(100000),
        ByteFormatter::bytes(999999),
        ByteFormatter::bytes(1000000000),
        ByteFormatter::bytes(std::numeric_limits<quint64>::max()),
        ByteFormatter::signedBytes(-1500),
        ByteFormatter::signedBytes(0),
        ByteFormatter::signedBytes(std::numeric_limits<qint64>::min()),
        ByteFormatter::rate(2.5),
        ByteFormatter::rate(3.5),
        ByteFormatter::rate(2000000.0)};
    QLocale::setDefault(previous);
    EXPECT_EQ(formatted, (QStringList{"0B", "1.00KB", "10.00KB", "12.2KB", "100.0KB", "100KB",
                                      "1000KB", "1.00GB", "18446744TB", "-1.50KB", "0B",
                                      "-9223372TB", "2B/s", "4B/s", "2.00MB/s"}));
}
