#include "ui/NetworkView.h"

#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include "network/BandwidthMonitor.h"
#include "network/ByteFormatter.h"
#include "ui/NetworkUsageModel.h"
#include "ui/Palette.h"
#include "ui/RateGraph.h"
#include "ui/ShownRefresh.h"
#include "ui/Symbols.h"
#include "ui/widgets/EmptyStateView.h"

namespace zelvar {

namespace {

constexpr int kRatesWidth = 160;
constexpr int kSampleWidth = 90;
constexpr int kDailyTotalWidth = 120;
constexpr int kActionWidth = 28;

void setSecondary(QLabel* label) {
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, secondaryColor(label));
    label->setPalette(palette);
}

// A value with its symbol over a title, as the summary shows its three figures.
QWidget* metricView(const QString& title, const QString& symbol, QLabel*& value, QWidget* parent) {
    auto* box = new QWidget(parent);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(8, 0, 8, 0);
    column->setSpacing(0);
    auto* line = new QHBoxLayout;
    auto* icon = new QLabel(box);
    icon->setPixmap(symbolPixmap(symbol, 14, secondaryColor(box)));
    line->addWidget(icon);
    value = new QLabel(box);
    value->setObjectName(title);
    value->setFont(semibold(monospacedDigits(QApplication::font())));
    line->addWidget(value);
    column->addLayout(line);
    auto* caption = new QLabel(title, box);
    caption->setFont(caption2Font());
    setSecondary(caption);
    column->addWidget(caption);
    return box;
}

}  // namespace

NetworkView::NetworkView(BandwidthMonitor& monitor, QWidget* parent)
    : QWidget(parent), m_monitor(monitor) {
    setObjectName(QStringLiteral("NetworkView"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 12, 16, 8);
    column->addWidget(buildSummary());
    m_graph = new RateGraph(this);
    column->addWidget(m_graph);
    column->addWidget(buildHeader());

    m_model = new NetworkUsageModel(this);
    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("networkTable"));
    m_table->setModel(m_model);
    m_table->horizontalHeader()->hide();
    m_table->verticalHeader()->hide();
    m_table->setShowGrid(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setIconSize(QSize(18, 18));
    m_table->verticalHeader()->setDefaultSectionSize(2 * QFontMetrics(font()).height() + 8);
    QHeaderView* header = m_table->horizontalHeader();
    header->setSectionResizeMode(NetworkUsageModel::AppColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(NetworkUsageModel::RatesColumn, QHeaderView::Fixed);
    header->setSectionResizeMode(NetworkUsageModel::AmountColumn, QHeaderView::Fixed);
    header->setSectionResizeMode(NetworkUsageModel::ActionColumn, QHeaderView::Fixed);
    header->resizeSection(NetworkUsageModel::RatesColumn, kRatesWidth);
    header->resizeSection(NetworkUsageModel::ActionColumn, kActionWidth);
    connect(m_table, &QTableView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() == NetworkUsageModel::ActionColumn) {
            suspendRow(index.row());
        }
    });

    m_waiting = new EmptyStateView(QStringLiteral("network"),
                                   QStringLiteral("Waiting for network samples"), this);
    m_noDaily = new EmptyStateView(QStringLiteral("tray"),
                                   QStringLiteral("No daily app usage recorded yet"), this);
    m_stack = new QStackedWidget(this);
    m_stack->addWidget(m_table);
    m_stack->addWidget(m_waiting);
    m_stack->addWidget(m_noDaily);
    column->addWidget(m_stack, 1);

    m_suspendStatus = new QLabel(this);
    m_suspendStatus->setObjectName(QStringLiteral("suspendStatus"));
    m_suspendStatus->setFont(captionFont());
    m_suspendStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_suspendStatus->hide();
    column->addWidget(m_suspendStatus);
    m_footer = new QLabel(this);
    m_footer->setObjectName(QStringLiteral("footer"));
    m_footer->setFont(captionFont());
    setSecondary(m_footer);
    column->addWidget(m_footer);

    // Samples are followed while the tab is on screen; a hidden one catches up when it shows.
    auto* summary = new ShownRefresh(this, [this] { refreshSummary(); });
    auto* table = new ShownRefresh(this, [this] { refreshTable(); });
    for (auto changed :
         {&BandwidthMonitor::networkNameChanged, &BandwidthMonitor::downloadBytesPerSecondChanged,
          &BandwidthMonitor::uploadBytesPerSecondChanged,
          &BandwidthMonitor::todayReceivedBytesChanged, &BandwidthMonitor::todaySentBytesChanged,
          &BandwidthMonitor::rateHistoryChanged}) {
        connect(&m_monitor, changed, summary, &ShownRefresh::request);
    }
    for (auto changed :
         {&BandwidthMonitor::processUsagesChanged, &BandwidthMonitor::cachedAppUsagesChanged,
          &BandwidthMonitor::appUsageModeChanged}) {
        connect(&m_monitor, changed, table, &ShownRefresh::request);
    }
    refreshSummary();
    refreshTable();
}

QWidget* NetworkView::buildSummary() {
    auto* summary = new QWidget(this);
    auto* row = new QHBoxLayout(summary);
    row->setContentsMargins(0, 0, 0, 4);
    auto* names = new QVBoxLayout;
    m_name = new QLabel(summary);
    m_name->setObjectName(QStringLiteral("networkName"));
    m_name->setFont(headlineFont());
    names->addWidget(m_name);
    auto* today = new QLabel(QStringLiteral("Today"), summary);
    today->setFont(captionFont());
    setSecondary(today);
    names->addWidget(today);
    row->addLayout(names);
    row->addStretch(1);
    row->addWidget(
        metricView(QStringLiteral("Down"), QStringLiteral("arrow.down"), m_down, summary));
    row->addWidget(metricView(QStringLiteral("Up"), QStringLiteral("arrow.up"), m_up, summary));
    row->addWidget(metricView(QStringLiteral("Total"), QStringLiteral("arrow.up.arrow.down"),
                              m_total, summary));
    m_reset = new QPushButton(QStringLiteral("Reset..."), summary);
    m_reset->setObjectName(QStringLiteral("reset"));
    connect(m_reset, &QPushButton::clicked, &m_monitor, &BandwidthMonitor::resetToday);
    row->addWidget(m_reset);
    return summary;
}

QWidget* NetworkView::buildHeader() {
    auto* header = new QWidget(this);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(4, 8, 4, 4);
    auto* app = new QLabel(QStringLiteral("App"), header);
    app->setFont(semibold(captionFont()));
    row->addWidget(app);
    auto* picker = new QWidget(header);
    picker->setObjectName(QStringLiteral("modePicker"));
    picker->setFixedWidth(150);
    auto* segments = new QHBoxLayout(picker);
    segments->setContentsMargins(0, 0, 0, 0);
    segments->setSpacing(0);
    auto* group = new QButtonGroup(picker);
    for (AppUsageMode mode : kAllAppUsageModes) {
        auto* button = new QToolButton(picker);
        button->setText(appUsageModeRawValue(mode));
        button->setCheckable(true);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        group->addButton(button);
        segments->addWidget(button);
        (mode == AppUsageMode::current ? m_currentButton : m_dailyButton) = button;
        connect(button, &QToolButton::clicked, this,
                [this, mode] { m_monitor.setAppUsageMode(mode); });
    }
    row->addWidget(picker);
    row->addStretch(1);
    auto* current = new QLabel(QStringLiteral("Current"), header);
    current->setFont(semibold(captionFont()));
    current->setFixedWidth(kRatesWidth);
    current->setAlignment(Qt::AlignRight);
    row->addWidget(current);
    m_amountHeader = new QLabel(QStringLiteral("Sample"), header);
    m_amountHeader->setFont(semibold(captionFont()));
    m_amountHeader->setAlignment(Qt::AlignRight);
    row->addWidget(m_amountHeader);
    row->addSpacing(kActionWidth);
    return header;
}

QAbstractButton* NetworkView::modeButton(AppUsageMode mode) const {
    return mode == AppUsageMode::current ? m_currentButton : m_dailyButton;
}

QString NetworkView::networkNameText() const {
    return m_name->text();
}
QString NetworkView::downText() const {
    return m_down->text();
}
QString NetworkView::upText() const {
    return m_up->text();
}
QString NetworkView::totalText() const {
    return m_total->text();
}
QString NetworkView::footerText() const {
    return m_footer->text();
}
QString NetworkView::suspendStatusText() const {
    return m_suspendStatus->text();
}

EmptyStateView* NetworkView::shownEmptyState() const {
    return qobject_cast<EmptyStateView*>(m_stack->currentWidget());
}

void NetworkView::refreshSummary() {
    m_name->setText(m_monitor.networkName());
    m_down->setText(ByteFormatter::rate(m_monitor.downloadBytesPerSecond()));
    m_up->setText(ByteFormatter::rate(m_monitor.uploadBytesPerSecond()));
    m_total->setText(ByteFormatter::bytes(m_monitor.todayTotalBytes()));
    m_graph->setSamples(m_monitor.rateHistory());
}

void NetworkView::refreshTable() {
    const bool daily = m_monitor.appUsageMode() == AppUsageMode::daily;
    m_currentButton->setChecked(!daily);
    m_dailyButton->setChecked(daily);
    const int amountWidth = daily ? kDailyTotalWidth : kSampleWidth;
    m_amountHeader->setFixedWidth(amountWidth);
    m_table->horizontalHeader()->resizeSection(NetworkUsageModel::AmountColumn, amountWidth);
    if (daily) {
        m_model->setCachedAppUsages(m_monitor.cachedAppUsages());
        m_stack->setCurrentWidget(m_model->rowCount() == 0 ? static_cast<QWidget*>(m_noDaily)
                                                           : m_table);
        m_footer->setText(QStringLiteral("Daily app totals are recorded by the Zelvar+ daemon"));
    } else {
        m_model->setProcessUsages(m_monitor.processUsages());
        m_stack->setCurrentWidget(m_model->rowCount() == 0 ? static_cast<QWidget*>(m_waiting)
                                                           : m_table);
        m_footer->setText(QString::number(m_monitor.processUsages().size()) +
                          QStringLiteral(" active network processes"));
    }
}

void NetworkView::suspendRow(int row) {
    if (row < 0 || row >= m_model->rowCount()) {
        return;
    }
    const auto* usage = std::get_if<ProcessUsage>(&m_model->row(row));
    if (!usage) {
        return;
    }
    const ProcessUsage suspended = *usage;
    m_monitor.blockNetworkAccess(suspended);
    m_suspendStatus->setText(
        m_monitor.blockedProcessIDs().contains(suspended.pid)
            ? QStringLiteral("Suspended %1 (pid %2). To continue it: kill -CONT %2")
                  .arg(suspended.name)
                  .arg(suspended.pid)
            : QStringLiteral("Could not suspend %1 (pid %2).")
                  .arg(suspended.name)
                  .arg(suspended.pid));
    m_suspendStatus->show();
}

}  // namespace zelvar
