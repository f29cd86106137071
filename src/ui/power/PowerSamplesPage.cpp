#include "ui/power/PowerSamplesPage.h"

#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTableView>
#include <QVBoxLayout>

#include "power/BatteryPowerMonitor.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/power/PowerSampleText.h"
#include "ui/power/PowerViewState.h"
#include "ui/power/SampleTableModel.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

struct SampleTable {
    SampleTableModel* model;
    QLabel* caption;
    QStackedWidget* stack;
};

// Each sample as its cells, keyed by its time, newest first as the monitor holds them.
template <typename Sample>
void fill(const SampleTable& table, const QList<Sample>& samples,
          QStringList (*cells)(const Sample&)) {
    QList<QStringList> rows;
    QList<double> keys;
    rows.reserve(samples.size());
    keys.reserve(samples.size());
    for (const Sample& sample : samples) {
        rows.append(cells(sample));
        keys.append(sample.ts);
    }
    table.caption->setText(QStringLiteral("%1 latest").arg(rows.size()));
    table.stack->setCurrentIndex(rows.isEmpty() ? 1 : 0);
    table.model->setRows(rows, keys);
}

}  // namespace

PowerSamplesPage::PowerSamplesPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                   QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerSamplesPage"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    m_battery = addSection(
        QStringLiteral("Battery Samples"),
        {QStringLiteral("Time"), QStringLiteral("%"), QStringLiteral("Power"),
         QStringLiteral("Source"), QStringLiteral("Temp"), QStringLiteral("Cycles")},
        QStringLiteral("battery.0"), QStringLiteral("Waiting for daemon battery samples"));
    m_correlation =
        addSection(QStringLiteral("Power Correlation"),
                   {QStringLiteral("Time"), QStringLiteral("Power"), QStringLiteral("CPU"),
                    QStringLiteral("RAM"), QStringLiteral("Proc"), QStringLiteral("Net"),
                    QStringLiteral("Flow")},
                   QStringLiteral("chart.xyaxis.line"),
                   QStringLiteral("Waiting for daemon correlation samples"));

    auto* battery =
        new ShownRefresh(this, [this] { showBatterySamples(m_monitor.recentBatterySamples()); });
    auto* correlation = new ShownRefresh(
        this, [this] { showCorrelationSamples(m_monitor.recentCorrelationSamples()); });
    connect(&m_monitor, &BatteryPowerMonitor::recentBatterySamplesChanged, battery,
            &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::recentCorrelationSamplesChanged, correlation,
            &ShownRefresh::request);
    showBatterySamples(m_monitor.recentBatterySamples());
    showCorrelationSamples(m_monitor.recentCorrelationSamples());
}

PowerSamplesPage::Section PowerSamplesPage::addSection(const QString& title,
                                                       const QStringList& headers,
                                                       const QString& symbol,
                                                       const QString& emptyMessage) {
    Section section;
    section.caption = textLabel(QString(), captionFont(), this, secondaryColor(this));
    layout()->addWidget(sectionHeader(title, section.caption, this));
    section.stack = new QStackedWidget(this);
    section.model = new SampleTableModel(headers, this);
    section.table = new QTableView(section.stack);
    section.table->setModel(section.model);
    section.table->setFont(monospacedDigits(QFont()));
    section.table->setSelectionBehavior(QAbstractItemView::SelectRows);
    section.table->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    section.table->setAlternatingRowColors(true);
    section.table->setShowGrid(false);
    section.table->setWordWrap(false);
    section.table->verticalHeader()->hide();
    section.table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    section.table->verticalHeader()->setDefaultSectionSize(section.table->fontMetrics().height() +
                                                           6);
    section.table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    section.stack->addWidget(section.table);
    section.stack->addWidget(new EmptyStateView(symbol, emptyMessage, section.stack));
    static_cast<QVBoxLayout*>(layout())->addWidget(section.stack, 1);

    // New samples arrive above: while the user is scrolled down, the rows in view stay put.
    QTableView* table = section.table;
    connect(section.model, &SampleTableModel::rowsInserted, table,
            [table](const QModelIndex&, int first, int last) {
                QScrollBar* scroll = table->verticalScrollBar();
                if (first == 0 && scroll->value() > 0) {
                    scroll->setValue(scroll->value() + (last - first + 1));
                }
            });
    return section;
}

void PowerSamplesPage::showBatterySamples(const QList<WattlogBatterySample>& samples) {
    fill({m_battery.model, m_battery.caption, m_battery.stack}, samples, batterySampleCells);
}

void PowerSamplesPage::showCorrelationSamples(const QList<WattlogCorrelationSample>& samples) {
    fill({m_correlation.model, m_correlation.caption, m_correlation.stack}, samples,
         correlationSampleCells);
}

QString PowerSamplesPage::batteryCaption() const {
    return m_battery.caption->text();
}

QString PowerSamplesPage::correlationCaption() const {
    return m_correlation.caption->text();
}

}  // namespace zelvar
