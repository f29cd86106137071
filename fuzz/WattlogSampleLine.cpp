// One line of the daemon's battery or correlation sample file, as the power monitor reads it.
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include "FuzzInput.h"
#include "power/WattlogBatterySample.h"
#include "power/WattlogCorrelationSample.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray line = zelvar::fuzz::bytes(data, size);
    const bool isObject = QJsonDocument::fromJson(line).isObject();

    const auto battery = zelvar::WattlogBatterySample::decode(line);
    zelvar::fuzz::check(battery.has_value() == isObject, "a battery sample from every object");
    if (battery) {
        static const QRegularExpression share(QStringLiteral("^(0|[+-](\\d|[1-9]\\d|100))%$"));
        zelvar::fuzz::check(share.match(battery->menuPowerRateText()).hasMatch(),
                            "a signed share of at most 100%, or 0%");
        zelvar::fuzz::check(!battery->flow().isEmpty(), "a flow");
    }

    const auto correlation = zelvar::WattlogCorrelationSample::decode(line);
    zelvar::fuzz::check(correlation.has_value() == isObject,
                        "a correlation sample from every object");
    if (correlation) {
        if (correlation->cpuUtil &&
            !QJsonDocument::fromJson(line).object().contains(QStringLiteral("cpu_util_pct"))) {
            zelvar::fuzz::check(!(*correlation->cpuUtil < 0), "a filled-in CPU share of 0 or more");
        }
    }
    return 0;
}
