#include "ui/power/LidStateTimelineView.h"

#include <QLocale>
#include <QPainter>
#include <algorithm>

#include "ui/Palette.h"
#include "ui/power/ChartParts.h"

namespace zelvar {

namespace {

constexpr int kTitleHeight = kChartTitleHeight;
constexpr int kStripHeight = 26;
constexpr int kMargin = kChartMargin;
constexpr int kLegendHeight = 22;

QString closedText(bool closed) {
    return closed ? QStringLiteral("Closed") : QStringLiteral("Open");
}

QColor stateColor(bool closed) {
    return namedColor(closed ? NamedColor::Purple : NamedColor::Green);
}

}  // namespace

LidStateTimelineView::LidStateTimelineView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("LidStateTimelineView"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMouseTracking(true);
}

void LidStateTimelineView::setEvents(const QList<WattlogEvent>& events) {
    QList<const WattlogEvent*> lid;
    for (const WattlogEvent& event : events) {
        if (event.kind == WattlogEventKind::LidSleep || event.kind == WattlogEventKind::LidOpen) {
            lid.append(&event);
        }
    }
    std::stable_sort(lid.begin(), lid.end(), [](const WattlogEvent* a, const WattlogEvent* b) {
        return a->timestamp < b->timestamp;
    });
    m_count = int(lid.size());
    m_segments.clear();
    const QLocale locale;
    for (qsizetype i = std::max<qsizetype>(0, lid.size() - kMaxSegments); i < lid.size(); ++i) {
        const QDateTime local = lid[i]->timestamp.toLocalTime();
        m_segments.append({lid[i]->kind == WattlogEventKind::LidSleep, lid[i]->timestamp,
                           locale.toString(local.date(), QStringLiteral("MMM d, yyyy")) +
                               QStringLiteral(", ") +
                               locale.toString(local.time(), QLocale::ShortFormat)});
    }
    updateGeometry();
    update();
}

QString LidStateTimelineView::caption() const {
    return QStringLiteral("%1 transitions").arg(m_count);
}

QRectF LidStateTimelineView::stripRect() const {
    return {double(kMargin), double(kTitleHeight), double(width() - 2 * kMargin),
            double(kStripHeight)};
}

int LidStateTimelineView::segmentAt(const QPoint& point) const {
    const QRectF strip = stripRect();
    if (m_segments.isEmpty() || !strip.contains(point)) {
        return -1;
    }
    const double step = strip.width() / double(m_segments.size());
    return std::clamp(int((point.x() - strip.left()) / step), 0, int(m_segments.size()) - 1);
}

QSize LidStateTimelineView::sizeHint() const {
    return {600, kTitleHeight + kStripHeight + kLegendHeight + 6};
}

bool LidStateTimelineView::event(QEvent* event) {
    const auto textAt = [this](const QPoint& point) {
        const int index = segmentAt(point);
        if (index < 0) {
            return QString();
        }
        const Segment& segment = m_segments.at(index);
        return closedText(segment.closed) + QStringLiteral(" · ") + segment.helpText;
    };
    return handleChartToolTip(event, this, textAt) || QWidget::event(event);
}

void LidStateTimelineView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor secondary = secondaryColor(this);
    const QString title = QStringLiteral("Lid Open / Closed");
    if (m_segments.isEmpty()) {
        paintChartTitle(painter, *this, title);
        painter.drawText(QRect(0, kTitleHeight, width(), kStripHeight + kLegendHeight),
                         Qt::AlignCenter, QStringLiteral("No lid events recorded"));
        return;
    }
    paintChartTitle(painter, *this, title, caption());

    const QRectF strip = stripRect();
    const double step = strip.width() / double(m_segments.size());
    painter.setPen(Qt::NoPen);
    for (qsizetype i = 0; i < m_segments.size(); ++i) {
        painter.setBrush(stateColor(m_segments[i].closed));
        painter.drawRect(QRectF(strip.left() + double(i) * step, strip.top(),
                                std::max(step - 1.0, 1.0), strip.height()));
    }

    // The legend: a swatch and the state's word for each colour.
    double x = strip.left();
    const double y = strip.bottom() + 6;
    for (bool closed : {true, false}) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(stateColor(closed));
        painter.drawRoundedRect(QRectF(x, y + 3, 10, 10), 2, 2);
        painter.setPen(secondary);
        const QString word = closedText(closed);
        painter.drawText(QPointF(x + 14, y + 12), word);
        x += 14 + painter.fontMetrics().horizontalAdvance(word) + 16;
    }
}

}  // namespace zelvar
