#include "ui/power/MetricCardGrid.h"

#include <QGridLayout>

#include "ui/power/PowerMetricCard.h"

namespace zelvar {

MetricCardGrid::MetricCardGrid(int columns, QWidget* parent) : QWidget(parent), m_columns(columns) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    for (int column = 0; column < columns; ++column) {
        layout->setColumnStretch(column, 1);
    }
}

void MetricCardGrid::setCards(const QList<Card>& cards) {
    auto* layout = static_cast<QGridLayout*>(this->layout());
    const qsizetype count = std::max(cards.size(), m_shown.size());
    const auto sameLook = [](const Card& a, const Card& b) {
        return a.title == b.title && a.symbol == b.symbol && a.color == b.color;
    };
    for (qsizetype i = 0; i < count; ++i) {
        const bool kept = i < cards.size() && i < m_shown.size();
        if (kept && cards.at(i) == m_shown.at(i)) {
            continue;
        }
        if (kept && sameLook(cards.at(i), m_shown.at(i))) {
            m_cards[i]->setValue(cards.at(i).value);
            continue;
        }
        if (i < m_shown.size()) {
            delete m_cards.at(i);
        }
        if (i < cards.size()) {
            const Card& card = cards.at(i);
            auto* made = new PowerMetricCard(card.title, card.value, card.symbol, card.color, this);
            layout->addWidget(made, int(i / m_columns), int(i % m_columns));
            if (i < m_cards.size()) {
                m_cards[i] = made;
            } else {
                m_cards.append(made);
            }
        }
    }
    m_cards.resize(cards.size());
    m_shown = cards;
}

}  // namespace zelvar
