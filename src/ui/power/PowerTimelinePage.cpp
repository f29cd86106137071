#include "ui/power/PowerTimelinePage.h"

#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

PowerTimelinePage::PowerTimelinePage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                     QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerTimelinePage"));
    new QVBoxLayout(this);
}

}  // namespace zelvar
