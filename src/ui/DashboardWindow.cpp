#include "ui/DashboardWindow.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QScreen>
#include <QVBoxLayout>

#include "common/BoundedFile.h"

namespace zelvar {

DashboardWindow::DashboardWindow(const QString& frameDirectory, QWidget* parent)
    : QWidget(parent, Qt::Window) {
    const QString name = QString::fromLatin1(kFrameAutosaveName);
    if (!frameDirectory.isEmpty()) {
        m_frameFile = QDir(frameDirectory).filePath(name + QStringLiteral(".frame.json"));
    }
    setObjectName(name);
    setWindowTitle(QStringLiteral("Zelvar+"));
    // Closing hides: the same window object comes back next time.
    setAttribute(Qt::WA_DeleteOnClose, false);
    const QSize saved = savedSize();
    resize(saved.isValid() ? saved : QSize(kInitialWidth, kInitialHeight));
    // Centred whatever size was kept.
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        QRect frame(QPoint(), size());
        frame.moveCenter(screen->availableGeometry().center());
        move(frame.topLeft());
    }
}

DashboardWindow::~DashboardWindow() {
    // Quitting with the dashboard open keeps its size too.
    saveFrame();
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

void DashboardWindow::setContent(QWidget* content) {
    delete m_content;
    m_content = content;
    if (layout() == nullptr) {
        auto* fill = new QVBoxLayout(this);
        fill->setContentsMargins(0, 0, 0, 0);
    }
    layout()->addWidget(content);
}

void DashboardWindow::hideEvent(QHideEvent* event) {
    saveFrame();
    QWidget::hideEvent(event);
}

QSize DashboardWindow::savedSize() const {
    if (m_frameFile.isEmpty()) {
        return {};
    }
    // A window's size takes a few dozen bytes; anything far larger isn't ours.
    constexpr qint64 kFrameFileCap = 64 * 1024;
    const BoundedFile::Result file = BoundedFile::readOnce(m_frameFile, kFrameFileCap);
    if (file.status != BoundedFile::Status::read) {
        return {};
    }
    const QJsonObject object = QJsonDocument::fromJson(file.data).object();
    const QSize size(object.value(QStringLiteral("width")).toInt(),
                     object.value(QStringLiteral("height")).toInt());
    return size.width() > 0 && size.height() > 0 ? size : QSize();
}

void DashboardWindow::saveFrame() const {
    if (m_frameFile.isEmpty()) {
        return;
    }
    QDir().mkpath(QFileInfo(m_frameFile).absolutePath());
    QSaveFile file(m_frameFile);
    if (!file.open(QIODevice::WriteOnly)) {
        return;
    }
    const QJsonObject object{{QStringLiteral("width"), width()},
                             {QStringLiteral("height"), height()}};
    file.write(QJsonDocument(object).toJson(QJsonDocument::Compact));
    file.commit();
}

}  // namespace zelvar
