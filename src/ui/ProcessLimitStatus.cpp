#include "ui/ProcessLimitStatus.h"

#include <cmath>

#include "config/ConfigManager.h"
#include "process/ProcessInfo.h"

namespace zelvar {

ProcessLimitStatus ProcessLimitStatus::of(const ConfigManager& config, const ProcessInfo& process) {
    if (config.isWhitelisted(process.name)) {
        return {Kind::Whitelisted, 0.0};
    }
    const std::optional<ProcessLimit> limit = config.limitForProcess(process.name);
    if (!limit) {
        return {};
    }
    return {limit->limitMB < process.memoryMB ? Kind::OverLimit : Kind::WithinLimit,
            limit->limitMB};
}

QString ProcessLimitStatus::text() const {
    switch (kind) {
        case Kind::Whitelisted:
            return QStringLiteral("Whitelisted");
        case Kind::OverLimit:
            return QStringLiteral("Over Limit");
        case Kind::WithinLimit:
            return limitText(limitMB);
        case Kind::None:
            break;
    }
    return {};
}

QString ProcessLimitStatus::limitText(double limitMB) {
    return QString::number(static_cast<qint64>(std::trunc(limitMB))) + QStringLiteral("MB");
}

}  // namespace zelvar
