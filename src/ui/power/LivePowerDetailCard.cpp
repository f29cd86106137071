#include "ui/power/LivePowerDetailCard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "ui/Palette.h"
#include "ui/Symbols.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {
constexpr int kSymbolSize = 32;
constexpr double kFullShare = 100.0;
}  // namespace

LivePowerDetailCard::LivePowerDetailCard(std::function<void()> onRefresh, QWidget* parent)
    : QFrame(parent) {
    makeCard(this, QStringLiteral("LivePowerDetailCard"));
    m_symbol = new QLabel(this);
    QVBoxLayout* texts = symbolBesideTexts(this, m_symbol);
    m_title = textLabel(QString(), headlineFont(), this);
    m_rate = textLabel(QString(), monospacedDigits(semibold(titleFont())), this);
    m_detail = textLabel(QString(), captionFont(), this, secondaryColor(this));
    m_bar = new FillBar(0.0, namedColor(NamedColor::Orange), 6, this);
    m_share = textLabel(QString(), captionFont(), this, secondaryColor(this));
    for (QWidget* widget : {static_cast<QWidget*>(m_title), static_cast<QWidget*>(m_rate),
                            static_cast<QWidget*>(m_detail), static_cast<QWidget*>(m_bar),
                            static_cast<QWidget*>(m_share)}) {
        texts->addWidget(widget);
    }
    m_rate->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_refresh = new QToolButton(this);
    m_refresh->setIcon(symbolIcon(QStringLiteral("arrow.clockwise")));
    m_refresh->setAutoRaise(true);
    m_refresh->setToolTip(QStringLiteral("Refresh battery reading"));
    connect(m_refresh, &QToolButton::clicked, this, [onRefresh = std::move(onRefresh)] {
        if (onRefresh) {
            onRefresh();
        }
    });
    static_cast<QHBoxLayout*>(layout())->addWidget(m_refresh, 0, Qt::AlignTop);
    setSnapshot(BatteryPowerSnapshot::unavailable());
}

void LivePowerDetailCard::setSnapshot(const BatteryPowerSnapshot& snapshot) {
    const bool discharging = snapshot.isDischarging();
    const NamedColor color = discharging                 ? NamedColor::Orange
                             : snapshot.isChargingRate() ? NamedColor::Green
                                                         : NamedColor::Blue;
    m_symbolName = discharging ? QStringLiteral("battery.25") : QStringLiteral("bolt.fill");
    m_symbol->setPixmap(symbolPixmap(m_symbolName, kSymbolSize, namedColor(color)));
    m_title->setText(QStringLiteral("Live %1 Rate").arg(snapshot.powerFlowTitle()));
    m_rate->setText(snapshot.powerRateText());
    m_detail->setText(snapshot.detailText());

    const std::optional<qint64> share = snapshot.amperagePercent();
    const bool showShare = share.has_value() && snapshot.hasActivePowerRate();
    m_bar->setVisible(showShare);
    m_share->setVisible(showShare);
    if (showShare) {
        m_bar->setFraction(double(*share) / kFullShare, namedColor(color));
        m_share->setText(snapshot.signedAmperagePercentText().value_or(QString()) +
                         QStringLiteral(" of max discharge rate"));
    }
}

QStringList LivePowerDetailCard::texts() const {
    QStringList shown{m_title->text(), m_rate->text(), m_detail->text()};
    if (!m_share->isHidden()) {
        shown << m_share->text();
    }
    return shown;
}

}  // namespace zelvar
