#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "app/report/ReportKind.h"
#include "power/BatteryPowerSnapshot.h"
#include "power/WattlogBatterySample.h"
#include "power/WattlogCorrelationSample.h"

namespace zelvar {

// `zelvar2 report power`: one refresh of the power monitor: the battery snapshot with its
// texts and figures, and the newest of the daemon's battery and correlation samples.
class PowerReport {
public:
    static ReportKind kind();

    struct Snapshot {
        BatteryPowerSnapshot battery;
        QString menuPowerRateText;  // as the menu bar shows it, samples considered
        int batterySampleCount = 0;
        int correlationSampleCount = 0;
        std::optional<WattlogBatterySample> newestBatterySample;
        std::optional<WattlogCorrelationSample> newestCorrelationSample;
    };

    // Runs the monitor until its first refresh has landed.
    static Snapshot sample(Monitors& monitors);

    static QString formatText(const Snapshot& snapshot);
    static QByteArray formatJson(const Snapshot& snapshot);
};

}  // namespace zelvar
