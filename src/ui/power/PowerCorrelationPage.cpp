#include "ui/power/PowerCorrelationPage.h"

#include <QFrame>
#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/power/CorrelationScatterView.h"
#include "ui/power/MetricCardGrid.h"
#include "ui/power/PowerFormat.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

constexpr int kCardColumns = 3;

}  // namespace

PowerCorrelationPage::PowerCorrelationPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                           QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerCorrelationPage"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(sectionHeader(QStringLiteral("Power Correlation"), nullptr, this));
    m_cards = new MetricCardGrid(kCardColumns, this);
    column->addWidget(m_cards);
    QFrame* frame = card(QStringLiteral("scatter"), this);
    auto* inside = new QVBoxLayout(frame);
    inside->setContentsMargins(4, 6, 4, 6);
    m_scatter = new CorrelationScatterView(frame);
    inside->addWidget(m_scatter);
    column->addWidget(frame, 1);

    m_refresh = new ShownRefresh(this, [this] { refresh(); });
    connect(&m_monitor, &BatteryPowerMonitor::recentCorrelationSamplesChanged, m_refresh,
            &ShownRefresh::request);
    refresh();
}

QList<PowerMetricCard*> PowerCorrelationPage::cards() const {
    return m_cards->cards();
}

void PowerCorrelationPage::refresh() {
    const QList<WattlogCorrelationSample>& samples = m_monitor.recentCorrelationSamples();
    // The monitor keeps them newest first.
    const WattlogCorrelationSample newest =
        samples.isEmpty() ? WattlogCorrelationSample{} : samples.constFirst();
    std::optional<QString> swap;
    if (newest.swapUsedMB) {
        swap = QString::number(*newest.swapUsedMB) + QStringLiteral(" MB");
    }
    struct Figure {
        const char* title;
        std::optional<QString> value;
        const char* symbol;
        NamedColor color;
    };
    const Figure figures[] = {
        {"Samples", QString::number(samples.size()), "point.3.connected.trianglepath.dotted",
         NamedColor::Blue},
        {"Power", printfValue(newest.batteryWatts, "%.1f W"), "bolt.fill", NamedColor::Orange},
        {"CPU", printfValue(newest.cpuUtil, "%.0f%%"), "cpu", NamedColor::Purple},
        {"RAM", printfValue(newest.ramUsedPercent, "%.0f%%"), "memorychip", NamedColor::Teal},
        {"Swap", swap, "arrow.up.arrow.down.square", NamedColor::Gray},
        {"Brightness", printfValue(newest.displayBrightnessPercent, "%.0f%%"), "sun.max",
         NamedColor::Yellow},
    };
    QList<MetricCardGrid::Card> cards;
    for (const Figure& figure : figures) {
        cards.append({QString::fromLatin1(figure.title), metricText(figure.value),
                      QString::fromLatin1(figure.symbol), namedColor(figure.color)});
    }
    m_cards->setCards(cards);
    m_scatter->setSamples(samples);
}

}  // namespace zelvar
