#pragma once

#include <QList>
#include <QWidget>

#include "power/WattlogEvent.h"

namespace zelvar {

class BatteryLevelChart;
class BatteryPowerMonitor;
class BatteryRecommendationCard;
class LivePowerDetailCard;
class PowerSourceDistributionView;
class PowerViewState;

// The Power tab's Battery subtab: the live reading, the advice, the level chart and the split
// between AC and battery, top to bottom.
class PowerBatteryPage final : public QWidget {
    Q_OBJECT

public:
    PowerBatteryPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                     QWidget* parent = nullptr);

    LivePowerDetailCard* liveCard() const { return m_live; }
    BatteryRecommendationCard* recommendationCard() const { return m_recommendation; }
    BatteryLevelChart* chart() const { return m_chart; }
    PowerSourceDistributionView* distribution() const { return m_distribution; }

private:
    void refreshReading();
    void refreshHistory();

    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
    QList<WattlogEvent> m_acEvents;
    LivePowerDetailCard* m_live;
    BatteryRecommendationCard* m_recommendation;
    BatteryLevelChart* m_chart;
    PowerSourceDistributionView* m_distribution;
};

}  // namespace zelvar
