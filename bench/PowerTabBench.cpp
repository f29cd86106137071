// Cost on the main thread of the Power tab's busiest refreshes, on the offscreen platform: the
// battery level chart repainted at the history's caps (1,200 points, 800 events), the Samples
// tables following the daemon's newest 240 samples of each file as one more arrives, and the
// Overview following a new reading and a live poll's new event over a long event list.
//
// Targets: a chart repaint under 16 ms; a Samples or Overview refresh under 5 ms.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QImage>
#include <QTableView>
#include <QTimeZone>

#include "platform/null/NullBatteryRegistry.h"
#include "platform/null/NullClock.h"
#include "platform/null/NullCommandRunner.h"
#include "platform/null/NullPowerLogSource.h"
#include "platform/null/NullScheduler.h"
#include "power/BatteryPowerMonitor.h"
#include "ui/power/BatteryLevelChart.h"
#include "ui/power/PowerOverviewPage.h"
#include "ui/power/PowerSamplesPage.h"
#include "ui/power/PowerViewState.h"

using namespace zelvar;

namespace {

const QDateTime kStart = QDateTime::fromSecsSinceEpoch(1'750'000'000, QTimeZone::utc());

// The pages are built over a monitor that never runs; the values are handed in directly.
struct IdleMonitor {
    NullBatteryRegistry battery;
    NullClock clock;
    NullScheduler scheduler;
    NullCommandRunner commands;
    NullPowerLogSource powerLog;
    BatteryPowerMonitor monitor{{battery, clock, scheduler, commands, {}, {}, powerLog, {}}};
    PowerViewState state;
};

QList<WattlogEvent> history(int count) {
    QList<WattlogEvent> events;
    const QList<WattlogEventKind>& kinds = WattlogEventKinds::all();
    for (int i = 0; i < count; ++i) {
        WattlogEvent event;
        event.id = WattlogEvent::newId();
        event.timestamp = kStart.addSecs(qint64(i) * 300);
        event.kind = kinds.at(i % kinds.size());
        event.detail = QStringLiteral("Event %1 of the history").arg(i);
        event.batteryPercent = i % 100;
        event.rawLine = QStringLiteral("2025-06-15 12:00:00 +0000 Sleep  Entering Sleep state");
        events.append(event);
    }
    return events;
}

void BM_BatteryLevelChartRepaint(benchmark::State& state) {
    QList<WattlogBatteryPoint> points;
    for (int i = 0; i < WattlogDerivedData::kMaxBatteryPoints; ++i) {
        points.append({kStart.addSecs(qint64(i) * 360), 100 - (i % 90), (i / 60) % 2 == 0});
    }
    BatteryLevelChart chart;
    chart.resize(1000, 320);
    chart.setData(points, history(WattlogDerivedData::kMaxTimelineEvents));
    QImage image(chart.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        chart.render(&image);
    }
}
BENCHMARK(BM_BatteryLevelChartRepaint)->Unit(benchmark::kMillisecond);

QList<WattlogBatterySample> batterySamples(int newest) {
    QList<WattlogBatterySample> samples;
    for (int i = 0; i < 240; ++i) {
        WattlogBatterySample sample;
        sample.ts = double(newest - i) * 10;
        sample.recordedPercent = (newest - i) % 100;
        sample.recordedWatts = 7.5 + i % 7;
        sample.source = QStringLiteral("Battery");
        sample.temperature = 30.5;
        sample.cycleCount = 412;
        samples.append(sample);
    }
    return samples;
}

QList<WattlogCorrelationSample> correlationSamples(int newest) {
    QList<WattlogCorrelationSample> samples;
    for (int i = 0; i < 240; ++i) {
        WattlogCorrelationSample sample;
        sample.ts = double(newest - i) * 10;
        sample.batteryWatts = 9.25;
        sample.cpuUtil = (newest - i) % 100;
        sample.ramUsedPercent = 61;
        sample.processCount = 380;
        sample.netInDelta = 150000 + i;
        sample.netOutDelta = 2300;
        sample.powerFlow = QStringLiteral("discharge");
        samples.append(sample);
    }
    return samples;
}

void BM_PowerSamplesRefresh(benchmark::State& state) {
    IdleMonitor idle;
    PowerSamplesPage page(idle.monitor, idle.state);
    page.resize(1000, 700);
    page.show();
    int newest = 1000;
    page.showBatterySamples(batterySamples(newest));
    page.showCorrelationSamples(correlationSamples(newest));
    page.batteryTable()->selectRow(4);
    QCoreApplication::processEvents();
    for (auto _ : state) {
        state.PauseTiming();
        ++newest;
        const QList<WattlogBatterySample> battery = batterySamples(newest);
        const QList<WattlogCorrelationSample> correlation = correlationSamples(newest);
        state.ResumeTiming();
        page.showBatterySamples(battery);
        page.showCorrelationSamples(correlation);
        QCoreApplication::processEvents();
    }
}
BENCHMARK(BM_PowerSamplesRefresh)->Unit(benchmark::kMillisecond);

void BM_PowerOverviewRefresh(benchmark::State& state) {
    IdleMonitor idle;
    PowerOverviewPage page(idle.monitor, idle.state);
    page.resize(1000, 700);
    page.show();
    QList<WattlogEvent> events = history(int(state.range(0)) + 10000);
    const QList<WattlogEvent> later = events.mid(state.range(0));
    events.resize(state.range(0));
    const WattlogDerivedData derived = WattlogDerivedData::build(events, kStart.addDays(30));
    BatteryPowerSnapshot snapshot;
    snapshot.timestamp = kStart;
    snapshot.percent = 80;
    snapshot.amperageMA = -1200;
    snapshot.voltageMV = 11800;
    page.showMetrics(snapshot, derived);
    page.showEvents(events);
    QCoreApplication::processEvents();
    qsizetype next = 0;
    for (auto _ : state) {
        // A new reading changes the first card; a live poll brings one more event.
        state.PauseTiming();
        snapshot.amperageMA = *snapshot.amperageMA - 1;
        events.append(later.at(next++ % later.size()));
        state.ResumeTiming();
        page.showMetrics(snapshot, derived);
        page.showEvents(events);
        QCoreApplication::processEvents();
    }
}
BENCHMARK(BM_PowerOverviewRefresh)->Arg(5000)->Unit(benchmark::kMillisecond);

}  // namespace
