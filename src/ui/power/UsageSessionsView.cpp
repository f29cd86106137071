#include "ui/power/UsageSessionsView.h"

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>

#include "ui/Palette.h"
#include "ui/TextFormat.h"
#include "ui/power/ChartParts.h"
#include "ui/power/PowerFormat.h"

namespace zelvar {

namespace {

constexpr int kTitleHeight = kChartTitleHeight;
constexpr int kRowHeight = 22;
constexpr int kMargin = kChartMargin;
constexpr int kEmptyHeight = 50;

}  // namespace

UsageSessionsView::UsageSessionsView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("UsageSessionsView"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QColor UsageSessionsView::barColor(double hours) {
    if (hours < 0.5) {
        return withOpacity(namedColor(NamedColor::Blue), 0.5);
    }
    if (hours < 2) {
        return namedColor(NamedColor::Blue);
    }
    if (hours < 4) {
        return namedColor(NamedColor::Teal);
    }
    if (hours < 8) {
        return namedColor(NamedColor::Green);
    }
    return namedColor(NamedColor::Yellow);
}

void UsageSessionsView::setSessions(const QList<WattlogUsageSession>& sessions,
                                    double averageSessionLength, const QDateTime& now) {
    m_average = averageSessionLength;
    m_longest = 0;
    m_rows.clear();
    m_rows.reserve(sessions.size());
    for (auto it = sessions.crbegin(); it != sessions.crend(); ++it) {
        const double seconds = std::max(0.0, it->duration(now));
        m_longest = std::max(m_longest, seconds);
        m_rows.append({localTimeText(it->start),
                       it->end ? localTimeText(*it->end) : QStringLiteral("Now"), seconds,
                       barColor(seconds / 3600.0)});
    }
    updateGeometry();
    update();
}

QString UsageSessionsView::caption() const {
    return QStringLiteral("%1 sessions, avg %2")
        .arg(m_rows.size())
        .arg(powerDurationText(m_average));
}

QSize UsageSessionsView::sizeHint() const {
    const int body = m_rows.isEmpty() ? kEmptyHeight : int(m_rows.size()) * kRowHeight;
    return {600, kTitleHeight + body + 6};
}

void UsageSessionsView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor secondary = secondaryColor(this);
    const QColor text = palette().color(QPalette::Text);
    const QString title = QStringLiteral("Usage Sessions");
    if (m_rows.isEmpty()) {
        paintChartTitle(painter, *this, title);
        painter.drawText(QRect(0, kTitleHeight, width(), kEmptyHeight), Qt::AlignCenter,
                         QStringLiteral("No sessions detected"));
        return;
    }
    paintChartTitle(painter, *this, title, caption());

    painter.setFont(monospacedDigits(captionFont()));
    const QFontMetrics metrics = painter.fontMetrics();
    const int timeWidth = metrics.horizontalAdvance(QStringLiteral("00:00 PM – 00:00 PM")) + 8;
    const int durationWidth = metrics.horizontalAdvance(QStringLiteral("00d 00h")) + 8;
    const int barLeft = kMargin + timeWidth;
    const double barSpace = std::max(10, width() - barLeft - durationWidth - 2 * kMargin);
    // Only the rows that the paint event asks for: a long history has thousands.
    const int first = std::max(0, (event->rect().top() - kTitleHeight) / kRowHeight);
    const int last =
        std::min(int(m_rows.size()) - 1, (event->rect().bottom() - kTitleHeight) / kRowHeight);
    for (int i = first; i <= last; ++i) {
        const Row& row = m_rows.at(i);
        const int top = kTitleHeight + i * kRowHeight;
        painter.setPen(text);
        painter.drawText(QRect(kMargin, top, timeWidth, kRowHeight),
                         Qt::AlignLeft | Qt::AlignVCenter,
                         row.start + QStringLiteral(" – ") + row.end);
        const double fraction = m_longest > 0 ? row.seconds / m_longest : 0;
        painter.setPen(Qt::NoPen);
        painter.setBrush(withOpacity(secondary, 0.12));
        const QRectF track(barLeft, top + kRowHeight / 2.0 - 4, barSpace, 8);
        painter.drawRoundedRect(track, 4, 4);
        painter.setBrush(row.barColor);
        painter.drawRoundedRect(QRectF(track.left(), track.top(),
                                       std::max(8.0, track.width() * fraction), track.height()),
                                4, 4);
        painter.setPen(secondary);
        painter.drawText(QRect(width() - kMargin - durationWidth, top, durationWidth, kRowHeight),
                         Qt::AlignRight | Qt::AlignVCenter, powerDurationText(row.seconds));
    }
}

}  // namespace zelvar
