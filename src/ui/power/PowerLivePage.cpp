#include "ui/power/PowerLivePage.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "power/BatteryPowerMonitor.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/Symbols.h"
#include "ui/power/PowerViewState.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

QColor liveLineColor(const QString& line, const QColor& primary) {
    static const std::pair<QString, NamedColor> kWords[] = {
        {QStringLiteral("Sleep"), NamedColor::Indigo},
        {QStringLiteral("Wake"), NamedColor::Green},
        {QStringLiteral("Display is turned on"), NamedColor::Yellow},
        {QStringLiteral("Display is turned off"), NamedColor::Gray},
        {QStringLiteral("Using AC"), NamedColor::Blue},
        {QStringLiteral("Using Batt"), NamedColor::Orange},
        {QStringLiteral("BatteryHealth"), NamedColor::Pink},
    };
    for (const auto& [word, color] : kWords) {
        if (line.contains(word)) {
            return namedColor(color);
        }
    }
    return withOpacity(primary, 0.8);
}

PowerLivePage::PowerLivePage(BatteryPowerMonitor& monitor, PowerViewState& state, QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerLivePage"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 4, 0, 0);
    column->setSpacing(8);
    auto* bar = new QHBoxLayout;
    m_status = textLabel(QString(), headlineFont(), this);
    bar->addWidget(m_status);
    bar->addStretch(1);
    m_toggle = new QPushButton(this);
    connect(m_toggle, &QPushButton::clicked, this, [this] {
        if (m_monitor.isLiveTailing()) {
            m_monitor.stopWattlogLiveTail();
        } else {
            m_monitor.startWattlogLiveTail();
        }
    });
    bar->addWidget(m_toggle);
    column->addLayout(bar);

    m_stack = new QStackedWidget(this);
    m_list = new QListWidget(m_stack);
    m_list->setUniformItemSizes(true);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    m_list->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_stack->addWidget(m_list);
    m_empty =
        new EmptyStateView(QStringLiteral("antenna.radiowaves.left.and.right"), QString(), m_stack);
    m_stack->addWidget(m_empty);
    column->addWidget(m_stack, 1);

    auto* status = new ShownRefresh(this, [this] { refreshStatus(); });
    auto* lines = new ShownRefresh(this, [this] { refreshLines(); });
    connect(&m_monitor, &BatteryPowerMonitor::isLiveTailingChanged, status, &ShownRefresh::request);
    connect(&m_monitor, &BatteryPowerMonitor::liveLinesChanged, lines, &ShownRefresh::request);
    refreshStatus();
    refreshLines();
}

QString PowerLivePage::statusText() const {
    return m_status->text();
}

void PowerLivePage::refreshStatus() {
    const bool tailing = m_monitor.isLiveTailing();
    m_status->setText(tailing ? QStringLiteral("Live") : QStringLiteral("Stopped"));
    QPalette palette = m_status->palette();
    palette.setColor(QPalette::WindowText,
                     tailing ? namedColor(NamedColor::Green) : secondaryColor(this));
    m_status->setPalette(palette);
    m_toggle->setText(tailing ? QStringLiteral("Stop") : QStringLiteral("Start"));
    m_toggle->setIcon(
        symbolIcon(tailing ? QStringLiteral("stop.fill") : QStringLiteral("play.fill")));
    m_empty->setMessage(tailing ? QStringLiteral("Waiting for live pmset events")
                                : QStringLiteral("Live tail is stopped"));
}

void PowerLivePage::refreshLines() {
    const QStringList& lines = m_monitor.liveLines();
    m_stack->setCurrentIndex(lines.isEmpty() ? 1 : 0);
    if (lines == m_shownLines) {
        return;
    }
    QScrollBar* scroll = m_list->verticalScrollBar();
    const bool atBottom = scroll->value() >= scroll->maximum();
    const int kept = scroll->value();
    // The lines only grow at the end, dropping the oldest past the cap: the rows shown are
    // kept, and only the oldest are taken and the new ones added.
    const auto continuesAfter = [&](qsizetype dropped) {
        const qsizetype common = m_shownLines.size() - dropped;
        return common <= lines.size() &&
               std::equal(m_shownLines.cbegin() + dropped, m_shownLines.cend(), lines.cbegin());
    };
    qsizetype dropped = 0;
    while (dropped < m_shownLines.size() && !continuesAfter(dropped)) {
        ++dropped;
    }
    m_list->setUpdatesEnabled(false);
    for (qsizetype i = 0; i < dropped; ++i) {
        delete m_list->takeItem(0);
    }
    const QColor primary = palette().color(QPalette::Text);
    for (qsizetype i = m_shownLines.size() - dropped; i < lines.size(); ++i) {
        auto* item = new QListWidgetItem(lines.at(i), m_list);
        item->setForeground(liveLineColor(lines.at(i), primary));
    }
    m_list->setUpdatesEnabled(true);
    m_shownLines = lines;
    if (atBottom) {
        m_list->scrollToBottom();
    } else {
        scroll->setValue(std::max(0, kept - int(dropped)));
    }
}

}  // namespace zelvar
