#include "ui/power/PowerEventsPage.h"

#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

PowerEventsPage::PowerEventsPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                 QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerEventsPage"));
    new QVBoxLayout(this);
}

}  // namespace zelvar
