#pragma once

#include <QString>
#include <QStringList>

#include "power/WattlogBatterySample.h"
#include "power/WattlogCorrelationSample.h"

namespace zelvar {

// The daemon's samples as the Samples subtab's table cells; "--" where a value is missing.

// Time, %, Power, Source, Temp, Cycles.
QStringList batterySampleCells(const WattlogBatterySample& sample);
// Time, Power, CPU, RAM, Proc, Net, Flow.
QStringList correlationSampleCells(const WattlogCorrelationSample& sample);
// The rates in KB/s when the daemon measured both, else the two byte counts, else "--".
QString correlationNetText(const WattlogCorrelationSample& sample);

}  // namespace zelvar
