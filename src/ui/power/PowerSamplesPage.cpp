#include "ui/power/PowerSamplesPage.h"

#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

PowerSamplesPage::PowerSamplesPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                   QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerSamplesPage"));
    new QVBoxLayout(this);
}

}  // namespace zelvar
