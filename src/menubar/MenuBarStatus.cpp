#include "menubar/MenuBarStatus.h"

#include "menubar/MenuBarRateImageRenderer.h"
#include "network/BandwidthMonitor.h"
#include "network/ByteFormatter.h"

namespace zelvar {

MenuBarStatus::MenuBarStatus(BandwidthMonitor& bandwidth, Shape shape, QObject* parent)
    : QObject(parent), m_bandwidth(bandwidth), m_shape(shape) {
    connect(&m_bandwidth, &BandwidthMonitor::downloadBytesPerSecondChanged, this,
            &MenuBarStatus::scheduleUpdate);
    connect(&m_bandwidth, &BandwidthMonitor::uploadBytesPerSecondChanged, this,
            &MenuBarStatus::scheduleUpdate);
    // The first picture comes at once, before any monitor has data: zero rates and the power
    // text of the empty state.
    scheduleUpdate();
}

void MenuBarStatus::setPowerTextSource(std::function<QString()> source) {
    m_powerText = std::move(source);
}

void MenuBarStatus::setDevicePixelRatio(double ratio) {
    m_devicePixelRatio = ratio;
}

void MenuBarStatus::powerChanged() {
    scheduleUpdate();
}

QString MenuBarStatus::statusText(const QString& download, const QString& upload,
                                  const QString& power) {
    return QStringLiteral("Down ") + download + QStringLiteral(", Up ") + upload +
           QStringLiteral(", Power ") + power;
}

QString MenuBarStatus::menuRateText() const {
    return ByteFormatter::rate(m_bandwidth.downloadBytesPerSecond()) + QLatin1Char('\n') +
           ByteFormatter::rate(m_bandwidth.uploadBytesPerSecond());
}

QImage MenuBarStatus::menuRateImage(const std::optional<QString>& power,
                                    double devicePixelRatio) const {
    return MenuBarRateImageRenderer::render(
        ByteFormatter::rate(m_bandwidth.downloadBytesPerSecond()),
        ByteFormatter::rate(m_bandwidth.uploadBytesPerSecond()), power, devicePixelRatio);
}

void MenuBarStatus::scheduleUpdate() {
    // Delivered through the event loop, one update for every change, with no coalescing.
    QMetaObject::invokeMethod(this, &MenuBarStatus::updateMenuBarStatus, Qt::QueuedConnection);
}

void MenuBarStatus::updateMenuBarStatus() {
    const QString down = ByteFormatter::rate(m_bandwidth.downloadBytesPerSecond());
    const QString up = ByteFormatter::rate(m_bandwidth.uploadBytesPerSecond());
    const QString power = m_powerText ? m_powerText() : emptyPowerText();
    m_toolTip = statusText(down, up, power);
    // The picture depends on these texts alone: an idle network gives the same ones sample
    // after sample, and then the picture already made is sent again rather than drawn anew.
    const QString drawn = m_toolTip + QLatin1Char('@') + QString::number(m_devicePixelRatio);
    if (drawn == m_drawnFor && !m_image.isNull()) {
        emit statusChanged(m_image, m_toolTip);
        return;
    }
    m_drawnFor = drawn;
    m_image = m_shape == Shape::Wide
                  ? MenuBarRateImageRenderer::render(down, up, power, m_devicePixelRatio)
                  : MenuBarRateImageRenderer::renderSquare(
                        down, up, power, MenuBarRateImageRenderer::kHeight, m_devicePixelRatio);
    emit statusChanged(m_image, m_toolTip);
}

}  // namespace zelvar
