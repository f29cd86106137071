#pragma once

#include <QDateTime>
#include <optional>

#include "platform/BatteryRegistry.h"
#include "platform/InterfaceCounters.h"
#include "platform/SystemLoadSource.h"
#include "power/WattlogCorrelationSample.h"

namespace zelvar {

class JsonlFile;
class NetworkNameSource;

// The correlation sample file: every pass, the system's load beside the power figures. CPU
// shares, disk and network rates come from the change of the counters since the previous
// pass, so the first pass has none of them. Open and visible applications stay absent: the
// daemon has no display connection.
class CorrelationSampler {
public:
    static constexpr qint64 kCapBytes = 32 * 1024 * 1024;

    struct Sources {
        SystemLoadSource& load;
        InterfaceCounters& interfaces;
        NetworkNameSource& networkName;
    };
    explicit CorrelationSampler(Sources sources) : m_sources(sources) {}

    WattlogCorrelationSample sample(const std::optional<BatteryReading>& battery,
                                    const QDateTime& now);
    void sampleInto(JsonlFile& file, const std::optional<BatteryReading>& battery,
                    const QDateTime& now);
    // The memory in use, in percent, of the latest pass; none before one could read it.
    std::optional<double> memoryUsedPercent() const { return m_memoryUsedPercent; }

    // 0 below 60 °C, 1 below 75, 2 below 90, 3 from there: the steps a fan curve or a throttle
    // usually takes.
    static qint64 thermalLevel(qint64 milliC);

private:
    Sources m_sources;
    std::optional<QDateTime> m_previousAt;
    std::optional<SystemLoadReading> m_previousLoad;
    std::optional<QList<InterfaceCounter>> m_previousInterfaces;
    std::optional<double> m_memoryUsedPercent;
};

}  // namespace zelvar
