#pragma once

#include <QFrame>
#include <QList>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>

#include "power/WattlogDerivedData.h"
#include "power/WattlogEvent.h"

class QLabel;
class QStackedWidget;

namespace zelvar {

// Where the battery chart draws its data inside a plot rectangle: time runs from the first
// point at the left edge to the last at the right, the level from 0 at the bottom to 100 at
// the top.
struct BatteryChartGeometry {
    struct Mark {
        qreal x = 0;
        qsizetype event = 0;  // index into the chart's events
    };

    QRectF plot;
    QList<QPointF> points;         // one per battery point, in order
    QList<QPolygonF> acStretches;  // each run of consecutive points on AC
    QList<Mark> marks;             // the marked events that fall within the points' time
};

// The battery level over the loaded history, drawn with QPainter: the level line, a second
// stroke where the machine was on AC, and the events marked as vertical rules in their kind's
// colour. Hovering shows the event or the level under the pointer.
class BatteryLevelChart final : public QFrame {
    Q_OBJECT

public:
    // More rules than this make the plot unreadable; the first ones are kept.
    static constexpr int kMaxMarkedEvents = 160;

    explicit BatteryLevelChart(QWidget* parent = nullptr);

    void setData(const QList<WattlogBatteryPoint>& points, const QList<WattlogEvent>& events);
    bool isEmpty() const { return m_points.isEmpty(); }
    // The first and the last point's dates as the header shows them.
    QString datesText() const;

    // The drawing surface; plotGeometry() and hoverText() are in its coordinates.
    QWidget* plotWidget() const;
    BatteryChartGeometry plotGeometry() const;
    static BatteryChartGeometry computeGeometry(const QRectF& plot,
                                                const QList<WattlogBatteryPoint>& points,
                                                const QList<WattlogEvent>& events);
    // The text of the tool tip at `position`: the marked event within a few pixels, else the
    // level of the nearest point; empty outside the plot or without points.
    QString hoverText(const QPointF& position) const;

private:
    class Canvas;
    friend class Canvas;

    QList<WattlogBatteryPoint> m_points;
    QList<WattlogEvent> m_events;
    QLabel* m_dates;
    QStackedWidget* m_stack;
    Canvas* m_canvas;
    QWidget* m_legend;
};

}  // namespace zelvar
