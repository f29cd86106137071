#pragma once

#include <QWidget>

namespace zelvar {

class BatteryPowerMonitor;
class PowerViewState;

// The Power tab's Live subtab.
class PowerLivePage final : public QWidget {
    Q_OBJECT

public:
    PowerLivePage(BatteryPowerMonitor& monitor, PowerViewState& state, QWidget* parent = nullptr);

private:
    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
};

}  // namespace zelvar
