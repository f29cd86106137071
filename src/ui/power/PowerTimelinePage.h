#pragma once

#include <QWidget>

namespace zelvar {

class BatteryPowerMonitor;
class EventLaneTimelineView;
class KindFilterBar;
class LidStateTimelineView;
class PowerViewState;
class ShownRefresh;
class UsageSessionsView;
class WattlogEventRow;

// The Power tab's Timeline subtab: the kind filter, the event lanes with the selected event's
// row below them, the lid's states and the usage sessions, in one scrolling column.
class PowerTimelinePage final : public QWidget {
    Q_OBJECT

public:
    PowerTimelinePage(BatteryPowerMonitor& monitor, PowerViewState& state,
                      QWidget* parent = nullptr);

    KindFilterBar* filterBar() const { return m_filterBar; }
    EventLaneTimelineView* timeline() const { return m_timeline; }
    LidStateTimelineView* lidTimeline() const { return m_lid; }
    UsageSessionsView* sessions() const { return m_sessions; }
    // The selected event's row, or null while none is selected or it isn't among the events.
    WattlogEventRow* selectedRow() const { return m_selectedRow; }

private:
    void refreshTimeline();
    void refreshHistory();

    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
    KindFilterBar* m_filterBar = nullptr;
    EventLaneTimelineView* m_timeline = nullptr;
    QWidget* m_selectedSlot = nullptr;
    WattlogEventRow* m_selectedRow = nullptr;
    LidStateTimelineView* m_lid = nullptr;
    UsageSessionsView* m_sessions = nullptr;
    ShownRefresh* m_timelineRefresh = nullptr;
    ShownRefresh* m_historyRefresh = nullptr;
};

}  // namespace zelvar
