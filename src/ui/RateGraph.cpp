#include "ui/RateGraph.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "network/ByteFormatter.h"
#include "ui/Palette.h"

namespace zelvar {

namespace {
constexpr double kSpanSeconds = 300.0;
}

RateGraph::RateGraph(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("rateGraph"));
    setMinimumHeight(90);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void RateGraph::setSamples(const QList<BandwidthMonitor::RateSample>& samples) {
    m_samples = samples;
    update();
}

double RateGraph::scaleMaximum() const {
    double largest = 1000.0;
    for (const BandwidthMonitor::RateSample& sample : m_samples) {
        largest = std::max({largest, sample.download, sample.upload});
    }
    return largest;
}

void RateGraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor secondary = secondaryColor(this);
    painter.setFont(caption2Font());
    const int textHeight = painter.fontMetrics().height();
    const QRectF plot = QRectF(rect()).adjusted(1, textHeight + 2, -1, -1);
    painter.setPen(withOpacity(secondary, 0.4));
    painter.drawRect(plot);

    const QColor downColor = namedColor(NamedColor::Blue);
    const QColor upColor = namedColor(NamedColor::Orange);
    const double top = scaleMaximum();
    painter.setPen(secondary);
    painter.drawText(QRectF(0, 0, width(), textHeight), Qt::AlignLeft,
                     QStringLiteral("Last 5 minutes · peak ") + ByteFormatter::rate(top));
    painter.setPen(downColor);
    const QString down = QStringLiteral("↓ Download");
    const QString up = QStringLiteral("↑ Upload");
    const int upWidth = painter.fontMetrics().horizontalAdvance(up);
    painter.drawText(QRectF(0, 0, width() - upWidth - 12, textHeight), Qt::AlignRight, down);
    painter.setPen(upColor);
    painter.drawText(QRectF(0, 0, width(), textHeight), Qt::AlignRight, up);
    if (m_samples.isEmpty()) {
        return;
    }
    // The newest sample at the right edge; older ones by their age.
    const QDateTime newest = m_samples.last().at;
    const auto point = [&](const BandwidthMonitor::RateSample& sample, double value) {
        const double age = std::clamp(sample.at.msecsTo(newest) / 1000.0, 0.0, kSpanSeconds);
        return QPointF(plot.right() - plot.width() * age / kSpanSeconds,
                       plot.bottom() - plot.height() * std::clamp(value / top, 0.0, 1.0));
    };
    for (const bool download : {true, false}) {
        QPainterPath path;
        for (qsizetype i = 0; i < m_samples.size(); ++i) {
            const BandwidthMonitor::RateSample& sample = m_samples[i];
            const QPointF p = point(sample, download ? sample.download : sample.upload);
            i == 0 ? path.moveTo(p) : path.lineTo(p);
        }
        painter.setPen(QPen(download ? downColor : upColor, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(path);
    }
}

}  // namespace zelvar
