#pragma once

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>

class QImage;

namespace zelvar {

// The program's permanent face: an icon in the system tray (the menu bar on macOS) whose
// menu is built afresh at each click and exists only while it is open. The image and the
// tool tip are set from outside, by whoever renders the current rates.
class StatusItem final : public QObject {
    Q_OBJECT

public:
    explicit StatusItem(QObject* parent = nullptr);

    // Whether the desktop has a tray to show the item in.
    static bool isTrayAvailable();
    // Shows the item; false when there is no tray.
    bool show();
    bool isShown() const { return m_tray.isVisible(); }

    void setStatusImage(const QImage& image);
    void setIcon(const QIcon& icon);
    QIcon icon() const { return m_tray.icon(); }
    // The tool tip, which is also what screen readers announce.
    void setToolTip(const QString& text);
    QString toolTip() const { return m_tray.toolTip(); }

    // A new menu: "Open Dashboard", a separator, "Quit Zelvar+" with Ctrl+Q (⌘Q on macOS).
    // The caller owns it.
    QMenu* buildMenu();
    // Builds the menu and opens it at the pointer; it deletes itself when it closes.
    void showStatusMenu();
    // The menu while it is open, else null.
    QMenu* openMenu() const { return m_openMenu; }

    // The plain application icon.
    static QIcon applicationIcon();

signals:
    void openDashboardRequested();
    void quitRequested();

private:
    QSystemTrayIcon m_tray;
    // The picture last given to setStatusImage(), 0 after setIcon().
    qint64 m_shownImageKey = 0;
    QPointer<QMenu> m_openMenu;
};

}  // namespace zelvar
