#include "network/ByteFormatter.h"

#include <array>

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
    // QString::number always writes a dot, whatever the user's locale, as printf in the
    // C locale would.
    return QString::number(value, 'f', decimals) + QLatin1String(kUnits[index]) +
           QLatin1String(suffix);
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
