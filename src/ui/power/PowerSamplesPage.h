#pragma once

#include <QWidget>

namespace zelvar {

class BatteryPowerMonitor;
class PowerViewState;

// The Power tab's Samples subtab.
class PowerSamplesPage final : public QWidget {
    Q_OBJECT

public:
    PowerSamplesPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                     QWidget* parent = nullptr);

private:
    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
};

}  // namespace zelvar
