#include "menubar/MenuBarRateImageRenderer.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <cmath>

namespace zelvar {
namespace {

// The desktop's face at a size in points of the image, which a pixel size expresses since
// the painter works in device-independent units. Desktop faces have tabular digits, so the
// numbers don't jitter as they change.
QFont face(double size, QFont::Weight weight) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(static_cast<int>(size));
    font.setWeight(weight);
    return font;
}

QImage blankImage(double width, double height, double devicePixelRatio) {
    const double ratio = devicePixelRatio > 0.0 ? devicePixelRatio : 1.0;
    QImage image(static_cast<int>(std::ceil(width * ratio)),
                 static_cast<int>(std::ceil(height * ratio)), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    return image;
}

}  // namespace

QColor MenuBarRateImageRenderer::defaultColor() {
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) {
        return QGuiApplication::palette().color(QPalette::WindowText);
    }
    return Qt::black;
}

QImage MenuBarRateImageRenderer::render(const QString& download, const QString& upload,
                                        const std::optional<QString>& power,
                                        double devicePixelRatio, const QColor& color) {
    const QFont rateFont = face(kRateFontSize, QFont::DemiBold);
    const QFont powerFont = face(kPowerFontSize, QFont::Medium);
    const QString downloadLine = QStringLiteral("↓ ") + download;
    const QString uploadLine = QStringLiteral("↑ ") + upload;

    const QFontMetricsF rateMetrics(rateFont);
    const double rateWidth = std::max(std::ceil(rateMetrics.horizontalAdvance(downloadLine)),
                                      std::ceil(rateMetrics.horizontalAdvance(uploadLine)));
    double powerWidth = 0.0;
    double gap = 0.0;
    QString powerLine;
    if (power) {
        powerLine = QStringLiteral("P ") + *power;
        powerWidth = std::ceil(QFontMetricsF(powerFont).horizontalAdvance(powerLine));
        gap = kPowerGap;
    }
    const double width = rateWidth + gap + powerWidth;

    QImage image = blankImage(width, kHeight, devicePixelRatio);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(color);
    // Rectangles measured from the top; the lines sit 1.5 and 11 points down, and the power
    // text 3.6 points down, each right-aligned and clipped to its rectangle.
    const int flags = Qt::AlignRight | Qt::AlignTop | Qt::TextSingleLine;
    const double lineWidth = power ? rateWidth : width;
    painter.setFont(rateFont);
    painter.drawText(QRectF(0.0, kHeight - 10.5 - 10.0, lineWidth, 10.0), flags, downloadLine);
    painter.drawText(QRectF(0.0, kHeight - 1.0 - 10.0, lineWidth, 10.0), flags, uploadLine);
    if (power) {
        painter.setFont(powerFont);
        painter.drawText(QRectF(rateWidth + kPowerGap, kHeight - 3.4 - 15.0, powerWidth, 15.0),
                         flags, powerLine);
    }
    painter.end();
    return image;
}

QImage MenuBarRateImageRenderer::renderSquare(const QString& download, const QString& upload,
                                              const std::optional<QString>& power, double side,
                                              double devicePixelRatio, const QColor& color) {
    QStringList lines{QStringLiteral("↓") + compactRate(download),
                      QStringLiteral("↑") + compactRate(upload)};
    if (power) {
        lines.append(QStringLiteral("P") + *power);
    }
    const double lineHeight = side / static_cast<double>(lines.size());
    const QFont font = face(std::max(6.0, std::floor(lineHeight)), QFont::DemiBold);
    const QFontMetricsF metrics(font);

    QImage image = blankImage(side, side, devicePixelRatio);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(color);
    painter.setFont(font);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const double textWidth = std::ceil(metrics.horizontalAdvance(lines[i]));
        const double squeeze = textWidth > side ? side / textWidth : 1.0;
        painter.save();
        painter.translate(0.0, lineHeight * static_cast<double>(i));
        painter.scale(squeeze, 1.0);
        painter.drawText(QRectF(0.0, 0.0, side / squeeze, lineHeight),
                         Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, lines[i]);
        painter.restore();
    }
    painter.end();
    return image;
}

QString MenuBarRateImageRenderer::compactRate(const QString& rate) {
    QString text = rate;
    if (text.endsWith(QLatin1String("/s"))) {
        text.chop(2);
    }
    if (text.endsWith(QLatin1Char('B'))) {
        text.chop(1);
    }
    return text;
}

}  // namespace zelvar
