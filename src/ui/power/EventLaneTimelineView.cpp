#include "ui/power/EventLaneTimelineView.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <vector>

#include "ui/Palette.h"
#include "ui/Symbols.h"
#include "ui/TextFormat.h"
#include "ui/power/ChartParts.h"
#include "ui/power/PowerFormat.h"

namespace zelvar {

namespace {

constexpr int kTitleHeight = kChartTitleHeight;
constexpr int kLaneHeight = 22;
constexpr int kLabelWidth = 150;
constexpr int kMargin = kChartMargin;
constexpr double kDot = 7.0;
constexpr int kEmptyHeight = 70;

QString tooltipText(const WattlogEvent& event) {
    QString text = WattlogEventKinds::label(event.kind) + QStringLiteral(" · ") +
                   localDateTimeText(event.timestamp);
    if (!event.detail.isEmpty()) {
        text += QLatin1Char('\n') + event.detail;
    }
    return text;
}

}  // namespace

EventLaneTimelineView::EventLaneTimelineView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("EventLaneTimelineView"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMouseTracking(true);
}

const QList<WattlogEventKind>& EventLaneTimelineView::defaultLanes() {
    using K = WattlogEventKind;
    static const QList<WattlogEventKind> lanes{
        K::Sleep,     K::LidSleep,      K::Wake,          K::DarkWake,
        K::DisplayOn, K::DisplayOff,    K::AcConnected,   K::AcDisconnected,
        K::Reboot,    K::BatteryHealth, K::KernelPanic,   K::AppCrash,
        K::AppHang,   K::JetsamEvent,   K::WifiConnected, K::WifiDisconnected};
    return lanes;
}

double EventLaneTimelineView::xPosition(const QDateTime& time, const QDateTime& first,
                                        const QDateTime& last, double width) {
    const double span = std::max(double(first.msecsTo(last)) / 1000.0, 1.0);
    return std::max(0.0, width * (double(first.msecsTo(time)) / 1000.0) / span);
}

void EventLaneTimelineView::setEvents(const QList<WattlogEvent>& events,
                                      const QSet<WattlogEventKind>& visibleKinds,
                                      const std::optional<QUuid>& selectedEventID,
                                      const QList<WattlogEventKind>& lanes) {
    m_eventCount = int(events.size());
    m_selected = selectedEventID;
    m_filteredLanes.clear();
    for (WattlogEventKind kind : lanes) {
        if (visibleKinds.contains(kind)) {
            m_filteredLanes.append(kind);
        }
    }
    const QSet<WattlogEventKind> shown(m_filteredLanes.cbegin(), m_filteredLanes.cend());
    m_visible.clear();
    for (const WattlogEvent& event : events) {
        if (shown.contains(event.kind)) {
            m_visible.append(event);
        }
    }
    placeDots();
    updateGeometry();
    update();
}

void EventLaneTimelineView::placeDots() {
    m_dots.clear();
    if (m_visible.isEmpty()) {
        return;
    }
    const QDateTime first = m_visible.constFirst().timestamp;
    const QDateTime last = m_visible.constLast().timestamp;
    const double width = plotWidth();
    m_dots.reserve(m_visible.size());
    for (const WattlogEvent& event : m_visible) {
        m_dots.append({event.id, int(m_filteredLanes.indexOf(event.kind)),
                       xPosition(event.timestamp, first, last, width)});
    }
}

QString EventLaneTimelineView::emptyText() const {
    if (m_eventCount == 0) {
        return QStringLiteral("No events loaded");
    }
    if (m_visible.isEmpty()) {
        return QStringLiteral("No events match the selected filters");
    }
    return {};
}

int EventLaneTimelineView::plotLeft() const {
    return kMargin + kLabelWidth;
}

double EventLaneTimelineView::plotWidth() const {
    return std::max(1.0, double(width() - plotLeft() - kMargin) - kDot);
}

QPointF EventLaneTimelineView::dotCenter(const Dot& dot) const {
    return {plotLeft() + kDot / 2 + dot.x,
            kTitleHeight + dot.lane * kLaneHeight + kLaneHeight / 2.0};
}

std::optional<WattlogEvent> EventLaneTimelineView::eventAt(const QPointF& point) const {
    // A little more than the dot's radius, so small dots stay easy to hit.
    const qsizetype found = nearestWithin(
        m_dots.size(), [this](qsizetype i) { return dotCenter(m_dots[i]); }, point, kDot / 2 + 3);
    if (found < 0) {
        return std::nullopt;
    }
    return m_visible.at(found);
}

QSize EventLaneTimelineView::sizeHint() const {
    const int body = m_visible.isEmpty() ? kEmptyHeight : int(m_filteredLanes.size()) * kLaneHeight;
    return {600, kTitleHeight + body + 4};
}

bool EventLaneTimelineView::event(QEvent* event) {
    const auto textAt = [this](const QPoint& point) {
        const auto hovered = eventAt(point);
        return hovered ? tooltipText(*hovered) : QString();
    };
    return handleChartToolTip(event, this, textAt) || QWidget::event(event);
}

void EventLaneTimelineView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeDots();
}

void EventLaneTimelineView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        if (const auto clicked = eventAt(event->position())) {
            emit eventClicked(clicked->id);
        }
    }
    QWidget::mouseReleaseEvent(event);
}

void EventLaneTimelineView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor secondary = secondaryColor(this);
    const QString title = QStringLiteral("Event Timeline");
    if (m_visible.isEmpty()) {
        paintChartTitle(painter, *this, title);
        painter.drawText(QRect(0, kTitleHeight, width(), kEmptyHeight), Qt::AlignCenter,
                         emptyText());
        return;
    }
    paintChartTitle(painter, *this, title,
                    localDateTimeText(m_visible.constFirst().timestamp) + QStringLiteral(" – ") +
                        localDateTimeText(m_visible.constLast().timestamp));

    const QColor text = palette().color(QPalette::Text);
    const QColor rule = withOpacity(secondary, 0.15);
    for (qsizetype lane = 0; lane < m_filteredLanes.size(); ++lane) {
        const WattlogEventKind kind = m_filteredLanes[lane];
        const int top = kTitleHeight + int(lane) * kLaneHeight;
        painter.drawPixmap(kMargin, top + (kLaneHeight - 14) / 2,
                           symbolPixmap(WattlogEventKinds::symbol(kind), 14, kindColor(kind)));
        painter.setPen(text);
        painter.drawText(QRect(kMargin + 20, top, kLabelWidth - 24, kLaneHeight),
                         Qt::AlignLeft | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(WattlogEventKinds::label(kind),
                                                          Qt::ElideRight, kLabelWidth - 24));
        painter.setPen(rule);
        painter.drawLine(QPointF(plotLeft(), top + kLaneHeight / 2.0),
                         QPointF(width() - kMargin, top + kLaneHeight / 2.0));
    }

    // Each lane's dot drawn once, then stamped: far cheaper than an antialiased ellipse each.
    const qreal ratio = painter.device()->devicePixelRatioF();
    const int stampSize = int(kDot) + 2;
    QList<QPixmap> stamps;
    for (WattlogEventKind kind : m_filteredLanes) {
        QPixmap stamp(QSize(stampSize, stampSize) * ratio);
        stamp.setDevicePixelRatio(ratio);
        stamp.fill(Qt::transparent);
        QPainter dotPainter(&stamp);
        dotPainter.setRenderHint(QPainter::Antialiasing);
        dotPainter.setPen(Qt::NoPen);
        dotPainter.setBrush(kindColor(kind));
        dotPainter.drawEllipse(QPointF(stampSize / 2.0, stampSize / 2.0), kDot / 2, kDot / 2);
        stamps.append(stamp);
    }
    std::optional<QPointF> selected;
    // A long history puts many dots on one pixel of a lane: each pixel is drawn once, so a
    // repaint costs at most a dot per pixel column and lane, whatever the number of events.
    const int columns = int(plotWidth()) + 2;
    std::vector<bool> drawn(size_t(columns) * size_t(m_filteredLanes.size()), false);
    for (const Dot& dot : m_dots) {
        if (m_selected == dot.id) {
            selected = dotCenter(dot);
        }
        const int column = std::clamp(int(dot.x), 0, columns - 1);
        const size_t slot = size_t(dot.lane) * size_t(columns) + size_t(column);
        if (drawn[slot]) {
            continue;
        }
        drawn[slot] = true;
        painter.drawPixmap(dotCenter(dot) - QPointF(stampSize / 2.0, stampSize / 2.0),
                           stamps.at(dot.lane));
    }
    if (selected) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(text, 1.5));
        painter.drawEllipse(*selected, kDot / 2 + 3, kDot / 2 + 3);
    }
}

}  // namespace zelvar
