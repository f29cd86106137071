#pragma once

#include <QWidget>

namespace zelvar {

// The one dashboard window: "Zelvar+", 900 × 700 at first. Created once, then only shown
// and hidden, so that it keeps its frame and content between openings. The tabs come later.
class DashboardWindow final : public QWidget {
    Q_OBJECT

public:
    static constexpr int kInitialWidth = 900;
    static constexpr int kInitialHeight = 700;

    explicit DashboardWindow(QWidget* parent = nullptr);

    // Shows the window in front and gives it the keyboard focus.
    void bringToFront();
};

}  // namespace zelvar
