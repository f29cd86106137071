#include "power/WattlogDerivedData.h"

#include <QRegularExpression>
#include <algorithm>
#include <vector>

namespace zelvar {
namespace {

using K = WattlogEventKind;

double seconds(qint64 fromMs, qint64 toMs) {
    return static_cast<double>(toMs - fromMs) / 1000.0;
}

}  // namespace

double WattlogUsageSession::duration(const QDateTime& now) const {
    return seconds(start.toMSecsSinceEpoch(), end.value_or(now).toMSecsSinceEpoch());
}

bool WattlogDerivedData::isReliableBatteryPoint(const WattlogEvent& e) {
    if (e.kind != K::BatteryLevel || !e.batteryPercent || *e.batteryPercent < 0 ||
        *e.batteryPercent > 100) {
        return false;
    }
    const QString line = e.rawLine.trimmed();
    if (line.startsWith(u'{') || line.contains(u"Cap=") || line.contains(u"mA;")) {
        return true;
    }
    if (!line.contains(u"Summary-")) {
        return true;
    }
    static const QRegularExpression summary(
        QStringLiteral("Using\\s+(AC|Batt)\\(Charge:\\s*\\d{1,3}\\)"));
    return summary.match(line).hasMatch();
}

WattlogDerivedData WattlogDerivedData::build(const QList<WattlogEvent>& events,
                                             const QDateTime& now) {
    // In order of time, ties in input order; sorted by index, so the events aren't copied.
    std::vector<qint64> ms(static_cast<std::size_t>(events.size()));
    std::vector<qsizetype> sorted(ms.size());
    for (qsizetype i = 0; i < events.size(); ++i) {
        ms[static_cast<std::size_t>(i)] = events[i].timestamp.toMSecsSinceEpoch();
        sorted[static_cast<std::size_t>(i)] = i;
    }
    std::stable_sort(sorted.begin(), sorted.end(), [&ms](qsizetype a, qsizetype b) {
        return ms[static_cast<std::size_t>(a)] < ms[static_cast<std::size_t>(b)];
    });
    WattlogDerivedData d;
    WattlogStats& s = d.stats;

    QList<WattlogBatteryPoint> points;
    for (const qsizetype i : sorted) {
        const WattlogEvent& e = events[i];
        if (isReliableBatteryPoint(e)) {
            points.append(
                {e.timestamp, *e.batteryPercent, e.powerSource == WattlogPowerSource::AC});
        }
    }
    d.batteryPoints = downsample(points, kMaxBatteryPoints);

    std::optional<QDateTime> openStart;
    for (const qsizetype i : sorted) {
        const WattlogEvent& e = events[i];
        if (e.kind == K::Sleep || e.kind == K::DisplayOff || e.kind == K::LidSleep) {
            if (openStart) {
                d.usageSessions.append({WattlogEvent::newId(), *openStart, e.timestamp});
                openStart.reset();
            }
        } else if ((e.kind == K::Wake || e.kind == K::DisplayOn) && !openStart) {
            openStart = e.timestamp;
        }
    }
    if (openStart) {
        d.usageSessions.append({WattlogEvent::newId(), *openStart, std::nullopt});
    }
    for (const WattlogUsageSession& session : d.usageSessions) {
        const double length = session.duration(now);
        s.totalAwakeTime += length;
        s.longestSession = std::max(s.longestSession, length);
    }
    if (!d.usageSessions.isEmpty()) {
        s.averageSessionLength = s.totalAwakeTime / static_cast<double>(d.usageSessions.size());
    }

    // Each sleep runs to the first wake after it. The cursor stays on a wake once used, so two
    // sleeps before one wake are both measured to it and overlap: counted twice on purpose.
    QList<qint64> wakes;
    for (const qsizetype i : sorted) {
        const WattlogEvent& e = events[i];
        if (e.kind == K::Wake) {
            wakes.append(ms[static_cast<std::size_t>(i)]);
        }
    }
    qsizetype cursor = 0;
    for (const qsizetype i : sorted) {
        const WattlogEvent& e = events[i];
        if (e.kind != K::Sleep && e.kind != K::LidSleep) {
            continue;
        }
        const qint64 at = ms[static_cast<std::size_t>(i)];
        while (cursor < wakes.size() && wakes[cursor] <= at) {
            ++cursor;
        }
        if (cursor < wakes.size()) {
            s.totalSleepTime += seconds(at, wakes[cursor]);
        }
    }

    const auto onAC = std::count_if(d.batteryPoints.begin(), d.batteryPoints.end(),
                                    [](const WattlogBatteryPoint& p) { return p.onAC; });
    const double pointCount = static_cast<double>(std::max<qsizetype>(d.batteryPoints.size(), 1));
    s.timeOnACRatio = static_cast<double>(onAC) / pointCount;
    s.timeOnBatteryRatio = static_cast<double>(d.batteryPoints.size() - onAC) / pointCount;

    bool armed = false;
    for (const WattlogBatteryPoint& p : d.batteryPoints) {
        if (!armed) {
            armed = p.percent < 20;
        } else if (p.percent > 80) {
            ++s.batteryChargeCycles;
            armed = false;
        }
    }

    QList<WattlogEvent> timeline;
    for (const qsizetype i : sorted) {
        const WattlogEvent& e = events[i];
        switch (e.kind) {
            case K::LidSleep:
                ++s.lidCloseCount;
                break;
            case K::Reboot:
                ++s.rebootCount;
                break;
            case K::KernelPanic:
                ++d.systemHealthCounts.panics;
                break;
            case K::AppCrash:
                ++d.systemHealthCounts.crashes;
                break;
            case K::AppHang:
                ++d.systemHealthCounts.hangs;
                break;
            case K::JetsamEvent:
                ++d.systemHealthCounts.jetsam;
                break;
            default:
                break;
        }
        if (WattlogEventKinds::showOnBatteryTimeline(e.kind)) {
            timeline.append(e);
        }
    }
    d.batteryTimelineEvents =
        timeline.mid(std::max<qsizetype>(0, timeline.size() - kMaxTimelineEvents));
    s.eventCount = static_cast<int>(events.size());
    return d;
}

}  // namespace zelvar
