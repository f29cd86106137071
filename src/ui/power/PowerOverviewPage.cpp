#include "ui/power/PowerOverviewPage.h"

#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

PowerOverviewPage::PowerOverviewPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                     QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerOverviewPage"));
    new QVBoxLayout(this);
}

}  // namespace zelvar
