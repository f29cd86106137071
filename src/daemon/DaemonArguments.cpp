#include "daemon/DaemonArguments.h"

#include <cmath>

namespace zelvar {

namespace {

std::optional<double> numberIn(const QString& text, double low, double high) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && std::isfinite(value) && value >= low && value <= high ? std::optional(value)
                                                                       : std::nullopt;
}

}  // namespace

ParsedDaemonArguments DaemonArguments::parse(const QStringList& arguments) {
    DaemonArguments result;
    bool haveRam = false;
    bool haveInterval = false;
    bool haveLog = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& name = arguments[i];
        bool* seen = name == QLatin1String("--ram-threshold") ? &haveRam
                     : name == QLatin1String("--interval")    ? &haveInterval
                     : name == QLatin1String("--log-file")    ? &haveLog
                                                              : nullptr;
        if (!seen) {
            return {std::nullopt, QStringLiteral("unknown argument '%1'").arg(name)};
        }
        if (*seen) {
            return {std::nullopt, QStringLiteral("'%1' given twice").arg(name)};
        }
        if (i + 1 >= arguments.size()) {
            return {std::nullopt, QStringLiteral("'%1' needs a value").arg(name)};
        }
        const QString& value = arguments[++i];
        *seen = true;
        if (seen == &haveRam) {
            const auto percent = numberIn(value, 1, 100);
            if (!percent) {
                return {
                    std::nullopt,
                    QStringLiteral("'--ram-threshold' takes a percentage from 1 to 100, not '%1'")
                        .arg(value)};
            }
            result.ramThresholdPercent = *percent;
        } else if (seen == &haveInterval) {
            const auto seconds = numberIn(value, 0.1, 3600);
            if (!seconds) {
                return {std::nullopt,
                        QStringLiteral("'--interval' takes seconds from 0.1 to 3600, not '%1'")
                            .arg(value)};
            }
            result.intervalSeconds = *seconds;
        } else {
            if (value.isEmpty() || !value.startsWith(QLatin1Char('/'))) {
                return {std::nullopt,
                        QStringLiteral("'--log-file' takes an absolute path, not '%1'").arg(value)};
            }
            result.logFile = value;
        }
    }
    if (!haveLog) {
        return {std::nullopt, QStringLiteral("'--log-file' is required")};
    }
    return {result, {}};
}

QStringList DaemonArguments::toList() const {
    return {QStringLiteral("--ram-threshold"), QString::number(ramThresholdPercent),
            QStringLiteral("--interval"),      QString::number(intervalSeconds),
            QStringLiteral("--log-file"),      logFile};
}

}  // namespace zelvar
