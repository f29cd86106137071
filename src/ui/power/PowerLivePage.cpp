#include "ui/power/PowerLivePage.h"

#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

PowerLivePage::PowerLivePage(BatteryPowerMonitor& monitor, PowerViewState& state, QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerLivePage"));
    new QVBoxLayout(this);
}

}  // namespace zelvar
