#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <functional>

namespace zelvar {

class BandwidthMonitor;

// What the status item shows: the image of the current rates and power, and the text
// "Down …, Up …, Power …" for its tool tip and accessibility label. Recomputed, on the main
// thread's event loop, after every change of a rate or of the power figures; the values are
// read afresh from the monitors each time. The shell connects statusChanged() to the tray.
class MenuBarStatus final : public QObject {
    Q_OBJECT

public:
    // Wide: the menu-bar layout, as wide as the texts. Square: the same lines fitted into a
    // square, for trays that show every icon square.
    enum class Shape { Wide, Square };
    // Wide in the macOS menu bar, square in the trays of other desktops.
    static constexpr Shape nativeShape() {
#ifdef Q_OS_MACOS
        return Shape::Wide;
#else
        return Shape::Square;
#endif
    }

    // The power text until a power monitor provides one.
    static QString emptyPowerText() {
        return QStringLiteral("0%");
    }

    MenuBarStatus(BandwidthMonitor& bandwidth, Shape shape, QObject* parent = nullptr);

    // Where the power text comes from. Connect the power monitor's change signals to
    // powerChanged() as well.
    void setPowerTextSource(std::function<QString()> source);
    void setDevicePixelRatio(double ratio);

    const QImage& image() const {
        return m_image;
    }
    const QString& toolTip() const {
        return m_toolTip;
    }

    static QString statusText(const QString& download, const QString& upload, const QString& power);

public slots:
    // A power figure changed.
    void powerChanged();

signals:
    void statusChanged(const QImage& image, const QString& toolTip);

private:
    void scheduleUpdate();
    void updateMenuBarStatus();

    BandwidthMonitor& m_bandwidth;
    Shape m_shape;
    std::function<QString()> m_powerText = emptyPowerText;
    double m_devicePixelRatio = 1.0;
    QImage m_image;
    QString m_toolTip;
};

}  // namespace zelvar
