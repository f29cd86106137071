#include "daemon/CorrelationSampler.h"

#include <cmath>

#include "daemon/JsonlFile.h"
#include "network/NetworkName.h"
#include "platform/Clock.h"
#include "platform/NetworkNameSource.h"
#include "power/BatteryPowerSnapshot.h"

namespace zelvar {

namespace {

quint64 growth(quint64 now, quint64 before) {
    return now >= before ? now - before : 0;
}

}  // namespace

qint64 CorrelationSampler::thermalLevel(qint64 milliC) {
    return milliC < 60000 ? 0 : milliC < 75000 ? 1 : milliC < 90000 ? 2 : 3;
}

WattlogCorrelationSample CorrelationSampler::sample(const std::optional<BatteryReading>& battery,
                                                    const QDateTime& now) {
    WattlogCorrelationSample s;
    s.ts = static_cast<double>(now.toMSecsSinceEpoch()) / 1000.0;
    s.iso = now.toUTC().toString(Qt::ISODate);
    const SystemLoadReading load = m_sources.load.read();
    s.processCount = load.processCount;
    const double elapsed = m_previousAt ? secondsBetween(*m_previousAt, now) : 0.0;
    if (load.cpu && m_previousLoad && m_previousLoad->cpu) {
        const CpuTicks& a = *m_previousLoad->cpu;
        const CpuTicks& b = *load.cpu;
        const double total = static_cast<double>(growth(b.total(), a.total()));
        if (total > 0) {
            s.cpuUser = 100.0 * static_cast<double>(growth(b.user, a.user)) / total;
            s.cpuSystem = 100.0 * static_cast<double>(growth(b.system, a.system)) / total;
            s.cpuIdle = 100.0 * static_cast<double>(growth(b.idle, a.idle)) / total;
            s.cpuUtil = std::max(0.0, 100.0 - *s.cpuIdle);
        }
    }
    m_memoryUsedPercent.reset();
    if (load.memory) {
        const MemoryFigures& m = *load.memory;
        const quint64 usedKB = m.totalKB - std::min(m.availableKB, m.totalKB);
        s.memUsedMB = static_cast<qint64>(usedKB / 1024);
        s.ramTotalMB = static_cast<qint64>(m.totalKB / 1024);
        s.ramUsedPercent = 100.0 * static_cast<double>(usedKB) / static_cast<double>(m.totalKB);
        s.swapUsedMB =
            static_cast<qint64>((m.swapTotalKB - std::min(m.swapFreeKB, m.swapTotalKB)) / 1024);
        m_memoryUsedPercent = s.ramUsedPercent;
    }
    s.load1m = load.load1m;
    if (elapsed > 0 && m_previousLoad) {
        if (load.diskReadBytes && m_previousLoad->diskReadBytes) {
            s.diskReadKBPS =
                static_cast<double>(growth(*load.diskReadBytes, *m_previousLoad->diskReadBytes)) /
                1024.0 / elapsed;
        }
        if (load.diskWrittenBytes && m_previousLoad->diskWrittenBytes) {
            s.diskWriteKBPS = static_cast<double>(growth(*load.diskWrittenBytes,
                                                         *m_previousLoad->diskWrittenBytes)) /
                              1024.0 / elapsed;
        }
    }
    if (load.backlightBrightness && load.backlightMaximum && *load.backlightMaximum > 0) {
        s.displayBrightnessPercent = 100.0 * static_cast<double>(*load.backlightBrightness) /
                                     static_cast<double>(*load.backlightMaximum);
    }
    if (load.hottestZoneMilliC) {
        s.thermalLevel = thermalLevel(*load.hottestZoneMilliC);
    }

    // The physical interface that moved most since the previous pass names the traffic.
    const auto interfaces = m_sources.interfaces.read();
    if (interfaces && m_previousInterfaces && elapsed > 0) {
        quint64 received = 0;
        quint64 sent = 0;
        quint64 busiest = 0;
        for (const InterfaceCounter& counter : *interfaces) {
            if (!counter.physical) {
                continue;
            }
            for (const InterfaceCounter& before : *m_previousInterfaces) {
                if (before.name != counter.name) {
                    continue;
                }
                const quint64 in = growth(counter.receivedBytes, before.receivedBytes);
                const quint64 out = growth(counter.sentBytes, before.sentBytes);
                received += in;
                sent += out;
                if (!s.netInterface || in + out > busiest) {
                    s.netInterface = counter.name;
                    busiest = in + out;
                }
            }
        }
        s.netInDelta = static_cast<qint64>(received);
        s.netOutDelta = static_cast<qint64>(sent);
        s.netInKBPS = static_cast<double>(received) / 1024.0 / elapsed;
        s.netOutKBPS = static_cast<double>(sent) / 1024.0 / elapsed;
    }
    const QString network = NetworkName::ssid(m_sources.networkName.read());
    s.wifiConnected = !network.isEmpty();
    if (!network.isEmpty()) {
        s.wifiSSID = network;
    }

    if (battery) {
        const BatteryPowerSnapshot snapshot = BatteryPowerSnapshot::fromReading(*battery, now);
        s.batteryWatts = snapshot.powerRateWatts();
        s.batteryPercent = battery->percent;
        s.source = battery->isExternalConnected ? QStringLiteral("AC") : QStringLiteral("Battery");
        s.isCharging = battery->isCharging;
        s.amperageMA = battery->amperageMA;
        s.voltageV = snapshot.voltageVolts();
        s.batteryTemperatureC = battery->temperatureC;
        s.powerSignedPercent = snapshot.signedAmperagePercentText();
        if (const auto percent = snapshot.amperagePercent()) {
            s.powerLoadPercent = static_cast<double>(*percent);
        }
    } else {
        s.source = QStringLiteral("AC");
    }
    // The flow is the one the reader works out from the other fields, so that writer and
    // reader can't disagree about it.
    s.powerFlow = WattlogCorrelationSample::decode(s.encode())->powerFlow;

    m_previousAt = now;
    m_previousLoad = load;
    if (interfaces) {
        m_previousInterfaces = interfaces;
    }
    return s;
}

void CorrelationSampler::sampleInto(JsonlFile& file, const std::optional<BatteryReading>& battery,
                                    const QDateTime& now) {
    file.append(sample(battery, now).encode());
}

}  // namespace zelvar
