#include "ui/power/WattlogEventRow.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "ui/Palette.h"
#include "ui/TextFormat.h"
#include "ui/power/PowerFormat.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

// The power source as a small rounded tag: blue on AC, orange on battery.
QLabel* sourceCapsule(WattlogPowerSource source, QWidget* parent) {
    const QColor color =
        namedColor(source == WattlogPowerSource::AC ? NamedColor::Blue : NamedColor::Orange);
    QLabel* capsule =
        textLabel(WattlogEventKinds::sourceText(source), caption2Font(), parent, color);
    capsule->setObjectName(QStringLiteral("source"));
    capsule->setStyleSheet(QStringLiteral("QLabel { background: %1; border-radius: 7px; "
                                          "padding: 0px 6px; }")
                               .arg(styleColor(withOpacity(color, 0.15))));
    return capsule;
}

}  // namespace

WattlogEventRow::WattlogEventRow(const WattlogEvent& event, bool showRaw, QWidget* parent)
    : QWidget(parent), m_event(event) {
    setObjectName(QStringLiteral("WattlogEventRow"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 4, 8, 4);
    column->setSpacing(2);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    const QColor color = kindColor(event.kind);
    row->addWidget(symbolLabel(WattlogEventKinds::symbol(event.kind), 16, color, this));

    auto* names = new QVBoxLayout;
    names->setSpacing(0);
    const QString kind = WattlogEventKinds::label(event.kind);
    names->addWidget(textLabel(kind, semibold(QFont()), this));
    QLabel* detail = textLabel(event.detail, captionFont(), this, secondaryColor(this));
    detail->setWordWrap(true);
    names->addWidget(detail);
    row->addLayout(names, 1);
    m_texts << kind << event.detail;

    const QString time = localDateTimeText(event.timestamp);
    row->addWidget(textLabel(time, monospacedDigits(captionFont()), this, secondaryColor(this)));
    m_texts << time;
    if (event.batteryPercent) {
        const QString percent = QString::number(*event.batteryPercent) + QLatin1Char('%');
        row->addWidget(textLabel(percent, monospacedDigits(captionFont()), this));
        m_texts << percent;
    }
    if (event.powerSource) {
        row->addWidget(sourceCapsule(*event.powerSource, this));
        m_texts << WattlogEventKinds::sourceText(*event.powerSource);
    }
    column->addLayout(row);

    if (showRaw) {
        m_raw = textLabel(event.rawLine, QFont(QStringLiteral("monospace")), this);
        m_raw->setObjectName(QStringLiteral("raw"));
        m_raw->setWordWrap(true);
        m_raw->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_raw->setStyleSheet(QStringLiteral("QLabel { background: %1; border-radius: 4px; "
                                            "padding: 4px; }")
                                 .arg(styleColor(withOpacity(secondaryColor(this), 0.08))));
        column->addWidget(m_raw);
    }
}

QStringList WattlogEventRow::texts() const {
    return m_texts;
}

void WattlogEventRow::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        emit clicked();
    }
    QWidget::mouseReleaseEvent(event);
}

}  // namespace zelvar
