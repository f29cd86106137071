#pragma once

#include <QFrame>

#include "ui/power/BatteryRecommendation.h"

class QLabel;

namespace zelvar {

// The Battery subtab's advice: a symbol in the advice's colour, its title and detail, and below
// them the power state, the cycle count and the health.
class BatteryRecommendationCard final : public QFrame {
    Q_OBJECT

public:
    explicit BatteryRecommendationCard(QWidget* parent = nullptr);

    void setInputs(const BatteryPowerSnapshot& snapshot,
                   const std::optional<WattlogBatterySample>& latestSample,
                   const QList<WattlogEvent>& acEvents, const QDateTime& now);
    const BatteryRecommendation& recommendation() const { return m_shown; }

private:
    BatteryRecommendation m_shown;
    QLabel* m_symbol;
    QLabel* m_title;
    QLabel* m_detail;
    QLabel* m_facts;
};

}  // namespace zelvar
