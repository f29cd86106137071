#include "network/ByteFormatter.h"

#include <array>
#include <charconv>

namespace zelvar {
namespace {

QString format(double value, const char* suffix) {
    static constexpr std::array<const char*, 5> kUnits = {"B", "KB", "MB", "GB", "TB"};
    std::size_t index = 0;
    while (value >= 1000.0 && index < kUnits.size() - 1) {
        value /= 1000.0;
        ++index;
    }
    const int decimals = (index == 0 || value >= 100.0) ? 0 : value >= 10.0 ? 1 : 2;
    // std::to_chars writes as printf does in the C locale: a dot whatever the user's locale,
    // and an exact tie rounded to even (2.5 gives "2", 12.25 gives "12.2"), where
    // QString::number would round it up.
    char digits[400];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals)
            .ptr;
    return QLatin1String(digits, end) + QLatin1String(kUnits[index]) + QLatin1String(suffix);
}

}  // namespace

QString ByteFormatter::bytes(quint64 value) {
    return format(static_cast<double>(value), "");
}

QString ByteFormatter::signedBytes(qint64 value) {
    // The magnitude as a double, so that the smallest qint64 has one too.
    const double magnitude = value < 0 ? -static_cast<double>(value) : static_cast<double>(value);
    const QString text = format(magnitude, "");
    return value < 0 ? QLatin1Char('-') + text : text;
}

QString ByteFormatter::rate(double bytesPerSecond) {
    return format(bytesPerSecond, "/s");
}

}  // namespace zelvar
