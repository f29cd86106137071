#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

#include "power/BatteryPowerSnapshot.h"
#include "power/WattlogDerivedData.h"
#include "power/WattlogEvent.h"

class QLabel;
class QStackedWidget;

namespace zelvar {

class BatteryPowerMonitor;
class MetricCardGrid;
class PowerMetricCard;
class PowerViewState;
class WattlogEventRow;

// The Power tab's Overview subtab: the history's figures as cards, the system's failures when
// there were any, and the newest events.
class PowerOverviewPage final : public QWidget {
    Q_OBJECT

public:
    static constexpr int kRecentEvents = 20;

    PowerOverviewPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                      QWidget* parent = nullptr);

    // What the page shows, given directly: the monitor's values pass through here.
    void showMetrics(const BatteryPowerSnapshot& snapshot, const WattlogDerivedData& derived);
    void showEvents(const QList<WattlogEvent>& events);

    QList<PowerMetricCard*> metricCards() const;
    bool isHealthShown() const;
    QList<PowerMetricCard*> healthCards() const;
    QString recentEventsCaption() const;
    QList<WattlogEventRow*> recentEventRows() const;

private:
    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
    MetricCardGrid* m_metrics;
    QWidget* m_healthSection;
    MetricCardGrid* m_health;
    QLabel* m_eventsCaption;
    QStackedWidget* m_eventsStack;
    QWidget* m_events;
    QList<WattlogEventRow*> m_eventRows;
};

}  // namespace zelvar
