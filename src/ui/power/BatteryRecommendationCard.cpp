#include "ui/power/BatteryRecommendationCard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/Symbols.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {
constexpr int kSymbolSize = 28;
}

BatteryRecommendationCard::BatteryRecommendationCard(QWidget* parent) : QFrame(parent) {
    makeCard(this, QStringLiteral("BatteryRecommendationCard"));
    m_symbol = new QLabel(this);
    QVBoxLayout* texts = symbolBesideTexts(this, m_symbol);
    m_title = textLabel(QString(), headlineFont(), this);
    m_detail = textLabel(QString(), QFont(), this);
    m_facts = textLabel(QString(), captionFont(), this, secondaryColor(this));
    for (QLabel* label : {m_title, m_detail, m_facts}) {
        label->setWordWrap(true);
        texts->addWidget(label);
    }
}

void BatteryRecommendationCard::setInputs(const BatteryPowerSnapshot& snapshot,
                                          const std::optional<WattlogBatterySample>& latestSample,
                                          const QList<WattlogEvent>& acEvents,
                                          const QDateTime& now) {
    BatteryRecommendation next = batteryRecommendation(snapshot, latestSample, acEvents, now);
    if (next == m_shown && !m_title->text().isEmpty()) {
        return;
    }
    m_shown = std::move(next);
    m_symbol->setPixmap(symbolPixmap(m_shown.symbol, kSymbolSize, namedColor(m_shown.color)));
    m_title->setText(m_shown.title);
    m_detail->setText(m_shown.detail);
    m_facts->setText(
        QStringList{m_shown.state, m_shown.cycle, m_shown.health}.join(QStringLiteral("   ·   ")));
}

}  // namespace zelvar
