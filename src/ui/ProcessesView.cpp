#include "ui/ProcessesView.h"

#include <QClipboard>
#include <QDialog>
#include <QFrame>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "common/LocalizedText.h"
#include "config/ConfigManager.h"
#include "process/ProcessMonitor.h"
#include "ui/AddLimitSheet.h"
#include "ui/AddWhitelistSheet.h"
#include "ui/Palette.h"
#include "ui/ProcessFlatDelegate.h"
#include "ui/ProcessLimitEditorSheet.h"
#include "ui/ProcessLimitStatus.h"
#include "ui/ProcessListModel.h"
#include "ui/ProcessTreeDelegate.h"
#include "ui/ProcessTreeModel.h"
#include "ui/ProcessTreeView.h"
#include "ui/ShownRefresh.h"
#include "ui/Symbols.h"
#include "ui/TextFormat.h"
#include "ui/widgets/EmptyStateView.h"
#include "ui/widgets/SearchBar.h"

namespace zelvar {
namespace {

// The widths of the columns after "Process", which takes the rest; the header and the tree
// share them.
constexpr int kColumnWidths[] = {110, 80, 70, 55, 24};

QLabel* captionLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(captionFont());
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, secondaryColor(parent));
    label->setPalette(palette);
    return label;
}

void copyToClipboard(const QString& text) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(text);
}

QAction* addDestructive(QMenu* menu, const QString& text) {
    QAction* action = menu->addAction(text);
    // Menus have no red entries here; the property lets a style or a test tell them.
    action->setProperty("destructive", true);
    return action;
}

}  // namespace

ProcessesView::ProcessesView(ProcessMonitor& processMonitor, ConfigManager& configManager,
                             DefaultExpansion::Anchors expansionAnchors, QWidget* parent)
    : QWidget(parent),
      m_processMonitor(processMonitor),
      m_configManager(configManager),
      m_defaultExpansion(std::move(expansionAnchors)),
      m_treeModel(new ProcessTreeModel(this)),
      m_listModel(new ProcessListModel(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    // The column header stands above the filter and the strip, in the flat list too.
    layout->addWidget(buildColumnHeader());
    auto* divider = new QFrame(this);
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Sunken);
    layout->addWidget(divider);

    m_searchBar = new SearchBar(QStringLiteral("Filter processes..."), this);
    connect(m_searchBar, &SearchBar::textChanged, this, &ProcessesView::setSearchText);
    layout->addWidget(m_searchBar);
    layout->addWidget(buildControls());

    m_pages = new QStackedWidget(this);
    auto* tree = new ProcessTreeView(m_pages);
    m_treeView = tree;
    m_treeView->setObjectName(QStringLiteral("processTree"));
    m_treeView->setModel(m_treeModel);
    m_treeView->setItemDelegate(new ProcessTreeDelegate(m_configManager, m_treeView));
    m_treeView->setHeaderHidden(true);
    m_treeView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_treeView->setContextMenuPolicy(Qt::CustomContextMenu);
    QHeaderView* header = m_treeView->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(ProcessTreeModel::ProcessColumn, QHeaderView::Stretch);
    for (int column = 1; column < ProcessTreeModel::kColumnCount; ++column) {
        header->setSectionResizeMode(column, QHeaderView::Fixed);
        header->resizeSection(column, kColumnWidths[column - 1]);
    }
    connect(m_treeView, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        if (!m_syncingExpansion) {
            m_expandedProcessIDs.insert(index.data(ProcessTreeModel::PidRole).toInt());
        }
    });
    connect(m_treeView, &QTreeView::collapsed, this, [this](const QModelIndex& index) {
        if (!m_syncingExpansion) {
            m_expandedProcessIDs.remove(index.data(ProcessTreeModel::PidRole).toInt());
        }
    });
    connect(m_treeView, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& position) { showRowMenu(position, true); });

    m_flatView = new QListView(m_pages);
    m_flatView->setObjectName(QStringLiteral("processList"));
    m_flatView->setModel(m_listModel);
    m_flatView->setItemDelegate(new ProcessFlatDelegate(m_configManager, m_flatView));
    m_flatView->setUniformItemSizes(true);
    m_flatView->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_flatView, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& position) { showRowMenu(position, false); });

    m_emptyTree = new EmptyStateView(QStringLiteral("cpu"),
                                     QStringLiteral("Start monitoring to see processes"), m_pages);
    m_noMatches = new EmptyStateView(QStringLiteral("cpu"), QString(), m_pages);
    m_pages->addWidget(m_emptyTree);
    m_pages->addWidget(m_treeView);
    m_pages->addWidget(m_noMatches);
    m_pages->addWidget(m_flatView);
    layout->addWidget(m_pages, 1);

    auto* footer = new QWidget(this);
    auto* footerLayout = new QHBoxLayout(footer);
    footerLayout->setContentsMargins(12, 6, 12, 6);
    m_processCount = captionLabel(QString(), footer);
    m_updated = captionLabel(QString(), footer);
    footerLayout->addWidget(m_processCount);
    footerLayout->addStretch(1);
    footerLayout->addWidget(m_updated);
    layout->addWidget(footer);

    // Samples are followed while the tab is on screen; a hidden one catches up when it shows.
    auto* treeRefresh = new ShownRefresh(this, [this] { refreshTree(); });
    auto* listRefresh = new ShownRefresh(this, [this] {
        refreshFlatList();
        refreshFooter();
    });
    auto* footerRefresh = new ShownRefresh(this, [this] { refreshFooter(); });
    connect(&m_processMonitor, &ProcessMonitor::processTreeChanged, treeRefresh,
            &ShownRefresh::request);
    connect(&m_processMonitor, &ProcessMonitor::currentProcessesChanged, listRefresh,
            &ShownRefresh::request);
    connect(&m_processMonitor, &ProcessMonitor::lastUpdateTimeChanged, footerRefresh,
            &ShownRefresh::request);
    connect(&m_configManager, &ConfigManager::configChanged, this, [this] {
        refreshControls();
        // The badges and status texts follow the limits and the whitelist.
        m_treeView->viewport()->update();
        m_flatView->viewport()->update();
    });

    refreshControls();
    refreshTree();
    refreshFooter();
    updatePage();
}

ProcessesView::~ProcessesView() = default;

QWidget* ProcessesView::buildColumnHeader() {
    auto* header = new QWidget(this);
    header->setObjectName(QStringLiteral("columnHeader"));
    auto* row = new QHBoxLayout(header);
    // Over the tree's columns: its rows start after the frame and the chevron's indent, and
    // end before its scroll bar.
    const int frame = 1;
    row->setContentsMargins(frame + ProcessTreeView::kIndent, 6,
                            frame + style()->pixelMetric(QStyle::PM_ScrollBarExtent), 6);
    row->setSpacing(0);
    row->addWidget(captionLabel(QStringLiteral("Process"), header), 1);
    const QStringList labels{QStringLiteral("Origin"), QStringLiteral("RAM"), QStringLiteral("Own"),
                             QStringLiteral("CPU"), QString()};
    for (qsizetype i = 0; i < labels.size(); ++i) {
        QLabel* label = captionLabel(labels[i], header);
        label->setFixedWidth(kColumnWidths[i]);
        if (i >= 1 && i <= 3) {
            label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
        row->addWidget(label);
    }
    return header;
}

QWidget* ProcessesView::buildControls() {
    auto* strip = new QWidget(this);
    strip->setObjectName(QStringLiteral("ramControls"));
    auto* row = new QHBoxLayout(strip);
    row->setContentsMargins(8, 4, 8, 4);
    row->setSpacing(8);

    auto* limit =
        new QPushButton(symbolIcon(QStringLiteral("gauge")), QStringLiteral("Limit"), strip);
    connect(limit, &QPushButton::clicked, this, &ProcessesView::presentAddLimitSheet);
    auto* whitelist = new QPushButton(symbolIcon(QStringLiteral("checkmark.shield")),
                                      QStringLiteral("Whitelist"), strip);
    connect(whitelist, &QPushButton::clicked, this, &ProcessesView::presentAddWhitelistSheet);
    row->addWidget(limit);
    row->addWidget(whitelist);

    m_limitCount = captionLabel(QString(), strip);
    m_whitelistCount = captionLabel(QString(), strip);
    row->addWidget(m_limitCount);
    row->addWidget(m_whitelistCount);

    auto* scroller = new QScrollArea(strip);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    scroller->setWidgetResizable(true);
    m_chipRow = new QWidget(scroller);
    m_chipRow->setObjectName(QStringLiteral("chips"));
    m_chipLayout = new QHBoxLayout(m_chipRow);
    m_chipLayout->setContentsMargins(0, 0, 0, 0);
    m_chipLayout->setSpacing(6);
    m_chipLayout->addStretch(1);
    scroller->setWidget(m_chipRow);
    scroller->setFixedHeight(QFontMetrics(captionFont()).height() + 8 + 16);
    row->addWidget(scroller, 1);
    return strip;
}

void ProcessesView::setSearchText(const QString& text) {
    if (text == m_searchText) {
        return;
    }
    m_searchText = text;
    if (m_searchBar->text() != text) {
        m_searchBar->setText(text);
    }
    refreshFlatList();
    updatePage();
}

QList<ProcessInfo> ProcessesView::filteredProcesses() const {
    if (m_searchText.isEmpty()) {
        return {};
    }
    LocalizedPattern pattern(m_searchText);
    QList<ProcessInfo> result;
    for (const ProcessInfo& process : m_processMonitor.currentProcesses()) {
        if (pattern.foundInFolded(localizedFold(process.name))) {
            result.append(process);
        }
    }
    return result;
}

ProcessesView::Page ProcessesView::page() const {
    if (!isSearching()) {
        return m_processMonitor.processTree().isEmpty() ? Page::EmptyTree : Page::Tree;
    }
    return m_listModel->rowCount() == 0 ? Page::NoMatches : Page::Flat;
}

QString ProcessesView::emptyStateMessage() const {
    switch (page()) {
        case Page::EmptyTree:
            return m_emptyTree->message();
        case Page::NoMatches:
            return m_noMatches->message();
        default:
            return {};
    }
}

void ProcessesView::updatePage() {
    const Page shown = page();
    switch (shown) {
        case Page::EmptyTree:
            m_pages->setCurrentWidget(m_emptyTree);
            break;
        case Page::Tree:
            if (m_pages->currentWidget() != m_treeView) {
                m_pages->setCurrentWidget(m_treeView);
                // The tree list appears: a moment for the default expansion.
                applyDefaultExpansion();
            }
            break;
        case Page::NoMatches:
            m_noMatches->setMessage(QStringLiteral("No matches for \"") + m_searchText +
                                    QLatin1Char('"'));
            m_pages->setCurrentWidget(m_noMatches);
            break;
        case Page::Flat:
            m_pages->setCurrentWidget(m_flatView);
            break;
    }
}

void ProcessesView::refreshTree() {
    const QList<ProcessNode>& tree = m_processMonitor.processTree();
    m_treeModel->setForest(tree);

    // Expansion is kept by pid: it outlives every refresh and ends with the process.
    m_syncingExpansion = true;
    for (auto it = m_expandedProcessIDs.begin(); it != m_expandedProcessIDs.end();) {
        const QModelIndex index = m_treeModel->indexOfPid(*it);
        if (!index.isValid()) {
            it = m_expandedProcessIDs.erase(it);
            continue;
        }
        if (!m_treeView->isExpanded(index)) {
            m_treeView->expand(index);
        }
        ++it;
    }
    m_syncingExpansion = false;

    QList<Pid> rootIDs;
    rootIDs.reserve(tree.size());
    for (const ProcessNode& root : tree) {
        rootIDs.append(root.id());
    }
    const bool rootsChanged = rootIDs != m_rootIDs;
    m_rootIDs = std::move(rootIDs);
    updatePage();
    if (rootsChanged) {
        applyDefaultExpansion();
    }
}

void ProcessesView::applyDefaultExpansion() {
    if (page() != Page::Tree) {
        return;
    }
    if (!m_defaultExpansion.apply(m_processMonitor.processTree(), m_expandedProcessIDs)) {
        return;
    }
    m_syncingExpansion = true;
    for (Pid pid : std::as_const(m_expandedProcessIDs)) {
        m_treeView->expand(m_treeModel->indexOfPid(pid));
    }
    m_syncingExpansion = false;
}

void ProcessesView::toggleExpansion(Pid pid) {
    const QModelIndex index = m_treeModel->indexOfPid(pid);
    m_syncingExpansion = true;
    if (m_expandedProcessIDs.remove(pid)) {
        m_treeView->collapse(index);
    } else {
        m_expandedProcessIDs.insert(pid);
        m_treeView->expand(index);
    }
    m_syncingExpansion = false;
}

void ProcessesView::refreshFlatList() {
    m_listModel->setProcesses(filteredProcesses());
    if (isSearching()) {
        updatePage();
    }
}

void ProcessesView::refreshFooter() {
    m_processCount->setText(QString::number(m_processMonitor.currentProcesses().size()) +
                            QStringLiteral(" processes"));
    m_updated->setText(QStringLiteral("Updated: ") +
                       localTimeText(m_processMonitor.lastUpdateTime()));
}

QString ProcessesView::footerText() const {
    return m_processCount->text() + QLatin1Char('\n') + m_updated->text();
}

void ProcessesView::refreshControls() {
    const MonitorConfig& config = m_configManager.config();
    m_limitCount->setText(QString::number(config.limits.size()) + QStringLiteral(" limits"));
    m_whitelistCount->setText(QString::number(config.whitelistedProcesses.size()) +
                              QStringLiteral(" whitelisted"));

    // The chips are few and change only with the configuration: built anew each time.
    while (m_chipLayout->count() > 1) {
        QLayoutItem* item = m_chipLayout->takeAt(0);
        delete item->widget();
        delete item;
    }
    const auto addChip = [this](const QString& symbol, const QColor& color, const QString& text,
                                auto buildMenu) {
        auto* chip = new QToolButton(m_chipRow);
        chip->setObjectName(QStringLiteral("chip"));
        chip->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        chip->setIcon(symbolIcon(symbol, color));
        chip->setText(text);
        chip->setFont(captionFont());
        chip->setStyleSheet(QStringLiteral("QToolButton { background-color: %1; border: none; "
                                           "border-radius: 6px; padding: 4px 8px; }")
                                .arg(styleColor(withOpacity(color, 0.1))));
        chip->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(chip, &QWidget::customContextMenuRequested, chip,
                [this, chip, buildMenu](const QPoint& position) {
                    QMenu* menu = buildMenu(this);
                    menu->setAttribute(Qt::WA_DeleteOnClose);
                    menu->popup(chip->mapToGlobal(position));
                });
        m_chipLayout->insertWidget(m_chipLayout->count() - 1, chip);
    };
    for (const ProcessLimit& limit : config.limits) {
        const bool kills = limit.autoKillEnabled;
        addChip(kills ? QStringLiteral("bolt.fill") : QStringLiteral("gauge"),
                namedColor(kills ? NamedColor::Red : NamedColor::Blue),
                limit.processName + QLatin1Char(' ') + ProcessLimitStatus::limitText(limit.limitMB),
                [this, limit](QWidget* parent) { return buildLimitChipMenu(limit, parent); });
    }
    for (const QString& name : config.whitelistedProcesses) {
        addChip(QStringLiteral("checkmark.shield"), namedColor(NamedColor::Green), name,
                [this, name](QWidget* parent) { return buildWhitelistChipMenu(name, parent); });
    }
}

QString ProcessesView::limitCountText() const {
    return m_limitCount->text();
}

QString ProcessesView::whitelistCountText() const {
    return m_whitelistCount->text();
}

QStringList ProcessesView::chipTexts() const {
    QStringList texts;
    for (int i = 0; i < m_chipLayout->count(); ++i) {
        if (auto* chip = qobject_cast<QToolButton*>(m_chipLayout->itemAt(i)->widget())) {
            texts.append(chip->text());
        }
    }
    return texts;
}

QMenu* ProcessesView::buildLimitChipMenu(const ProcessLimit& limit, QWidget* parent) {
    auto* menu = new QMenu(parent);
    connect(menu->addAction(QStringLiteral("Edit Limit")), &QAction::triggered, this,
            [this, limit] {
                dismissSheet();
                m_editingLimit = ProcessLimitEditor{QUuid::createUuid(), limit.processName, limit};
                presentSheet(new ProcessLimitEditorSheet(*m_editingLimit, m_configManager, this),
                             nullptr);
            });
    const QUuid id = limit.id;
    connect(menu->addAction(limit.autoKillEnabled ? QStringLiteral("Disable Auto-Kill")
                                                  : QStringLiteral("Enable Auto-Kill")),
            &QAction::triggered, this, [this, id] { m_configManager.toggleAutoKill(id); });
    connect(addDestructive(menu, QStringLiteral("Remove Limit")), &QAction::triggered, this,
            [this, id] { m_configManager.removeLimit(id); });
    return menu;
}

QMenu* ProcessesView::buildWhitelistChipMenu(const QString& name, QWidget* parent) {
    auto* menu = new QMenu(parent);
    connect(addDestructive(menu, QStringLiteral("Remove from Whitelist")), &QAction::triggered,
            this, [this, name] { m_configManager.removeFromWhitelist(name); });
    return menu;
}

QMenu* ProcessesView::buildRowMenu(const ProcessInfo& process, bool treeRow, QWidget* parent) {
    // Everything the entries need is taken now: the row may be gone when one is chosen.
    const QString name = process.name;
    auto* menu = new QMenu(parent);
    connect(menu->addAction(QStringLiteral("Copy Name")), &QAction::triggered, menu,
            [name] { copyToClipboard(name); });
    const QString pid = QString::number(process.id);
    connect(menu->addAction(QStringLiteral("Copy PID")), &QAction::triggered, menu,
            [pid] { copyToClipboard(pid); });
    if (treeRow) {
        const QString ram = m_treeModel->aggregateMemoryText(m_treeModel->indexOfPid(process.id));
        connect(menu->addAction(QStringLiteral("Copy RAM")), &QAction::triggered, menu,
                [ram] { copyToClipboard(ram); });
    }
    menu->addSeparator();

    const std::optional<ProcessLimit> limit = m_configManager.limitForProcess(name);
    connect(menu->addAction(limit ? QStringLiteral("Edit RAM Limit...")
                                  : QStringLiteral("Set RAM Limit...")),
            &QAction::triggered, this, [this, name] { editLimit(name); });
    if (limit) {
        const QUuid id = limit->id;
        connect(menu->addAction(limit->autoKillEnabled ? QStringLiteral("Disable Auto-Kill")
                                                       : QStringLiteral("Enable Auto-Kill")),
                &QAction::triggered, this, [this, id] { m_configManager.toggleAutoKill(id); });
        connect(addDestructive(menu, QStringLiteral("Remove RAM Limit")), &QAction::triggered, this,
                [this, id] { m_configManager.removeLimit(id); });
    }
    menu->addSeparator();

    if (m_configManager.isWhitelisted(name)) {
        connect(addDestructive(menu, QStringLiteral("Remove from Whitelist")), &QAction::triggered,
                this, [this, name] { m_configManager.removeFromWhitelist(name); });
    } else {
        connect(menu->addAction(QStringLiteral("Whitelist Process")), &QAction::triggered, this,
                [this, name] { m_configManager.addToWhitelist(name); });
    }
    return menu;
}

void ProcessesView::showRowMenu(const QPoint& position, bool treeRow) {
    QAbstractItemView* view = treeRow ? static_cast<QAbstractItemView*>(m_treeView)
                                      : static_cast<QAbstractItemView*>(m_flatView);
    const QModelIndex index = view->indexAt(position);
    if (!index.isValid()) {
        return;
    }
    const ProcessInfo process = index.data(ProcessTreeModel::ProcessRole).value<ProcessInfo>();
    QMenu* menu = buildRowMenu(process, treeRow, this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(view->viewport()->mapToGlobal(position));
}

void ProcessesView::editLimit(const QString& processName) {
    dismissSheet();
    m_editingLimit = ProcessLimitEditor{QUuid::createUuid(), processName,
                                        m_configManager.limitForProcess(processName)};
    presentSheet(new ProcessLimitEditorSheet(*m_editingLimit, m_configManager, this), nullptr);
}

void ProcessesView::presentAddLimitSheet() {
    dismissSheet();
    presentSheet(new AddLimitSheet(m_processMonitor, m_configManager, this), &m_showAddLimitSheet);
}

void ProcessesView::presentAddWhitelistSheet() {
    dismissSheet();
    presentSheet(new AddWhitelistSheet(m_processMonitor, m_configManager, this),
                 &m_showAddWhitelistSheet);
}

void ProcessesView::dismissSheet() {
    // One sheet at a time, as a window shows one.
    if (m_sheet) {
        m_sheet->reject();
    }
}

void ProcessesView::presentSheet(QDialog* sheet, bool* flag) {
    m_sheet = sheet;
    if (flag) {
        *flag = true;
    }
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->setWindowModality(Qt::WindowModal);
    connect(sheet, &QDialog::finished, this, [this, flag] {
        if (flag) {
            *flag = false;
        } else {
            m_editingLimit.reset();
        }
    });
    sheet->open();
}

}  // namespace zelvar
