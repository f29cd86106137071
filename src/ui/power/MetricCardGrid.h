#pragma once

#include <QColor>
#include <QList>
#include <QString>
#include <QWidget>

namespace zelvar {

class PowerMetricCard;

// Figures of the Power tab as a grid of cards, in columns of one width so that a long value
// wraps in its card instead of widening its column. Shown again, a card whose value changes is
// updated in place and one whose title, symbol or colour changes is replaced alone, so that a
// refresh every few seconds makes no new widgets.
class MetricCardGrid final : public QWidget {
    Q_OBJECT

public:
    struct Card {
        QString title;
        QString value;
        QString symbol;
        QColor color;
        bool operator==(const Card&) const = default;
    };

    explicit MetricCardGrid(int columns, QWidget* parent = nullptr);

    void setCards(const QList<Card>& cards);
    // In the order given, left to right and then down.
    const QList<PowerMetricCard*>& cards() const { return m_cards; }

private:
    int m_columns;
    QList<Card> m_shown;
    QList<PowerMetricCard*> m_cards;
};

}  // namespace zelvar
