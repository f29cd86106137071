#include "ui/power/PowerBatteryPage.h"

#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/ShownRefresh.h"
#include "ui/power/BatteryLevelChart.h"
#include "ui/power/BatteryRecommendationCard.h"
#include "ui/power/LivePowerDetailCard.h"
#include "ui/power/PowerSourceDistributionView.h"
#include "ui/power/PowerViewState.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

PowerBatteryPage::PowerBatteryPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                   QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerBatteryPage"));
    QVBoxLayout* column = scrollingColumn(this);
    QWidget* content = column->parentWidget();
    column->setSpacing(10);
    m_live = new LivePowerDetailCard([this] { m_monitor.refreshNow(); }, content);
    m_recommendation = new BatteryRecommendationCard(content);
    m_chart = new BatteryLevelChart(content);
    m_chart->setMinimumHeight(260);
    m_distribution = new PowerSourceDistributionView(content);
    for (QWidget* part : {static_cast<QWidget*>(m_live), static_cast<QWidget*>(m_recommendation),
                          static_cast<QWidget*>(m_chart), static_cast<QWidget*>(m_distribution)}) {
        column->addWidget(part);
    }
    column->addStretch(1);

    auto* reading = new ShownRefresh(this, [this] { refreshReading(); });
    auto* history = new ShownRefresh(this, [this] { refreshHistory(); });
    connect(&m_monitor, &BatteryPowerMonitor::snapshotChanged, reading, &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::recentBatterySamplesChanged, reading,
            &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::powerEventsChanged, history, &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::derivedDataChanged, history, &ShownRefresh::request);
    refreshHistory();
}

void PowerBatteryPage::refreshReading() {
    const BatteryPowerSnapshot& snapshot = m_monitor.snapshot();
    m_live->setSnapshot(snapshot);
    const QList<WattlogBatterySample>& samples = m_monitor.recentBatterySamples();
    std::optional<WattlogBatterySample> latest;
    if (!samples.isEmpty()) {
        latest = samples.first();
    }
    // The reading's own time is the monitor's "now" as of the reading.
    m_recommendation->setInputs(snapshot, latest, m_acEvents, snapshot.timestamp);
}

void PowerBatteryPage::refreshHistory() {
    m_acEvents.clear();
    for (const WattlogEvent& event : m_monitor.powerEvents()) {
        if (event.kind == WattlogEventKind::AcConnected) {
            m_acEvents.append(event);
        }
    }
    const WattlogDerivedData& derived = m_monitor.derivedData();
    m_chart->setData(derived.batteryPoints, derived.batteryTimelineEvents);
    m_distribution->setStats(derived.stats);
    refreshReading();
}

}  // namespace zelvar
