#include "ui/power/PowerBatteryPage.h"

#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

PowerBatteryPage::PowerBatteryPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                   QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerBatteryPage"));
    new QVBoxLayout(this);
}

}  // namespace zelvar
