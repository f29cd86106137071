#pragma once

#include <QList>
#include <QWidget>

namespace zelvar {

class BatteryPowerMonitor;
class CorrelationScatterView;
class MetricCardGrid;
class PowerMetricCard;
class PowerViewState;
class ShownRefresh;

// The Power tab's Correlation subtab: the newest daemon sample's figures as cards, and every
// recent sample's power against its CPU use.
class PowerCorrelationPage final : public QWidget {
    Q_OBJECT

public:
    PowerCorrelationPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                         QWidget* parent = nullptr);

    QList<PowerMetricCard*> cards() const;
    CorrelationScatterView* scatter() const { return m_scatter; }

private:
    void refresh();

    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
    MetricCardGrid* m_cards = nullptr;
    CorrelationScatterView* m_scatter = nullptr;
    ShownRefresh* m_refresh = nullptr;
};

}  // namespace zelvar
