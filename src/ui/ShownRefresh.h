#pragma once

#include <QObject>
#include <functional>

class QWidget;

namespace zelvar {

// Runs a view's refresh at once while the view is on screen, and otherwise once, when it next
// shows. The dashboard window is only hidden when it closes, and a tab that isn't selected is
// hidden too: their views then cost nothing per sample, and are current when they appear.
class ShownRefresh final : public QObject {
    Q_OBJECT

public:
    ShownRefresh(QWidget* view, std::function<void()> refresh);

    // Refreshes now, or marks the view to be refreshed when it shows.
    void request();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_view;
    std::function<void()> m_refresh;
    bool m_pending = false;
};

}  // namespace zelvar
