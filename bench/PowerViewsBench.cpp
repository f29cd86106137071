// Cost on the main thread of the Power tab's busiest views.
//
// Charts: a full repaint of the event lanes with 800 events and of the power-against-CPU plot
// with 1,200 points, rendered into an image. Target: under 16 ms each. The lanes also at
// 100,000 events, a long history: the Timeline subtab hands them every event.
//
// Events list: one refresh as the Events subtab makes it (filter, newest first, the model
// replaced, the rows laid out, the visible rows painted) at 800 events, and a page of scrolling
// through 20,000. Target: under 5 ms per refresh.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QImage>
#include <QListView>
#include <QPainter>
#include <QRandomGenerator>
#include <QScrollBar>
#include <algorithm>

#include "ui/power/CorrelationScatterView.h"
#include "ui/power/EventLaneTimelineView.h"
#include "ui/power/PowerEventListModel.h"
#include "ui/power/PowerViewState.h"
#include "ui/power/WattlogEventDelegate.h"

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

// The list of the Events subtab on screen, as the page builds it.
struct EventList {
    EventList() {
        view.setModel(&model);
        view.setItemDelegate(new WattlogEventDelegate(model, view));
        view.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        view.setResizeMode(QListView::Adjust);
        view.resize(1000, 600);
        view.show();
    }
    void refresh(const QList<WattlogEvent>& events) {
        QList<WattlogEvent> shown = filter.filteredEvents(events);
        std::reverse(shown.begin(), shown.end());
        const int scroll = view.verticalScrollBar()->value();
        model.setEvents(std::move(shown));
        view.doItemsLayout();
        view.verticalScrollBar()->setValue(scroll);
        QCoreApplication::processEvents();
    }

    PowerViewState filter;
    PowerEventListModel model;
    QListView view;
};

void BM_EventsListRefresh(benchmark::State& state) {
    const QList<WattlogEvent> events = history(int(state.range(0)));
    EventList list;
    list.refresh(events);
    list.view.verticalScrollBar()->setValue(list.view.verticalScrollBar()->maximum() / 2);
    list.refresh(events);
    for (auto _ : state) {
        list.refresh(events);
    }
}
BENCHMARK(BM_EventsListRefresh)->Arg(800)->Arg(20000)->Unit(benchmark::kMillisecond);

// A page down through the list and its repaint, new rows' pictures included.
void BM_EventsListScroll(benchmark::State& state) {
    const QList<WattlogEvent> events = history(int(state.range(0)));
    EventList list;
    list.refresh(events);
    QScrollBar* bar = list.view.verticalScrollBar();
    for (auto _ : state) {
        bar->setValue(bar->value() >= bar->maximum() ? 0 : bar->value() + bar->pageStep());
        list.view.viewport()->repaint();
    }
}
BENCHMARK(BM_EventsListScroll)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
