#include "ui/WhitelistView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "common/LocalizedText.h"
#include "config/ConfigManager.h"
#include "process/ProcessMonitor.h"
#include "ui/AddWhitelistSheet.h"
#include "ui/Palette.h"
#include "ui/Symbols.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/RowList.h"
#include "ui/widgets/SearchBar.h"

namespace zelvar {

QStringList filteredWhitelist(const std::set<QString>& whitelist, const QString& filter) {
    QStringList names;
    for (const QString& name : whitelist) {  // a std::set is already in ascending order
        if (filter.isEmpty() || localizedCaseInsensitiveContains(name, filter)) {
            names << name;
        }
    }
    return names;
}

int instanceCount(const QList<ProcessInfo>& processes, const QString& name) {
    return static_cast<int>(
        std::count_if(processes.cbegin(), processes.cend(),
                      [&name](const ProcessInfo& p) { return p.name == name; }));
}

QString runningText(int count) {
    if (count < 1) {
        return QObject::tr("Not running");
    }
    return QStringLiteral("Running (%1 instance%2)")
        .arg(count)
        .arg(count > 1 ? QStringLiteral("s") : QString());
}

WhitelistView::WhitelistView(ProcessMonitor& processMonitor, ConfigManager& configManager,
                             QWidget* parent)
    : QWidget(parent),
      m_processMonitor(processMonitor),
      m_configManager(configManager),
      m_search(new SearchBar(tr("Filter whitelist..."), this)),
      m_stack(new QStackedWidget(this)),
      m_empty(new EmptyStateView(QStringLiteral("checkmark.shield"), tr("No Whitelisted Processes"),
                                 this)),
      m_rows(new RowList(this)) {
    auto* layout = new QVBoxLayout(this);
    auto* header = new QHBoxLayout;
    auto* title = new QLabel(tr("Whitelisted Processes"), this);
    title->setFont(headlineFont());
    header->addWidget(title);
    header->addStretch(1);
    auto* add = new QToolButton(this);
    add->setIcon(symbolIcon(QStringLiteral("plus.circle")));
    add->setAutoRaise(true);
    add->setToolTip(tr("Add to Whitelist"));
    header->addWidget(add);
    layout->addLayout(header);
    layout->addWidget(m_search);

    m_empty->setMessageAsHeadline(true);
    m_empty->setDetail(
        tr("Whitelisted processes won't trigger alerts even if they exceed their limits"));
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_rows);
    layout->addWidget(m_stack, 1);

    connect(add, &QToolButton::clicked, this, &WhitelistView::presentAddWhitelistSheet);
    connect(m_search, &SearchBar::textChanged, this, &WhitelistView::rebuild);
    connect(&m_configManager, &ConfigManager::configChanged, this, &WhitelistView::rebuild);
    connect(&m_processMonitor, &ProcessMonitor::currentProcessesChanged, this,
            &WhitelistView::rebuild);
    rebuild();
}

bool WhitelistView::isShowingEmptyState() const {
    return m_stack->currentWidget() == m_empty;
}

void WhitelistView::presentAddWhitelistSheet() {
    auto* sheet = new AddWhitelistSheet(m_processMonitor, m_configManager, window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

void WhitelistView::rebuild() {
    // The empty state depends on the whitelist alone; a filter that matches nothing shows an
    // empty list.
    const std::set<QString>& whitelist = m_configManager.config().whitelistedProcesses;
    QList<QWidget*> rows;
    for (const QString& name : filteredWhitelist(whitelist, m_search->text())) {
        rows << makeRow(name);
    }
    m_rows->setRows(rows);
    m_stack->setCurrentWidget(whitelist.empty() ? static_cast<QWidget*>(m_empty) : m_rows);
}

QWidget* WhitelistView::makeRow(const QString& name) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(8, 6, 8, 6);
    auto* column = new QVBoxLayout;
    column->addWidget(new QLabel(name, row));
    const int count = instanceCount(m_processMonitor.currentProcesses(), name);
    auto* status = new QLabel(runningText(count), row);
    status->setFont(captionFont());
    status->setStyleSheet(
        QStringLiteral("color: %1;")
            .arg(styleColor(count > 0 ? namedColor(NamedColor::Green) : secondaryColor(this))));
    column->addWidget(status);
    layout->addLayout(column, 1);

    auto* remove = new QToolButton(row);
    remove->setIcon(symbolIcon(QStringLiteral("xmark.circle.fill"), secondaryColor(this)));
    remove->setAutoRaise(true);
    remove->setToolTip(tr("Remove from Whitelist"));
    connect(remove, &QToolButton::clicked, this,
            [this, name] { m_configManager.removeFromWhitelist(name); });
    layout->addWidget(remove);
    return row;
}

}  // namespace zelvar
