// Cost on the main thread of the Power tab's busiest views.
//
// Charts: a full repaint of the event lanes with 800 events and of the power-against-CPU plot
// with 1,200 points, rendered into an image. Target: under 16 ms each. The lanes also at
// 100,000 events, a long history: the Timeline subtab hands them every event.
//
// Events subtab: one refresh of the page (filter, newest first, the model replaced, the rows
// laid out, the visible rows painted) at 800 and 20,000 events, and a page of scrolling through
// 20,000. Target: under 5 ms per refresh at 800.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListView>
#include <QPainter>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTemporaryDir>
#include <algorithm>

#include "platform/null/NullBatteryRegistry.h"
#include "platform/null/NullClock.h"
#include "platform/null/NullCommandRunner.h"
#include "platform/null/NullPowerLogSource.h"
#include "platform/null/NullScheduler.h"
#include "power/BatteryPowerMonitor.h"
#include "ui/power/CorrelationScatterView.h"
#include "ui/power/EventLaneTimelineView.h"
#include "ui/power/PowerEventListModel.h"
#include "ui/power/PowerEventsPage.h"
#include "ui/power/PowerViewState.h"

using namespace zelvar;

namespace {

QList<WattlogEvent> history(int count) {
    QRandomGenerator random(count);
    const QList<WattlogEventKind>& kinds = WattlogEventKinds::all();
    const QDateTime start(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
    QList<WattlogEvent> events;
    for (int i = 0; i < count; ++i) {
        WattlogEvent event;
        event.id = WattlogEvent::newId();
        event.kind = kinds.at(random.bounded(int(kinds.size())));
        event.timestamp = start.addSecs(qint64(i) * 600);
        event.detail = QStringLiteral("Event %1 of the history").arg(i);
        event.rawLine = QStringLiteral("2026-01-01 00:00:00 +0000 Line %1").arg(i);
        if (i % 3 == 0) {
            event.batteryPercent = int(random.bounded(100));
            event.powerSource = i % 2 ? WattlogPowerSource::AC : WattlogPowerSource::Battery;
        }
        events.append(event);
    }
    return events;
}

template <typename View>
void renderRepeatedly(benchmark::State& state, View& view) {
    view.resize(1100, std::max(view.sizeHint().height(), 300));
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        view.render(&image);
    }
}

void BM_EventLaneTimelinePaint(benchmark::State& state) {
    EventLaneTimelineView view;
    const QList<WattlogEventKind>& kinds = WattlogEventKinds::all();
    view.setEvents(history(int(state.range(0))), {kinds.cbegin(), kinds.cend()}, std::nullopt);
    renderRepeatedly(state, view);
}
BENCHMARK(BM_EventLaneTimelinePaint)->Arg(800)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_CorrelationScatterPaint(benchmark::State& state) {
    QRandomGenerator random(7);
    const QStringList flows{"charge", "discharge", "ac_idle", ""};
    QList<WattlogCorrelationSample> samples;
    for (int i = 0; i < state.range(0); ++i) {
        WattlogCorrelationSample sample;
        sample.cpuUtil = random.bounded(100.0);
        sample.batteryWatts = random.bounded(30.0);
        sample.powerFlow = flows.at(random.bounded(int(flows.size())));
        samples.append(sample);
    }
    CorrelationScatterView view;
    view.setSamples(samples);
    renderRepeatedly(state, view);
}
BENCHMARK(BM_CorrelationScatterPaint)->Arg(1200)->Unit(benchmark::kMillisecond);

// The Events subtab on screen over a monitor whose history is `events`, read from the cache
// file as the monitor reads it (every other source is a Null adapter).
class EventsPageOnScreen {
public:
    explicit EventsPageOnScreen(const QList<WattlogEvent>& events) {
        QJsonArray array;
        for (const WattlogEvent& event : events) {
            array.append(event.toJson());
        }
        QFile cache(m_dir.filePath("cache.json"));
        cache.open(QIODevice::WriteOnly);
        cache.write(QJsonDocument(QJsonObject{{"events", array}}).toJson(QJsonDocument::Compact));
        cache.close();
        m_monitor.reloadWattlogHistory();
        while (m_monitor.isHistoryLoading()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        }
        m_page.resize(1000, 700);
        m_page.show();
        QCoreApplication::processEvents();
    }
    PowerEventsPage& page() { return m_page; }

private:
    QTemporaryDir m_dir;
    NullBatteryRegistry m_battery;
    NullClock m_clock;
    NullScheduler m_scheduler;
    NullCommandRunner m_commands;
    NullPowerLogSource m_powerLog;
    BatteryPowerMonitor m_monitor{
        {m_battery, m_clock, m_scheduler, m_commands, m_dir.filePath("battery.jsonl"),
         m_dir.filePath("correlation.jsonl"), m_powerLog, m_dir.filePath("cache.json")}};
    PowerViewState m_state;
    PowerEventsPage m_page{m_monitor, m_state};
};

void BM_EventsPageRefresh(benchmark::State& state) {
    EventsPageOnScreen screen(history(int(state.range(0))));
    if (screen.page().model().rowCount() != state.range(0)) {
        state.SkipWithError("the history did not load");
        return;
    }
    QScrollBar* bar = screen.page().list()->verticalScrollBar();
    bar->setValue(bar->maximum() / 2);
    for (auto _ : state) {
        screen.page().refresh();
        QCoreApplication::processEvents();
    }
}
BENCHMARK(BM_EventsPageRefresh)->Arg(800)->Arg(20000)->Unit(benchmark::kMillisecond);

// A page down through the list and its repaint, new rows' pictures included.
void BM_EventsPageScroll(benchmark::State& state) {
    EventsPageOnScreen screen(history(int(state.range(0))));
    QListView* list = screen.page().list();
    QScrollBar* bar = list->verticalScrollBar();
    for (auto _ : state) {
        bar->setValue(bar->value() >= bar->maximum() ? 0 : bar->value() + bar->pageStep());
        list->viewport()->repaint();
    }
}
BENCHMARK(BM_EventsPageScroll)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
