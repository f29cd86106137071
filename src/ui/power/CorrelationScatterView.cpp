#include "ui/power/CorrelationScatterView.h"

#include <QPainter>
#include <algorithm>

#include "ui/Palette.h"
#include "ui/power/ChartParts.h"
#include "ui/power/PowerFormat.h"

namespace zelvar {

namespace {

constexpr int kTitleHeight = kChartTitleHeight;
constexpr int kCaptionHeight = 20;
constexpr int kMargin = kChartMargin;
constexpr double kDot = 8.0;
constexpr double kOpacity = 0.65;

}  // namespace

CorrelationScatterView::CorrelationScatterView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("CorrelationScatterView"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumHeight(180);
    setMouseTracking(true);
}

QColor CorrelationScatterView::flowColor(const QString& flow, const QWidget* widget) {
    if (flow == QLatin1String("charge")) {
        return namedColor(NamedColor::Green);
    }
    if (flow == QLatin1String("discharge")) {
        return namedColor(NamedColor::Orange);
    }
    if (flow == QLatin1String("ac_idle")) {
        return namedColor(NamedColor::Blue);
    }
    return secondaryColor(widget);
}

void CorrelationScatterView::setSamples(const QList<WattlogCorrelationSample>& samples) {
    m_points.clear();
    m_maxPower = 1;
    for (const WattlogCorrelationSample& sample : samples) {
        if (!sample.cpuUtil || !sample.batteryWatts) {
            continue;
        }
        QString flow = sample.powerFlow;
        if (flow.isEmpty()) {
            flow = sample.source.value_or(QString());
        }
        m_points.append({*sample.cpuUtil, *sample.batteryWatts, flow, {}});
        m_maxPower = std::max(m_maxPower, *sample.batteryWatts);
    }
    for (Point& point : m_points) {
        point.position = {std::clamp(point.cpu / 100.0, 0.0, 1.0),
                          std::clamp(point.watts / m_maxPower, 0.0, 1.0)};
    }
    update();
}

QStringList CorrelationScatterView::captions() const {
    return {QStringLiteral("CPU 0-100%"),
            QStringLiteral("Power up to ") + printfText("%.1f W", m_maxPower)};
}

QRectF CorrelationScatterView::plotRect() const {
    return QRectF(kMargin, kTitleHeight, width() - 2 * kMargin,
                  height() - kTitleHeight - kCaptionHeight - 4)
        .adjusted(kDot / 2, kDot / 2, -kDot / 2, -kDot / 2);
}

QPointF CorrelationScatterView::dotCenter(const Point& point) const {
    const QRectF plot = plotRect();
    return {plot.left() + point.position.x() * plot.width(),
            plot.bottom() - point.position.y() * plot.height()};
}

int CorrelationScatterView::pointAt(const QPointF& position) const {
    return int(nearestWithin(
        m_points.size(), [this](qsizetype i) { return dotCenter(m_points[i]); }, position,
        kDot / 2 + 2));
}

QSize CorrelationScatterView::sizeHint() const {
    return {600, 300};
}

bool CorrelationScatterView::event(QEvent* event) {
    const auto textAt = [this](const QPoint& position) {
        const int index = pointAt(position);
        if (index < 0) {
            return QString();
        }
        const Point& point = m_points.at(index);
        QString text = printfText("CPU %.0f%% · %.1f W", point.cpu, point.watts);
        if (!point.flow.isEmpty()) {
            text += QStringLiteral(" · ") + point.flow;
        }
        return text;
    };
    return handleChartToolTip(event, this, textAt) || QWidget::event(event);
}

void CorrelationScatterView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor secondary = secondaryColor(this);
    paintChartTitle(painter, *this, QStringLiteral("Power vs CPU"));
    if (m_points.isEmpty()) {
        painter.drawText(rect().adjusted(0, kTitleHeight, 0, 0), Qt::AlignCenter,
                         QStringLiteral("No correlation points with CPU and power"));
        return;
    }
    const QRectF frame = plotRect().adjusted(-kDot / 2, -kDot / 2, kDot / 2, kDot / 2);
    painter.setPen(withOpacity(secondary, 0.12));
    for (int step = 0; step <= 4; ++step) {
        const double y = frame.top() + frame.height() * step / 4.0;
        const double x = frame.left() + frame.width() * step / 4.0;
        painter.drawLine(QPointF(frame.left(), y), QPointF(frame.right(), y));
        painter.drawLine(QPointF(x, frame.top()), QPointF(x, frame.bottom()));
    }
    const QStringList texts = captions();
    painter.setPen(secondary);
    const QRectF captionRect(frame.left(), frame.bottom() + 4, frame.width(), kCaptionHeight);
    painter.drawText(captionRect, Qt::AlignLeft | Qt::AlignVCenter, texts.at(0));
    painter.drawText(captionRect, Qt::AlignRight | Qt::AlignVCenter, texts.at(1));

    painter.setPen(Qt::NoPen);
    QString lastFlow;
    QColor color = withOpacity(flowColor(lastFlow, this), kOpacity);
    for (const Point& point : m_points) {
        if (point.flow != lastFlow) {
            lastFlow = point.flow;
            color = withOpacity(flowColor(lastFlow, this), kOpacity);
        }
        painter.setBrush(color);
        painter.drawEllipse(dotCenter(point), kDot / 2, kDot / 2);
    }
}

}  // namespace zelvar
