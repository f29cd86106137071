#include "ui/power/EventLaneTimelineView.h"

#include <QHelpEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>

#include "ui/Palette.h"
#include "ui/Symbols.h"
#include "ui/power/PowerFormat.h"

namespace zelvar {

namespace {

constexpr int kTitleHeight = 26;
constexpr int kLaneHeight = 22;
constexpr int kLabelWidth = 150;
constexpr int kMargin = 10;
constexpr double kDot = 7.0;
constexpr int kEmptyHeight = 70;

QString tooltipText(const WattlogEvent& event) {
    QString text = WattlogEventKinds::label(event.kind) + QStringLiteral(" · ") +
                   QLocale().toString(event.timestamp.toLocalTime(), QLocale::ShortFormat);
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
    // The nearest dot within a little more than its radius, so small dots stay easy to hit.
    double best = (kDot / 2 + 3) * (kDot / 2 + 3);
    qsizetype found = -1;
    for (qsizetype i = 0; i < m_dots.size(); ++i) {
        const QPointF delta = dotCenter(m_dots[i]) - point;
        const double distance = QPointF::dotProduct(delta, delta);
        if (distance <= best) {
            best = distance;
            found = i;
        }
    }
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
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        if (const auto hovered = eventAt(help->pos())) {
            QToolTip::showText(help->globalPos(), tooltipText(*hovered), this);
        } else {
            QToolTip::hideText();
            event->ignore();
        }
        return true;
    }
    return QWidget::event(event);
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
    painter.setFont(headlineFont());
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(QRect(kMargin, 0, width() - 2 * kMargin, kTitleHeight - 4),
                     Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Event Timeline"));
    painter.setFont(captionFont());
    if (m_visible.isEmpty()) {
        painter.setPen(secondary);
        painter.drawText(QRect(0, kTitleHeight, width(), kEmptyHeight), Qt::AlignCenter,
                         emptyText());
        return;
    }
    painter.setPen(secondary);
    const QDateTime first = m_visible.constFirst().timestamp.toLocalTime();
    const QDateTime last = m_visible.constLast().timestamp.toLocalTime();
    const QString range = QLocale().toString(first, QLocale::ShortFormat) + QStringLiteral(" – ") +
                          QLocale().toString(last, QLocale::ShortFormat);
    painter.drawText(QRect(kMargin, 0, width() - 2 * kMargin, kTitleHeight - 4),
                     Qt::AlignRight | Qt::AlignVCenter, range);

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

    painter.setPen(Qt::NoPen);
    QList<QColor> laneColors;
    for (WattlogEventKind kind : m_filteredLanes) {
        laneColors.append(kindColor(kind));
    }
    std::optional<QPointF> selected;
    for (const Dot& dot : m_dots) {
        const QPointF center = dotCenter(dot);
        painter.setBrush(laneColors.at(dot.lane));
        painter.drawEllipse(center, kDot / 2, kDot / 2);
        if (m_selected == dot.id) {
            selected = center;
        }
    }
    if (selected) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(text, 1.5));
        painter.drawEllipse(*selected, kDot / 2 + 3, kDot / 2 + 3);
    }
}

}  // namespace zelvar
