#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

#include "power/BatteryPowerSnapshot.h"
#include "power/WattlogDerivedData.h"
#include "power/WattlogEvent.h"

class QGridLayout;
class QLabel;
class QStackedWidget;

namespace zelvar {

class BatteryPowerMonitor;
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
    struct Card {
        QString title;
        QString value;
        QString symbol;
        QColor color;
        bool operator==(const Card&) const = default;
    };
    // A grid of cards and what it shows: a card whose figure changes is updated in place, one
    // whose title, symbol or colour changes is replaced alone.
    struct Grid {
        QWidget* widget = nullptr;
        QList<Card> shown;
        QList<PowerMetricCard*> cards;
    };
    static void updateGrid(Grid& grid, const QList<Card>& cards);

    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
    Grid m_metrics;
    QWidget* m_healthSection;
    Grid m_health;
    QLabel* m_eventsCaption;
    QStackedWidget* m_eventsStack;
    QWidget* m_events;
    QList<WattlogEventRow*> m_eventRows;
};

}  // namespace zelvar
