#include "ui/power/ChartParts.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <QWidget>

#include "ui/Palette.h"

namespace zelvar {

void paintChartTitle(QPainter& painter, const QWidget& chart, const QString& title,
                     const QString& caption) {
    const QRect line(kChartMargin, 0, chart.width() - 2 * kChartMargin, kChartTitleHeight - 4);
    painter.setFont(headlineFont());
    painter.setPen(chart.palette().color(QPalette::Text));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, title);
    painter.setFont(captionFont());
    painter.setPen(secondaryColor(&chart));
    if (!caption.isEmpty()) {
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, caption);
    }
}

bool handleChartToolTip(QEvent* event, QWidget* chart,
                        const std::function<QString(const QPoint&)>& textAt) {
    if (event->type() != QEvent::ToolTip) {
        return false;
    }
    auto* help = static_cast<QHelpEvent*>(event);
    const QString text = textAt(help->pos());
    if (text.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        QToolTip::showText(help->globalPos(), text, chart);
    }
    return true;
}

qsizetype nearestWithin(qsizetype count, const std::function<QPointF(qsizetype)>& centerAt,
                        const QPointF& point, double radius) {
    double best = radius * radius;
    qsizetype found = -1;
    for (qsizetype i = 0; i < count; ++i) {
        const QPointF delta = centerAt(i) - point;
        const double distance = QPointF::dotProduct(delta, delta);
        if (distance <= best) {
            best = distance;
            found = i;
        }
    }
    return found;
}

}  // namespace zelvar
