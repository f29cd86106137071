#include "ui/power/PowerCorrelationPage.h"

#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

PowerCorrelationPage::PowerCorrelationPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                           QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerCorrelationPage"));
    new QVBoxLayout(this);
}

}  // namespace zelvar
