#include "ui/DashboardWindow.h"

#include <QGuiApplication>
#include <QScreen>

namespace zelvar {

DashboardWindow::DashboardWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("DashboardWindow"));
    setWindowTitle(QStringLiteral("Zelvar+"));
    // Closing hides: the same window object comes back next time.
    setAttribute(Qt::WA_DeleteOnClose, false);
    resize(kInitialWidth, kInitialHeight);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        QRect frame(QPoint(), size());
        frame.moveCenter(screen->availableGeometry().center());
        move(frame.topLeft());
    }
}

void DashboardWindow::bringToFront() {
    if (isMinimized()) {
        showNormal();
    } else {
        show();
    }
    raise();
    activateWindow();
}

}  // namespace zelvar
