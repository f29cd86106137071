#include "ui/StatusItem.h"

#include <QCursor>
#include <QImage>
#include <QMenu>
#include <QPainter>
#include <QPixmap>

namespace zelvar {

StatusItem::StatusItem(QObject* parent) : QObject(parent) {
    m_tray.setIcon(applicationIcon());
    m_tray.setToolTip(QStringLiteral("Zelvar+"));
    // Both the primary and the context click open the same menu, built for that click.
    connect(&m_tray, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context) {
                    showStatusMenu();
                }
            });
}

bool StatusItem::isTrayAvailable() {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

bool StatusItem::show() {
    if (!isTrayAvailable()) {
        return false;
    }
    m_tray.show();
    return true;
}

void StatusItem::setStatusImage(const QImage& image) {
    // The same picture again (an idle network) is not sent: a new icon goes to the tray host
    // and is repainted there even when every pixel is the same.
    if (image.cacheKey() == m_shownImageKey) {
        return;
    }
    m_tray.setIcon(QIcon(QPixmap::fromImage(image)));
    m_shownImageKey = image.cacheKey();
}

void StatusItem::setIcon(const QIcon& icon) {
    m_shownImageKey = 0;
    m_tray.setIcon(icon);
}

void StatusItem::setToolTip(const QString& text) {
    if (text != m_tray.toolTip()) {
        m_tray.setToolTip(text);
    }
}

QMenu* StatusItem::buildMenu() {
    auto* menu = new QMenu;
    menu->addAction(QStringLiteral("Open Dashboard"), this, &StatusItem::openDashboardRequested);
    menu->addSeparator();
    QAction* quit =
        menu->addAction(QStringLiteral("Quit Zelvar+"), this, &StatusItem::quitRequested);
    // Ctrl+Q here, ⌘Q on macOS; it lives in the menu, so it works only while the menu is open.
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    return menu;
}

void StatusItem::showStatusMenu() {
    if (m_openMenu) {
        m_openMenu->close();
    }
    QMenu* menu = buildMenu();
    connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    m_openMenu = menu;
    menu->popup(QCursor::pos());
}

QIcon StatusItem::applicationIcon() {
    // A plain mark until the rate image takes over: a rounded square with "Z+".
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(QColor(0x2e, 0x7d, 0x32));
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(4, 4, 56, 56), 12, 12);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(26);
    painter.setFont(font);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, QStringLiteral("Z+"));
    painter.end();
    return QIcon(pixmap);
}

}  // namespace zelvar
