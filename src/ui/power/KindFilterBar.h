#pragma once

#include <QList>
#include <QRect>
#include <QWidget>
#include <optional>

#include "power/WattlogEventKind.h"

namespace zelvar {

class PowerViewState;

// One chip per kind of power event, wrapping onto as many rows as the width needs. A click
// shows or hides the kind in the shared view state; a shown kind's chip is drawn in the kind's
// colour, a hidden one's in the secondary colour.
class KindFilterBar final : public QWidget {
    Q_OBJECT

public:
    explicit KindFilterBar(PowerViewState& state, QWidget* parent = nullptr);

    // The chip's rectangle at the current width.
    QRect chipRect(WattlogEventKind kind) const;
    std::optional<WattlogEventKind> kindAt(const QPoint& point) const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    // The chips laid out left to right in `width`, in the order of the kinds.
    QList<QRect> layoutChips(int width) const;

    PowerViewState& m_state;
};

}  // namespace zelvar
