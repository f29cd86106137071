#pragma once

#include <QWidget>

class QLabel;
class QListView;

namespace zelvar {

class BatteryPowerMonitor;
class KindFilterBar;
class PowerEventListModel;
class PowerViewState;
class SearchBar;
class ShownRefresh;
class WattlogEventDelegate;

// The Power tab's Events subtab: every event that the kind filter and the filter text let
// through, newest first. A click selects an event and shows its raw line; a click on the
// selected one clears the selection.
class PowerEventsPage final : public QWidget {
    Q_OBJECT

public:
    PowerEventsPage(BatteryPowerMonitor& monitor, PowerViewState& state, QWidget* parent = nullptr);

    SearchBar* searchBar() const { return m_search; }
    KindFilterBar* filterBar() const { return m_filterBar; }
    QListView* list() const { return m_list; }
    const PowerEventListModel& model() const { return *m_model; }
    // "<N> visible".
    QString subtitle() const;

    // Filters the monitor's events anew and shows them; keeps the list's scroll position.
    void refresh();

protected:
    void changeEvent(QEvent* event) override;

private:
    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
    SearchBar* m_search = nullptr;
    KindFilterBar* m_filterBar = nullptr;
    QLabel* m_count = nullptr;
    QListView* m_list = nullptr;
    PowerEventListModel* m_model = nullptr;
    WattlogEventDelegate* m_delegate = nullptr;
    ShownRefresh* m_refresh = nullptr;
};

}  // namespace zelvar
