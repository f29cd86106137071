#pragma once

#include <QWidget>

class QLabel;
class QSlider;

namespace zelvar {

// The RAM limit slider of the limit sheets, with its value beside it as "<n> MB". It moves
// from 100 to 32,768 megabytes in steps of 100 counted from the lower end. A starting value
// off the steps (an existing limit of 150) is shown as it is until the slider is moved.
class LimitSlider final : public QWidget {
    Q_OBJECT

public:
    static constexpr double kMinimumMB = 100.0;
    static constexpr double kMaximumMB = 32768.0;
    static constexpr double kStepMB = 100.0;

    // `labelWidth` is the width of the value beside the slider, in points.
    LimitSlider(double valueMB, int labelWidth, QWidget* parent = nullptr);

    double value() const { return m_value; }
    QString valueText() const;
    // The slider itself, for keyboard focus and for tests that move it.
    QSlider* slider() const { return m_slider; }

    // The value of a slider position: the lower end plus whole steps, the last position being
    // the upper end.
    static double valueAtPosition(int position);
    // The position nearest to `megabytes`, within the range.
    static int positionFor(double megabytes);

signals:
    void valueChanged(double megabytes);

private:
    void setFromPosition(int position);

    double m_value;
    QSlider* m_slider;
    QLabel* m_label;
};

}  // namespace zelvar
