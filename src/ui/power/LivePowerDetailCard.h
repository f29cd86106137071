#pragma once

#include <QFrame>
#include <functional>

#include "power/BatteryPowerSnapshot.h"

class QLabel;
class QToolButton;

namespace zelvar {

class FillBar;

// The battery's reading at large on the Battery subtab: the flow's symbol and colour, the
// rate, the detail line, and, while power flows, the share of the maximum discharge rate as a
// bar. Its button asks for a fresh reading.
class LivePowerDetailCard final : public QFrame {
    Q_OBJECT

public:
    explicit LivePowerDetailCard(std::function<void()> onRefresh, QWidget* parent = nullptr);

    void setSnapshot(const BatteryPowerSnapshot& snapshot);
    QString symbolName() const { return m_symbolName; }
    // The title, the rate and the detail, then the share's text when the bar shows.
    QStringList texts() const;
    QToolButton* refreshButton() const { return m_refresh; }

private:
    QString m_symbolName;
    QLabel* m_symbol;
    QLabel* m_title;
    QLabel* m_rate;
    QLabel* m_detail;
    FillBar* m_bar;
    QLabel* m_share;
    QToolButton* m_refresh;
};

}  // namespace zelvar
