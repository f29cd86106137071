#pragma once

#include <QString>
#include <QWidget>

namespace zelvar {

// The one dashboard window: "Zelvar+", 900 × 700 at first. Created once, then only shown
// and hidden, so that it keeps its frame and content between openings. Its size is kept
// under the name "DashboardWindow" from one run to the next; it always opens centred.
// The tabs come later.
class DashboardWindow final : public QWidget {
    Q_OBJECT

public:
    static constexpr int kInitialWidth = 900;
    static constexpr int kInitialHeight = 700;
    static constexpr const char* kFrameAutosaveName = "DashboardWindow";

    // The saved size lives in `frameDirectory` (none is kept when it is empty).
    explicit DashboardWindow(const QString& frameDirectory, QWidget* parent = nullptr);
    ~DashboardWindow() override;

    // Shows the window in front and gives it the keyboard focus.
    void bringToFront();

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QSize savedSize() const;
    void saveFrame() const;

    QString m_frameFile;
};

}  // namespace zelvar
