#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>

namespace zelvar {

class BandwidthMonitor;

// What the status item shows: the image of the current rates and power, and the text
// "Down …, Up …, Power …" for its tool tip and accessibility label. Recomputed, on the main
// thread's event loop, after every change of a rate or of the power figures; the values are
// read afresh from the monitors each time. The shell connects statusChanged() to the tray and
// passes the shape that its desktop's tray wants.
class MenuBarStatus final : public QObject {
    Q_OBJECT

public:
    // Wide: the menu-bar layout, as wide as the texts. Square: the same lines fitted into a
    // square, for trays that show every icon square.
    enum class Shape { Wide, Square };

    // The power text until a power monitor provides one.
    static QString emptyPowerText() { return QStringLiteral("0%"); }

    MenuBarStatus(BandwidthMonitor& bandwidth, Shape shape, QObject* parent = nullptr);

    // Where the power text comes from. Connect the power monitor's change signals to
    // powerChanged() as well.
    void setPowerTextSource(std::function<QString()> source);
    void setDevicePixelRatio(double ratio);

    const QImage& image() const { return m_image; }
    const QString& toolTip() const { return m_toolTip; }

    static QString statusText(const QString& download, const QString& upload, const QString& power);

    // The two current rates, download first, on two lines.
    QString menuRateText() const;
    // The wide image of the current rates, with the power text when given.
    QImage menuRateImage(const std::optional<QString>& power = std::nullopt,
                         double devicePixelRatio = 1.0) const;

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
    // The texts and pixel ratio that m_image was drawn for.
    QString m_drawnFor;
};

}  // namespace zelvar
