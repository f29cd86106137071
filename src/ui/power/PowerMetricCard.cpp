#include "ui/power/PowerMetricCard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/Palette.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

PowerMetricCard::PowerMetricCard(const QString& title, const QString& value,
                                 const QString& systemImage, const QColor& color, QWidget* parent)
    : QFrame(parent), m_title(title), m_value(value), m_systemImage(systemImage), m_color(color) {
    makeCard(this, QStringLiteral("PowerMetricCard"));
    setMinimumWidth(150);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(10, 8, 10, 8);
    column->setSpacing(2);
    auto* top = new QHBoxLayout;
    top->addWidget(symbolLabel(systemImage, 16, color, this));
    top->addStretch(1);
    column->addLayout(top);
    m_valueLabel = textLabel(value, monospacedDigits(semibold(titleFont())), this);
    m_valueLabel->setObjectName(QStringLiteral("value"));
    m_valueLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A long value (the battery's rate) wraps rather than being cut off by a narrow card.
    m_valueLabel->setWordWrap(true);
    column->addWidget(m_valueLabel);
    column->addWidget(textLabel(title, captionFont(), this, secondaryColor(this)));
}

void PowerMetricCard::setValue(const QString& value) {
    m_value = value;
    m_valueLabel->setText(value);
}

}  // namespace zelvar
