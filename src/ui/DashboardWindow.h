#pragma once

#include <QString>
#include <QWidget>

namespace zelvar {

// The one dashboard window: "Zelvar+", 900 × 700 at first. Created once, then only shown
// and hidden, so that it keeps its frame and content between openings. Its size is kept
// under the name "DashboardWindow" from one run to the next; it always opens centred.
// Its content, the dashboard's tabs, is handed in once.
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

    // Makes `content` fill the window, which takes ownership; its minimum size becomes the
    // window's.
    void setContent(QWidget* content);
    QWidget* content() const { return m_content; }

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QSize savedSize() const;
    void saveFrame() const;

    QString m_frameFile;
    QWidget* m_content = nullptr;
};

}  // namespace zelvar
