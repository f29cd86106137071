#pragma once

#include <QColor>
#include <QFrame>
#include <QString>

class QLabel;

namespace zelvar {

// One figure of the Power tab: a symbol in the card's colour, the value large and the title
// small below it.
class PowerMetricCard final : public QFrame {
    Q_OBJECT

public:
    PowerMetricCard(const QString& title, const QString& value, const QString& systemImage,
                    const QColor& color, QWidget* parent = nullptr);

    QString title() const { return m_title; }
    QString value() const { return m_value; }
    // A figure that changes with each reading is updated in place.
    void setValue(const QString& value);
    QString systemImage() const { return m_systemImage; }
    QColor color() const { return m_color; }

private:
    QString m_title;
    QString m_value;
    QString m_systemImage;
    QColor m_color;
    QLabel* m_valueLabel;
};

}  // namespace zelvar
