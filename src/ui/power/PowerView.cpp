#include "ui/power/PowerView.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <functional>
#include <optional>

#include "power/BatteryPowerMonitor.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/Symbols.h"
#include "ui/TextFormat.h"
#include "ui/power/PowerBatteryPage.h"
#include "ui/power/PowerCorrelationPage.h"
#include "ui/power/PowerEventsPage.h"
#include "ui/power/PowerLivePage.h"
#include "ui/power/PowerOverviewPage.h"
#include "ui/power/PowerSamplesPage.h"
#include "ui/power/PowerTimelinePage.h"
#include "ui/power/PowerViewState.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

constexpr int kProgressSteps = 1000;

QWidget* makePage(PowerSubtab subtab, BatteryPowerMonitor& monitor, PowerViewState& state,
                  QWidget* parent) {
    switch (subtab) {
        case PowerSubtab::Overview:
            return new PowerOverviewPage(monitor, state, parent);
        case PowerSubtab::Battery:
            return new PowerBatteryPage(monitor, state, parent);
        case PowerSubtab::Timeline:
            return new PowerTimelinePage(monitor, state, parent);
        case PowerSubtab::Events:
            return new PowerEventsPage(monitor, state, parent);
        case PowerSubtab::Live:
            return new PowerLivePage(monitor, state, parent);
        case PowerSubtab::Correlation:
            return new PowerCorrelationPage(monitor, state, parent);
        case PowerSubtab::Samples:
            return new PowerSamplesPage(monitor, state, parent);
    }
    return nullptr;
}

}  // namespace

QString powerSubtabLabel(PowerSubtab subtab) {
    switch (subtab) {
        case PowerSubtab::Overview:
            return QStringLiteral("Overview");
        case PowerSubtab::Battery:
            return QStringLiteral("Battery");
        case PowerSubtab::Timeline:
            return QStringLiteral("Timeline");
        case PowerSubtab::Events:
            return QStringLiteral("Events");
        case PowerSubtab::Live:
            return QStringLiteral("Live");
        case PowerSubtab::Correlation:
            return QStringLiteral("Correlation");
        case PowerSubtab::Samples:
            return QStringLiteral("Samples");
    }
    return {};
}

const QList<PowerSubtab>& allPowerSubtabs() {
    static const QList<PowerSubtab> subtabs{
        PowerSubtab::Overview, PowerSubtab::Battery,     PowerSubtab::Timeline, PowerSubtab::Events,
        PowerSubtab::Live,     PowerSubtab::Correlation, PowerSubtab::Samples};
    return subtabs;
}

PowerView::PowerView(BatteryPowerMonitor& monitor, QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(new PowerViewState(this)) {
    setObjectName(QStringLiteral("PowerView"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 10, 12, 8);
    column->setSpacing(8);
    column->addWidget(buildSummary());
    column->addWidget(buildSubtabBar());
    m_stack = new QStackedWidget(this);
    for (PowerSubtab subtab : allPowerSubtabs()) {
        m_stack->addWidget(makePage(subtab, m_monitor, *m_state, m_stack));
    }
    column->addWidget(m_stack, 1);
    selectSubtab(PowerSubtab::Overview);

    m_summaryRefresh = new ShownRefresh(this, [this] { refreshSummary(); });
    connect(&m_monitor, &BatteryPowerMonitor::snapshotChanged, m_summaryRefresh,
            &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::isHistoryLoadingChanged, this,
            &PowerView::refreshProgress);
    connect(&m_monitor, &BatteryPowerMonitor::historyLoadProgressChanged, this,
            &PowerView::refreshProgress);
    refreshSummary();
    refreshProgress();
}

QWidget* PowerView::buildSummary() {
    QFrame* summary = card(QStringLiteral("summary"), this);
    auto* row = new QHBoxLayout(summary);
    row->setContentsMargins(12, 10, 12, 10);
    row->setSpacing(10);
    m_symbol = new QLabel(summary);
    row->addWidget(m_symbol);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    m_title = textLabel(QString(), headlineFont(), summary);
    m_rate = textLabel(QString(), monospacedDigits(titleFont()), summary);
    m_detail = textLabel(QString(), captionFont(), summary, secondaryColor(summary));
    for (QLabel* label : {m_title, m_rate, m_detail}) {
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        texts->addWidget(label);
    }
    row->addLayout(texts, 1);

    // The small metrics: a value over its name, each left out while it has no value.
    auto* metricsRow = new QHBoxLayout;
    for (const QString& name :
         {QStringLiteral("Cycle"), QStringLiteral("Health"), QStringLiteral("Updated")}) {
        auto* box = new QWidget(summary);
        auto* stack = new QVBoxLayout(box);
        stack->setContentsMargins(8, 0, 8, 0);
        stack->setSpacing(0);
        QLabel* value = textLabel(QString(), monospacedDigits(semibold(QFont())), box);
        stack->addWidget(value, 0, Qt::AlignRight);
        stack->addWidget(textLabel(name, caption2Font(), box, secondaryColor(box)), 0,
                         Qt::AlignRight);
        metricsRow->addWidget(box);
        m_metricBoxes.append({name, box, value});
    }
    row->addLayout(metricsRow);
    row->setAlignment(metricsRow, Qt::AlignTop);
    return summary;
}

QWidget* PowerView::buildSubtabBar() {
    auto* bar = new QWidget(this);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    auto* group = new QButtonGroup(bar);
    // The chosen subtab in the accent colour, so that it reads apart from a hovered or focused one.
    const QColor accent = accentColor(this);
    const QString style =
        QStringLiteral(
            "QToolButton { padding: 3px 9px; border: none; border-radius: 6px; }"
            "QToolButton:hover { background: %1; }"
            "QToolButton:checked { background: %2; color: %3; font-weight: 600; }")
            .arg(styleColor(withOpacity(secondaryColor(this), 0.12)),
                 styleColor(withOpacity(accent, 0.16)), styleColor(accent));
    for (PowerSubtab subtab : allPowerSubtabs()) {
        auto* button = new QToolButton(bar);
        button->setText(powerSubtabLabel(subtab));
        button->setCheckable(true);
        button->setAutoRaise(true);
        button->setObjectName(QStringLiteral("subtab"));
        button->setStyleSheet(style);
        group->addButton(button);
        row->addWidget(button);
        m_subtabButtons.append(button);
        connect(button, &QToolButton::clicked, this, [this, subtab] { selectSubtab(subtab); });
    }
    row->addStretch(1);
    m_progress = new QProgressBar(bar);
    m_progress->setRange(0, kProgressSteps);
    m_progress->setTextVisible(false);
    m_progress->setFixedWidth(120);
    m_progress->setMaximumHeight(8);
    row->addWidget(m_progress);
    m_refresh = new QToolButton(bar);
    m_refresh->setObjectName(QStringLiteral("refreshHistory"));
    m_refresh->setIcon(symbolIcon(QStringLiteral("arrow.clockwise")));
    m_refresh->setAutoRaise(true);
    m_refresh->setToolTip(QStringLiteral("Refresh Wattlog history"));
    connect(m_refresh, &QToolButton::clicked, &m_monitor,
            &BatteryPowerMonitor::reloadWattlogHistory);
    row->addWidget(m_refresh);
    return bar;
}

void PowerView::selectSubtab(PowerSubtab subtab) {
    m_selected = subtab;
    const auto index = static_cast<int>(allPowerSubtabs().indexOf(subtab));
    m_subtabButtons.at(index)->setChecked(true);
    m_stack->setCurrentIndex(index);
}

QAbstractButton* PowerView::subtabButton(PowerSubtab subtab) const {
    return m_subtabButtons.value(allPowerSubtabs().indexOf(subtab));
}

QWidget* PowerView::page(PowerSubtab subtab) const {
    return m_stack->widget(static_cast<int>(allPowerSubtabs().indexOf(subtab)));
}

QStringList PowerView::summaryTexts() const {
    return {m_title->text(), m_rate->text(), m_detail->text()};
}

void PowerView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_monitor.start();
    m_monitor.loadWattlogHistoryIfNeeded();
}

void PowerView::refreshSummary() {
    const BatteryPowerSnapshot& snapshot = m_monitor.snapshot();
    const bool external = snapshot.isExternalConnected;
    m_summarySymbol = external ? QStringLiteral("bolt.fill") : QStringLiteral("battery.75");
    m_symbol->setPixmap(symbolPixmap(m_summarySymbol, 28,
                                     namedColor(external ? NamedColor::Green : NamedColor::Blue)));
    QString title = snapshot.powerFlowTitle();
    if (snapshot.percent) {
        title += QStringLiteral("  ·  %1%").arg(*snapshot.percent);
    }
    m_title->setText(title);
    m_rate->setText(snapshot.powerRateText());
    m_detail->setText(snapshot.detailText());

    // In the order of the boxes: Cycle, Health, Updated.
    std::optional<QString> values[] = {std::nullopt, std::nullopt, std::nullopt};
    if (snapshot.cycleCount) {
        values[0] = QString::number(*snapshot.cycleCount);
    }
    if (const auto health = snapshot.healthPercent()) {
        values[1] = QString::number(*health) + QLatin1Char('%');
    }
    if (snapshot.timestamp.isValid()) {
        values[2] = localTimeText(snapshot.timestamp);
    }
    m_metrics.clear();
    for (qsizetype i = 0; i < m_metricBoxes.size(); ++i) {
        const MetricBox& metric = m_metricBoxes.at(i);
        metric.box->setVisible(values[i].has_value());
        metric.value->setText(values[i].value_or(QString()));
        if (values[i]) {
            m_metrics << metric.name + QLatin1Char(' ') + *values[i];
        }
    }
}

void PowerView::refreshProgress() {
    const bool loading = m_monitor.isHistoryLoading();
    m_progress->setVisible(loading);
    m_progress->setValue(static_cast<int>(m_monitor.historyLoadProgress() * kProgressSteps));
}

}  // namespace zelvar
