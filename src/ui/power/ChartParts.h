#pragma once

#include <QString>
#include <functional>

class QEvent;
class QPainter;
class QPoint;
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

}  // namespace zelvar
