#pragma once

#include <QFrame>

#include "power/WattlogDerivedData.h"

class QLabel;

namespace zelvar {

// How the history's battery points split between AC and battery: a two-part bar and the two
// rounded shares.
class PowerSourceDistributionView final : public QFrame {
    Q_OBJECT

public:
    explicit PowerSourceDistributionView(QWidget* parent = nullptr);

    void setStats(const WattlogStats& stats);
    // "AC N%" and "Battery N%".
    QStringList texts() const;

private:
    class Bar;

    Bar* m_bar;
    QLabel* m_ac;
    QLabel* m_battery;
};

}  // namespace zelvar
