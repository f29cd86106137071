#include "ui/widgets/LimitSlider.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <cmath>

#include "ui/Palette.h"
#include "ui/TextFormat.h"

namespace zelvar {

namespace {

// Whole steps that fit from the lower end; one more position reaches the upper end itself.
int lastPosition() {
    const double steps =
        std::floor((LimitSlider::kMaximumMB - LimitSlider::kMinimumMB) / LimitSlider::kStepMB);
    const bool endsOnStep =
        LimitSlider::kMinimumMB + steps * LimitSlider::kStepMB >= LimitSlider::kMaximumMB;
    return static_cast<int>(steps) + (endsOnStep ? 0 : 1);
}

}  // namespace

LimitSlider::LimitSlider(double valueMB, int labelWidth, QWidget* parent)
    : QWidget(parent),
      m_value(valueMB),
      m_slider(new QSlider(Qt::Horizontal, this)),
      m_label(new QLabel(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_slider->setRange(0, lastPosition());
    m_slider->setSingleStep(1);
    m_slider->setPageStep(10);
    {
        // Placing the knob is not a move: the value stays as given until the user moves it.
        const QSignalBlocker blocker(m_slider);
        m_slider->setValue(positionFor(valueMB));
    }
    m_label->setFixedWidth(labelWidth);
    m_label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_label->setFont(monospacedDigits(font()));
    m_label->setText(valueText());
    layout->addWidget(m_slider, 1);
    layout->addWidget(m_label);
    connect(m_slider, &QSlider::valueChanged, this, &LimitSlider::setFromPosition);
}

QString LimitSlider::valueText() const {
    return wholeMegabytes(m_value);
}

double LimitSlider::valueAtPosition(int position) {
    return std::min(kMaximumMB, kMinimumMB + position * kStepMB);
}

int LimitSlider::positionFor(double megabytes) {
    if (!std::isfinite(megabytes)) {
        return 0;
    }
    const double steps = std::round((megabytes - kMinimumMB) / kStepMB);
    return static_cast<int>(std::clamp(steps, 0.0, static_cast<double>(lastPosition())));
}

void LimitSlider::setFromPosition(int position) {
    m_value = valueAtPosition(position);
    m_label->setText(valueText());
    emit valueChanged(m_value);
}

}  // namespace zelvar
