#include "ui/power/BatteryLevelChart.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHash>
#include <QHelpEvent>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QStackedWidget>
#include <QToolTip>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/Palette.h"
#include "ui/TextFormat.h"
#include "ui/power/PowerFormat.h"
#include "ui/power/PowerViewState.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

// Room around the plot for the percent labels at the left and the times below.
constexpr qreal kLeftMargin = 40;
constexpr qreal kTopMargin = 8;
constexpr qreal kRightMargin = 10;
constexpr qreal kBottomMargin = 20;
constexpr qreal kHoverReach = 4;
constexpr double kGridOpacity = 0.12;
constexpr double kMarkOpacity = 0.55;
constexpr int kGridSteps[] = {0, 25, 50, 75, 100};

qreal levelY(const QRectF& plot, int percent) {
    return plot.bottom() - plot.height() * std::clamp(percent, 0, 100) / 100.0;
}

// One device pixel wide at any scale: the raster engine draws these without a stroker, which
// keeps a repaint of 1,200 points cheap.
QPen thinPen(const QColor& color) {
    QPen pen(color, 1);
    pen.setCosmetic(true);
    return pen;
}

QString shortDateTime(const QDateTime& when) {
    return localDateTimeText(when);
}

}  // namespace

class BatteryLevelChart::Canvas final : public QWidget {
public:
    explicit Canvas(BatteryLevelChart& chart) : QWidget(&chart), m_chart(chart) {
        setMinimumHeight(180);
    }

    QRectF plotRect() const {
        return QRectF(rect()).adjusted(kLeftMargin, kTopMargin, -kRightMargin, -kBottomMargin);
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::ToolTip) {
            auto* help = static_cast<QHelpEvent*>(event);
            const QString text = m_chart.hoverText(help->pos());
            if (text.isEmpty()) {
                QToolTip::hideText();
                event->ignore();
            } else {
                QToolTip::showText(help->globalPos(), text, this);
            }
            return true;
        }
        return QWidget::event(event);
    }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const BatteryChartGeometry shape = m_chart.plotGeometry();
        const QColor secondary = secondaryColor(this);
        painter.setFont(caption2Font());
        for (int percent : kGridSteps) {
            const qreal y = levelY(shape.plot, percent);
            painter.setPen(QPen(withOpacity(secondary, kGridOpacity), 1));
            painter.drawLine(qRound(shape.plot.left()), qRound(y), qRound(shape.plot.right()),
                             qRound(y));
            painter.setPen(secondary);
            painter.drawText(QRectF(0, y - 8, kLeftMargin - 6, 16),
                             Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("%1%").arg(percent));
        }
        const QList<WattlogBatteryPoint>& points = m_chart.m_points;
        if (!points.isEmpty()) {
            const QRectF below(shape.plot.left(), shape.plot.bottom() + 2, shape.plot.width(),
                               kBottomMargin - 2);
            painter.drawText(below, Qt::AlignLeft | Qt::AlignVCenter,
                             shortDateTime(points.first().date));
            painter.drawText(below, Qt::AlignRight | Qt::AlignVCenter,
                             shortDateTime(points.last().date));
        }
        // Rules and grid lines are straight: drawn on whole pixels, they need no smoothing. The
        // rules go out in one batch per kind.
        QHash<WattlogEventKind, QList<QLine>> rules;
        for (const BatteryChartGeometry::Mark& mark : shape.marks) {
            const int x = qRound(mark.x);
            rules[m_chart.m_events.at(mark.event).kind].append(
                QLine(x, qRound(shape.plot.top()), x, qRound(shape.plot.bottom())));
        }
        for (auto rule = rules.cbegin(); rule != rules.cend(); ++rule) {
            painter.setPen(thinPen(withOpacity(kindColor(rule.key()), kMarkOpacity)));
            painter.drawLines(rule.value());
        }
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(withOpacity(namedColor(NamedColor::Green), 0.75), 4, Qt::SolidLine,
                            Qt::FlatCap, Qt::BevelJoin));
        for (const QPolygonF& stretch : shape.acStretches) {
            if (stretch.size() == 1) {
                painter.drawPoint(stretch.first());
            } else {
                painter.drawPolyline(stretch);
            }
        }
        painter.setPen(thinPen(namedColor(NamedColor::Blue)));
        painter.drawPolyline(QPolygonF(shape.points));
    }

private:
    BatteryLevelChart& m_chart;
};

BatteryLevelChart::BatteryLevelChart(QWidget* parent) : QFrame(parent) {
    makeCard(this, QStringLiteral("BatteryLevelChart"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 10, 12, 10);
    column->setSpacing(6);
    auto* header = new QHBoxLayout;
    header->addWidget(textLabel(QStringLiteral("Battery Level"), headlineFont(), this));
    header->addStretch(1);
    m_dates = textLabel(QString(), captionFont(), this, secondaryColor(this));
    header->addWidget(m_dates);
    column->addLayout(header);

    m_stack = new QStackedWidget(this);
    m_canvas = new Canvas(*this);
    m_stack->addWidget(m_canvas);
    m_stack->addWidget(
        new EmptyStateView(QStringLiteral("battery.0"), QStringLiteral("No battery data"), this));
    column->addWidget(m_stack, 1);

    m_legend = new QWidget(this);
    auto* legend = new QHBoxLayout(m_legend);
    legend->setContentsMargins(0, 0, 0, 0);
    legend->addWidget(
        symbolLabel(QStringLiteral("circle.fill"), 8, namedColor(NamedColor::Blue), m_legend));
    legend->addWidget(textLabel(QStringLiteral("Battery"), captionFont(), m_legend));
    legend->addSpacing(12);
    legend->addWidget(
        symbolLabel(QStringLiteral("line.diagonal"), 12, secondaryColor(this), m_legend));
    legend->addWidget(textLabel(QStringLiteral("Events"), captionFont(), m_legend));
    legend->addStretch(1);
    column->addWidget(m_legend);
    setData({}, {});
}

void BatteryLevelChart::setData(const QList<WattlogBatteryPoint>& points,
                                const QList<WattlogEvent>& events) {
    m_points = points;
    m_events = events;
    m_dates->setText(datesText());
    m_stack->setCurrentIndex(points.isEmpty() ? 1 : 0);
    m_legend->setVisible(!points.isEmpty());
    m_canvas->update();
}

QString BatteryLevelChart::datesText() const {
    if (m_points.isEmpty()) {
        return {};
    }
    const QLocale locale;
    return QStringLiteral("%1 – %2").arg(
        locale.toString(m_points.first().date.toLocalTime().date(), QLocale::ShortFormat),
        locale.toString(m_points.last().date.toLocalTime().date(), QLocale::ShortFormat));
}

QWidget* BatteryLevelChart::plotWidget() const {
    return m_canvas;
}

BatteryChartGeometry BatteryLevelChart::plotGeometry() const {
    return computeGeometry(m_canvas->plotRect(), m_points, m_events);
}

BatteryChartGeometry BatteryLevelChart::computeGeometry(const QRectF& plot,
                                                        const QList<WattlogBatteryPoint>& points,
                                                        const QList<WattlogEvent>& events) {
    BatteryChartGeometry shape;
    shape.plot = plot;
    if (points.isEmpty()) {
        return shape;
    }
    const qint64 first = points.first().date.toMSecsSinceEpoch();
    const qint64 span = points.last().date.toMSecsSinceEpoch() - first;
    // A single instant has no time axis: it stands in the middle.
    const auto timeX = [&](qint64 msecs) {
        return span <= 0 ? plot.center().x()
                         : plot.left() + plot.width() * double(msecs - first) / double(span);
    };
    shape.points.reserve(points.size());
    QPolygonF stretch;
    for (const WattlogBatteryPoint& point : points) {
        const QPointF at(timeX(point.date.toMSecsSinceEpoch()), levelY(plot, point.percent));
        shape.points.append(at);
        if (point.onAC) {
            stretch.append(at);
        } else if (!stretch.isEmpty()) {
            shape.acStretches.append(std::exchange(stretch, {}));
        }
    }
    if (!stretch.isEmpty()) {
        shape.acStretches.append(stretch);
    }
    const qsizetype marked = std::min<qsizetype>(events.size(), kMaxMarkedEvents);
    for (qsizetype i = 0; i < marked; ++i) {
        const qint64 msecs = events.at(i).timestamp.toMSecsSinceEpoch();
        if (msecs >= first && msecs <= first + span) {
            shape.marks.append({timeX(msecs), i});
        }
    }
    return shape;
}

QString BatteryLevelChart::hoverText(const QPointF& position) const {
    const BatteryChartGeometry shape = plotGeometry();
    const QRectF reach = shape.plot.adjusted(-kHoverReach, -kHoverReach, kHoverReach, kHoverReach);
    if (shape.points.isEmpty() || !reach.contains(position)) {
        return {};
    }
    for (const BatteryChartGeometry::Mark& mark : shape.marks) {
        if (std::abs(mark.x - position.x()) <= kHoverReach) {
            const WattlogEvent& event = m_events.at(mark.event);
            return QStringLiteral("%1: %2\n%3")
                .arg(WattlogEventKinds::label(event.kind), event.detail,
                     shortDateTime(event.timestamp));
        }
    }
    const auto nearest =
        std::lower_bound(shape.points.cbegin(), shape.points.cend(), position.x(),
                         [](const QPointF& point, qreal x) { return point.x() < x; });
    qsizetype index = nearest - shape.points.cbegin();
    if (index == shape.points.size() ||
        (index > 0 &&
         position.x() - shape.points.at(index - 1).x() < nearest->x() - position.x())) {
        --index;
    }
    const WattlogBatteryPoint& point = m_points.at(index);
    return QStringLiteral("%1% %2\n%3")
        .arg(point.percent)
        .arg(point.onAC ? QStringLiteral("on AC") : QStringLiteral("on battery"),
             shortDateTime(point.date));
}

}  // namespace zelvar
