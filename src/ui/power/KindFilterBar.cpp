#include "ui/power/KindFilterBar.h"

#include <QMouseEvent>
#include <QPainter>

#include "ui/Palette.h"
#include "ui/power/PowerFormat.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

namespace {

constexpr int kChipHeight = 22;
constexpr int kSpacing = 6;
constexpr int kPadding = 10;
constexpr int kDot = 7;

}  // namespace

KindFilterBar::KindFilterBar(PowerViewState& state, QWidget* parent)
    : QWidget(parent), m_state(state) {
    setObjectName(QStringLiteral("KindFilterBar"));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setCursor(Qt::PointingHandCursor);
    connect(&m_state, &PowerViewState::visibleKindsChanged, this, qOverload<>(&QWidget::update));
}

QList<QRect> KindFilterBar::layoutChips(int width) const {
    const QFontMetrics metrics(captionFont());
    QList<QRect> chips;
    int x = 0;
    int y = 0;
    for (WattlogEventKind kind : WattlogEventKinds::all()) {
        const int chipWidth =
            kPadding * 2 + kDot + 5 + metrics.horizontalAdvance(WattlogEventKinds::label(kind));
        if (x > 0 && x + chipWidth > width) {
            x = 0;
            y += kChipHeight + kSpacing;
        }
        chips.append(QRect(x, y, chipWidth, kChipHeight));
        x += chipWidth + kSpacing;
    }
    return chips;
}

QRect KindFilterBar::chipRect(WattlogEventKind kind) const {
    return layoutChips(width()).value(WattlogEventKinds::all().indexOf(kind));
}

std::optional<WattlogEventKind> KindFilterBar::kindAt(const QPoint& point) const {
    const QList<QRect> chips = layoutChips(width());
    for (qsizetype i = 0; i < chips.size(); ++i) {
        if (chips[i].contains(point)) {
            return WattlogEventKinds::all().at(i);
        }
    }
    return std::nullopt;
}

int KindFilterBar::heightForWidth(int width) const {
    return layoutChips(width).constLast().bottom() + 1;
}

QSize KindFilterBar::sizeHint() const {
    return {600, heightForWidth(600)};
}

QSize KindFilterBar::minimumSizeHint() const {
    return {160, kChipHeight};
}

void KindFilterBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(captionFont());
    const QList<QRect> chips = layoutChips(width());
    const QColor secondary = secondaryColor(this);
    const QColor text = palette().color(QPalette::Text);
    for (qsizetype i = 0; i < chips.size(); ++i) {
        const WattlogEventKind kind = WattlogEventKinds::all().at(i);
        const bool shown = m_state.visibleKinds().contains(kind);
        const QColor color = shown ? kindColor(kind) : secondary;
        const QRectF chip = QRectF(chips[i]).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.setPen(QPen(withOpacity(color, shown ? 0.9 : 0.4), 1));
        painter.setBrush(shown ? withOpacity(color, 0.18) : Qt::transparent);
        painter.drawRoundedRect(chip, chip.height() / 2, chip.height() / 2);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(
            QRectF(chip.left() + kPadding, chip.center().y() - kDot / 2.0, kDot, kDot));
        painter.setPen(shown ? text : secondary);
        painter.drawText(chip.adjusted(kPadding + kDot + 5, 0, -kPadding + 2, 0),
                         Qt::AlignVCenter | Qt::AlignLeft, WattlogEventKinds::label(kind));
    }
}

void KindFilterBar::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        if (const auto kind = kindAt(event->position().toPoint())) {
            m_state.toggleKind(*kind);
        }
    }
    QWidget::mouseReleaseEvent(event);
}

}  // namespace zelvar
