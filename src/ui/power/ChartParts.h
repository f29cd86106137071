#pragma once

#include <QString>
#include <QtGlobal>
#include <functional>

class QEvent;
class QPainter;
class QPoint;
class QPointF;
class QWidget;

namespace zelvar {

// What the Power tab's painted charts share.

// Height of the title line at the top of a chart.
constexpr int kChartTitleHeight = 26;
// Inner margin of a chart on either side.
constexpr int kChartMargin = 10;

// Draws `title` at the left of the chart's title line and `caption`, when not empty, at its
// right; leaves the painter on the caption font and the secondary colour.
void paintChartTitle(QPainter& painter, const QWidget& chart, const QString& title,
                     const QString& caption = {});

// Handles a tool tip event of `chart`: shows the text for the event's position, or hides the
// tip where `textAt` gives none. False for any other event.
bool handleChartToolTip(QEvent* event, QWidget* chart,
                        const std::function<QString(const QPoint&)>& textAt);

// Of `count` marks whose centres `centerAt` gives, the one nearest to `point` within
// `radius`, or -1: the hit test of small dots.
qsizetype nearestWithin(qsizetype count, const std::function<QPointF(qsizetype)>& centerAt,
                        const QPointF& point, double radius);

}  // namespace zelvar
