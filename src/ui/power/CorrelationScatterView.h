#pragma once

#include <QList>
#include <QPointF>
#include <QWidget>

#include "power/WattlogCorrelationSample.h"

namespace zelvar {

// "Power vs CPU": each daemon sample that has both a CPU use and a battery power as a dot,
// CPU across from 0 to 100 %, power up from 0 to the largest power seen (at least 1 W), the
// dot coloured by the power's flow.
class CorrelationScatterView final : public QWidget {
    Q_OBJECT

public:
    struct Point {
        double cpu = 0;
        double watts = 0;
        QString flow;      // the sample's flow, else its source, else empty
        QPointF position;  // x and y as shares of the plot, each within 0 to 1
    };

    explicit CorrelationScatterView(QWidget* parent = nullptr);

    static QColor flowColor(const QString& flow, const QWidget* widget = nullptr);

    void setSamples(const QList<WattlogCorrelationSample>& samples);

    const QList<Point>& points() const { return m_points; }
    double maxPower() const { return m_maxPower; }
    // "CPU 0-100%" and "Power up to N W".
    QStringList captions() const;
    QRectF plotRect() const;
    // The point whose dot is under `position`, as an index into points(); -1 for none.
    int pointAt(const QPointF& position) const;

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QPointF dotCenter(const Point& point) const;

    QList<Point> m_points;
    double m_maxPower = 1;
};

}  // namespace zelvar
