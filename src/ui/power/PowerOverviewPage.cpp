#include "ui/power/PowerOverviewPage.h"

#include <QHash>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <cmath>

#include "power/BatteryPowerMonitor.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/power/MetricCardGrid.h"
#include "ui/power/PowerFormat.h"
#include "ui/power/PowerMetricCard.h"
#include "ui/power/PowerViewState.h"
#include "ui/power/WattlogEventRow.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

constexpr int kGridColumns = 5;

}  // namespace

PowerOverviewPage::PowerOverviewPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                     QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerOverviewPage"));
    QVBoxLayout* column = scrollingColumn(this);
    QWidget* content = column->parentWidget();
    column->setSpacing(6);

    m_metrics = new MetricCardGrid(kGridColumns, content);
    column->addWidget(m_metrics);

    m_healthSection = new QWidget(content);
    auto* health = new QVBoxLayout(m_healthSection);
    health->setContentsMargins(0, 0, 0, 0);
    health->addWidget(sectionHeader(QStringLiteral("System Health"), nullptr, m_healthSection));
    m_health = new MetricCardGrid(kGridColumns, m_healthSection);
    health->addWidget(m_health);
    m_healthSection->hide();
    column->addWidget(m_healthSection);

    m_eventsCaption = textLabel(QString(), captionFont(), content, secondaryColor(content));
    column->addWidget(sectionHeader(QStringLiteral("Recent Events"), m_eventsCaption, content));
    m_eventsStack = new QStackedWidget(content);
    m_events = new QWidget(m_eventsStack);
    auto* rows = new QVBoxLayout(m_events);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    m_eventsStack->addWidget(m_events);
    m_eventsStack->addWidget(new EmptyStateView(QStringLiteral("bolt.horizontal.circle"),
                                                QStringLiteral("No Wattlog events loaded"),
                                                m_eventsStack));
    column->addWidget(m_eventsStack);
    column->addStretch(1);

    auto* metrics = new ShownRefresh(
        this, [this] { showMetrics(m_monitor.snapshot(), m_monitor.derivedData()); });
    auto* events = new ShownRefresh(this, [this] { showEvents(m_monitor.powerEvents()); });
    connect(&m_monitor, &BatteryPowerMonitor::snapshotChanged, metrics, &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::derivedDataChanged, metrics, &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::powerEventsChanged, events, &ShownRefresh::request);
    showMetrics(m_monitor.snapshot(), m_monitor.derivedData());
    showEvents(m_monitor.powerEvents());
}

void PowerOverviewPage::showMetrics(const BatteryPowerSnapshot& snapshot,
                                    const WattlogDerivedData& derived) {
    const WattlogStats& stats = derived.stats;
    const QColor accent = namedColor(NamedColor::Blue);
    const QList<MetricCardGrid::Card> metrics{
        {snapshot.powerFlowTitle() + QStringLiteral(" Rate"), snapshot.powerRateText(),
         snapshot.isDischarging() ? QStringLiteral("battery.25") : QStringLiteral("bolt.fill"),
         snapshot.isDischarging() ? namedColor(NamedColor::Orange) : namedColor(NamedColor::Green)},
        {QStringLiteral("Total Awake"), powerDurationText(stats.totalAwakeTime),
         QStringLiteral("sun.max.fill"), namedColor(NamedColor::Yellow)},
        {QStringLiteral("Total Sleep"), powerDurationText(stats.totalSleepTime),
         QStringLiteral("moon.fill"), namedColor(NamedColor::Indigo)},
        {QStringLiteral("Avg Session"), powerDurationText(stats.averageSessionLength),
         QStringLiteral("clock"), accent},
        {QStringLiteral("Longest Session"), powerDurationText(stats.longestSession),
         QStringLiteral("trophy"), namedColor(NamedColor::Orange)},
        {QStringLiteral("Lid Closes"), QString::number(stats.lidCloseCount),
         QStringLiteral("laptopcomputer.slash"), namedColor(NamedColor::Purple)},
        {QStringLiteral("Reboots"), QString::number(stats.rebootCount),
         QStringLiteral("arrow.clockwise.circle"), namedColor(NamedColor::Gray)},
        {QStringLiteral("Charge Cycles"), QString::number(stats.batteryChargeCycles),
         QStringLiteral("arrow.2.circlepath"), namedColor(NamedColor::Teal)},
        {QStringLiteral("Time on AC"),
         QStringLiteral("%1%").arg(std::lround(stats.timeOnACRatio * 100.0)),
         QStringLiteral("bolt.fill"), accent},
        {QStringLiteral("Events"), QString::number(stats.eventCount), QStringLiteral("list.bullet"),
         namedColor(NamedColor::Mint)},
    };
    m_metrics->setCards(metrics);

    const WattlogHealthCounts& counts = derived.systemHealthCounts;
    QList<MetricCardGrid::Card> health;
    const auto count = [&health](int value, const QString& title, const QString& symbol,
                                 NamedColor color) {
        if (value >= 1) {
            health.append({title, QString::number(value), symbol, namedColor(color)});
        }
    };
    count(counts.panics, QStringLiteral("Kernel Panics"),
          QStringLiteral("exclamationmark.triangle.fill"), NamedColor::Red);
    count(counts.jetsam, QStringLiteral("OOM Kills"), QStringLiteral("memorychip.fill"),
          NamedColor::Purple);
    count(counts.crashes, QStringLiteral("App Crashes"), QStringLiteral("ladybug.fill"),
          NamedColor::Orange);
    count(counts.hangs, QStringLiteral("App Hangs"), QStringLiteral("clock.badge.exclamationmark"),
          NamedColor::Yellow);
    m_healthSection->setHidden(health.isEmpty());
    m_health->setCards(health);
}

void PowerOverviewPage::showEvents(const QList<WattlogEvent>& events) {
    m_eventsCaption->setText(QStringLiteral("%1 loaded").arg(events.size()));
    m_eventsStack->setCurrentIndex(events.isEmpty() ? 1 : 0);
    // A live poll adds an event or two at the top: the rows of events still among the newest
    // are moved rather than made again.
    QHash<QUuid, WattlogEventRow*> previous;
    for (WattlogEventRow* row : std::as_const(m_eventRows)) {
        previous.insert(row->wattlogEvent().id, row);
    }
    QList<WattlogEventRow*> rows;
    const qsizetype oldest = std::max<qsizetype>(0, events.size() - kRecentEvents);
    for (qsizetype i = events.size() - 1; i >= oldest; --i) {
        const WattlogEvent& event = events.at(i);
        WattlogEventRow* row = previous.take(event.id);
        if (row == nullptr || row->wattlogEvent() != event) {
            delete row;
            row = new WattlogEventRow(event, false, m_events);
        }
        rows.append(row);
    }
    qDeleteAll(previous);
    QLayout* layout = m_events->layout();
    while (QLayoutItem* item = layout->takeAt(0)) {
        delete item;
    }
    for (WattlogEventRow* row : std::as_const(rows)) {
        layout->addWidget(row);
    }
    m_eventRows = rows;
}

QList<PowerMetricCard*> PowerOverviewPage::metricCards() const {
    return m_metrics->cards();
}

bool PowerOverviewPage::isHealthShown() const {
    return !m_healthSection->isHidden();
}

QList<PowerMetricCard*> PowerOverviewPage::healthCards() const {
    return m_health->cards();
}

QString PowerOverviewPage::recentEventsCaption() const {
    return m_eventsCaption->text();
}

QList<WattlogEventRow*> PowerOverviewPage::recentEventRows() const {
    return m_eventRows;
}

}  // namespace zelvar
