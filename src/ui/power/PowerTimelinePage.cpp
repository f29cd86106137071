#include "ui/power/PowerTimelinePage.h"

#include <QFrame>
#include <QScrollArea>
#include <QVBoxLayout>

#include "platform/Clock.h"
#include "power/BatteryPowerMonitor.h"
#include "ui/ShownRefresh.h"
#include "ui/power/EventLaneTimelineView.h"
#include "ui/power/KindFilterBar.h"
#include "ui/power/LidStateTimelineView.h"
#include "ui/power/PowerViewState.h"
#include "ui/power/UsageSessionsView.h"
#include "ui/power/WattlogEventRow.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

// A card around `content` and whatever else `layout` gets later.
QVBoxLayout* cardAround(QWidget* content, const QString& name, QVBoxLayout* column,
                        QWidget* parent) {
    QFrame* frame = card(name, parent);
    auto* inside = new QVBoxLayout(frame);
    inside->setContentsMargins(4, 6, 4, 6);
    inside->setSpacing(4);
    inside->addWidget(content);
    column->addWidget(frame);
    return inside;
}

}  // namespace

PowerTimelinePage::PowerTimelinePage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                     QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerTimelinePage"));
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    outer->addWidget(scroll);
    auto* content = new QWidget(scroll);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 4, 4, 4);
    column->setSpacing(10);

    m_filterBar = new KindFilterBar(m_state, content);
    column->addWidget(m_filterBar);
    m_timeline = new EventLaneTimelineView(content);
    QVBoxLayout* timelineCard = cardAround(m_timeline, QStringLiteral("timeline"), column, content);
    m_selectedSlot = new QWidget(content);
    auto* slotLayout = new QVBoxLayout(m_selectedSlot);
    slotLayout->setContentsMargins(0, 0, 0, 0);
    timelineCard->addWidget(m_selectedSlot);
    m_lid = new LidStateTimelineView(content);
    cardAround(m_lid, QStringLiteral("lid"), column, content);
    m_sessions = new UsageSessionsView(content);
    cardAround(m_sessions, QStringLiteral("sessions"), column, content);
    column->addStretch(1);
    scroll->setWidget(content);

    connect(m_timeline, &EventLaneTimelineView::eventClicked, &m_state,
            [this](const QUuid& id) { m_state.setSelectedEventID(id); });

    m_timelineRefresh = new ShownRefresh(this, [this] { refreshTimeline(); });
    m_historyRefresh = new ShownRefresh(this, [this] { refreshHistory(); });
    for (auto signal :
         {&PowerViewState::visibleKindsChanged, &PowerViewState::selectedEventIDChanged}) {
        connect(&m_state, signal, m_timelineRefresh, &ShownRefresh::request);
    }
    connect(&m_monitor, &BatteryPowerMonitor::powerEventsChanged, m_timelineRefresh,
            &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::powerEventsChanged, m_historyRefresh,
            &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::derivedDataChanged, m_historyRefresh,
            &ShownRefresh::request);
    refreshTimeline();
    refreshHistory();
}

void PowerTimelinePage::refreshTimeline() {
    const QList<WattlogEvent>& events = m_monitor.powerEvents();
    m_timeline->setEvents(events, m_state.visibleKinds(), m_state.selectedEventID());

    const std::optional<QUuid>& selected = m_state.selectedEventID();
    if (m_selectedRow != nullptr && selected && m_selectedRow->wattlogEvent().id == *selected) {
        return;
    }
    clearLayout(m_selectedSlot);
    m_selectedRow = nullptr;
    if (!selected) {
        return;
    }
    for (const WattlogEvent& event : events) {
        if (event.id == *selected) {
            m_selectedRow = new WattlogEventRow(event, false, m_selectedSlot);
            m_selectedSlot->layout()->addWidget(m_selectedRow);
            break;
        }
    }
}

void PowerTimelinePage::refreshHistory() {
    m_lid->setEvents(m_monitor.powerEvents());
    const WattlogDerivedData& derived = m_monitor.derivedData();
    m_sessions->setSessions(derived.usageSessions, derived.stats.averageSessionLength,
                            m_monitor.clock().now());
}

}  // namespace zelvar
