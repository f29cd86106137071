#pragma once

#include <QDialog>
#include <QList>
#include <QPointer>
#include <QSet>
#include <QWidget>
#include <optional>

#include "process/ProcessInfo.h"
#include "ui/DefaultExpansion.h"
#include "ui/ProcessLimitEditor.h"

class QHBoxLayout;
class QLabel;
class QListView;
class QMenu;
class QStackedWidget;
class QTreeView;

namespace zelvar {

class ConfigManager;
class EmptyStateView;
class ProcessListModel;
class ProcessMonitor;
class ProcessTreeModel;
class SearchBar;

// The "RAM" tab: the column header, the filter, the strip of limits and whitelisted names, the
// processes as a tree by parent while the filter is empty and as a flat list while it isn't,
// and a footer. It only reads the process monitor and the configuration and calls the
// configuration's operations; each new sample updates the lists in place.
class ProcessesView final : public QWidget {
    Q_OBJECT

public:
    enum class Page { EmptyTree, Tree, NoMatches, Flat };

    ProcessesView(ProcessMonitor& processMonitor, ConfigManager& configManager,
                  DefaultExpansion::Anchors expansionAnchors, QWidget* parent = nullptr);
    ~ProcessesView() override;

    QString searchText() const { return m_searchText; }
    // As typing into the filter does.
    void setSearchText(const QString& text);
    // No trimming: blanks alone are a filter too.
    bool isSearching() const { return !m_searchText.isEmpty(); }
    // The current processes, in their order, whose name contains the filter; empty while
    // there is no filter.
    QList<ProcessInfo> filteredProcesses() const;
    Page page() const;
    // The message of the empty state on show, or nothing.
    QString emptyStateMessage() const;

    const QSet<Pid>& expandedProcessIDs() const { return m_expandedProcessIDs; }
    bool didApplyDefaultExpansion() const { return m_defaultExpansion.didApplyDefaultExpansion(); }
    void toggleExpansion(Pid pid);

    // The texts of the strip: "3 limits", "1 whitelisted", and each chip's text in order.
    QString limitCountText() const;
    QString whitelistCountText() const;
    QStringList chipTexts() const;
    QString footerText() const;

    // The context menus, built as they open; the caller owns them.
    QMenu* buildRowMenu(const ProcessInfo& process, bool treeRow, QWidget* parent = nullptr);
    QMenu* buildLimitChipMenu(const ProcessLimit& limit, QWidget* parent = nullptr);
    QMenu* buildWhitelistChipMenu(const QString& name, QWidget* parent = nullptr);

    // Opens the limit sheet for a process, with the limit that covers it if any.
    void editLimit(const QString& processName);
    void presentAddLimitSheet();
    void presentAddWhitelistSheet();
    const std::optional<ProcessLimitEditor>& editingLimit() const { return m_editingLimit; }
    bool showAddLimitSheet() const { return m_showAddLimitSheet; }
    bool showAddWhitelistSheet() const { return m_showAddWhitelistSheet; }
    // The sheet on show, or null.
    QDialog* presentedSheet() const { return m_sheet; }

    ProcessTreeModel* treeModel() const { return m_treeModel; }
    ProcessListModel* listModel() const { return m_listModel; }
    QTreeView* treeView() const { return m_treeView; }
    QListView* flatView() const { return m_flatView; }
    SearchBar* searchBar() const { return m_searchBar; }

private:
    QWidget* buildColumnHeader();
    QWidget* buildControls();
    void refreshTree();
    void refreshFlatList();
    void refreshControls();
    void refreshFooter();
    void updatePage();
    void applyDefaultExpansion();
    void dismissSheet();
    // Shows `sheet` modally; `flag` (the edit sheet: none) is true while it is open.
    void presentSheet(QDialog* sheet, bool* flag);
    void showRowMenu(const QPoint& position, bool treeRow);

    ProcessMonitor& m_processMonitor;
    ConfigManager& m_configManager;

    QString m_searchText;
    QSet<Pid> m_expandedProcessIDs;
    DefaultExpansion m_defaultExpansion;
    QList<Pid> m_rootIDs;
    bool m_showAddLimitSheet = false;
    bool m_showAddWhitelistSheet = false;
    std::optional<ProcessLimitEditor> m_editingLimit;
    QPointer<QDialog> m_sheet;
    // While the view follows the set, its expand and collapse signals aren't the user's.
    bool m_syncingExpansion = false;

    ProcessTreeModel* m_treeModel;
    ProcessListModel* m_listModel;
    SearchBar* m_searchBar = nullptr;
    QLabel* m_limitCount = nullptr;
    QLabel* m_whitelistCount = nullptr;
    QWidget* m_chipRow = nullptr;
    QHBoxLayout* m_chipLayout = nullptr;
    QStackedWidget* m_pages = nullptr;
    QTreeView* m_treeView = nullptr;
    QListView* m_flatView = nullptr;
    EmptyStateView* m_emptyTree = nullptr;
    EmptyStateView* m_noMatches = nullptr;
    QLabel* m_processCount = nullptr;
    QLabel* m_updated = nullptr;
};

}  // namespace zelvar
