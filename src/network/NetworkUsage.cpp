#include "network/NetworkUsage.h"

#include <cstdlib>

namespace zelvar {

quint64 CachedAppUsage::totalBytes() const {
    if (receivedBytes > std::numeric_limits<quint64>::max() - sentBytes) {
        qFatal("CachedAppUsage: total of %s overflows", qPrintable(name));
    }
    return receivedBytes + sentBytes;
}

QString appUsageModeRawValue(AppUsageMode mode) {
    return mode == AppUsageMode::daily ? QStringLiteral("Daily") : QStringLiteral("Current");
}

std::optional<AppUsageMode> appUsageModeFromRawValue(const QString& rawValue) {
    if (rawValue == u"Current") {
        return AppUsageMode::current;
    }
    if (rawValue == u"Daily") {
        return AppUsageMode::daily;
    }
    return std::nullopt;
}

}  // namespace zelvar
