#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QTabWidget>
#include <QTreeView>

#include "UiFixture.h"
#include "compose/AlertStack.h"
#include "network/BandwidthMonitor.h"
#include "support/LogCapture.h"
#include "ui/ContentView.h"
#include "ui/DiskView.h"
#include "ui/NetworkView.h"
#include "ui/ProcessLimitEditorSheet.h"
#include "ui/ProcessListModel.h"
#include "ui/ProcessTreeModel.h"
#include "ui/ProcessesView.h"
#include "ui/SettingsView.h"
#include "ui/audio/AudioView.h"
#include "ui/focus/FocusView.h"
#include "ui/power/PowerView.h"

namespace {

// The user's own processes have pids from 100 up, as the fixture numbers them.
DefaultExpansion::Anchors anchors() {
    return DefaultExpansion::linuxAnchors([](Pid pid) { return pid >= 100; });
}

// The entries of a menu, a separator as "-".
QStringList entries(const QMenu& menu) {
    QStringList texts;
    for (const QAction* action : menu.actions()) {
        texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return texts;
}

void trigger(QMenu& menu, const QString& text) {
    for (QAction* action : menu.actions()) {
        if (action->text() == text) {
            action->trigger();
            return;
        }
    }
    ADD_FAILURE() << "no entry " << text.toStdString();
}

class ProcessesViewTest : public UiFixture {
protected:
    // Publishes a table of (pid, parent, name, mebibytes) by one cycle.
    void sampleTable(const std::vector<std::tuple<Pid, Pid, QString, int>>& rows) {
        std::vector<FakeProcessTable::Process> table;
        for (const auto& [pid, parent, name, megabytes] : rows) {
            table.push_back({pid, parent, name, quint64(megabytes) << 20, 0});
        }
        m_fake.processTable.setProcesses(table);
        const int before = m_cycles;
        if (processMonitor().isMonitoring()) {
            m_fake.clock.advance(config().config().checkIntervalSeconds);
        } else {
            processMonitor().startMonitoring();
        }
        ASSERT_TRUE(processEventsUntil([&] { return m_cycles > before; }));
    }

    ProcessesView m_view{processMonitor(), config(), anchors()};
    // On screen, as the dashboard's tab would be: a hidden view waits until it shows.
    ProcessesViewTest() { m_view.show(); }
};

TEST_F(ProcessesViewTest, FilterSwitchesToTheFlatListAndBackWithTheTreeAsItWas) {
    EXPECT_EQ(m_view.page(), ProcessesView::Page::EmptyTree);
    EXPECT_EQ(m_view.emptyStateMessage(), "Start monitoring to see processes");

    sampleTable({{1, 0, "init", 4},
                 {100, 1, "systemd", 10},
                 {101, 100, "Chromium", 900},
                 {102, 101, "chromium-renderer", 300},
                 {103, 100, "bash", 5}});
    // Pid 1 and the user's own manager open by themselves, once.
    EXPECT_TRUE(m_view.didApplyDefaultExpansion());
    m_view.toggleExpansion(101);
    const QSet<Pid> expanded{1, 100, 101};
    EXPECT_EQ(m_view.expandedProcessIDs(), expanded);
    EXPECT_EQ(m_view.page(), ProcessesView::Page::Tree);

    m_view.setSearchText("CHROM");
    EXPECT_EQ(m_view.page(), ProcessesView::Page::Flat);
    ASSERT_EQ(m_view.listModel()->rowCount(), 2);
    // In the order of the current processes, which is by memory.
    EXPECT_EQ(m_view.listModel()->index(0).data().toString(), "Chromium");
    EXPECT_EQ(m_view.listModel()->index(1).data().toString(), "chromium-renderer");

    // Blanks are a filter too, and they match nothing here.
    m_view.setSearchText("  ");
    EXPECT_EQ(m_view.page(), ProcessesView::Page::NoMatches);
    EXPECT_EQ(m_view.emptyStateMessage(), "No matches for \"  \"");

    // A refresh while filtering, then back to the tree as it was left.
    sampleTable({{1, 0, "init", 4},
                 {100, 1, "systemd", 10},
                 {101, 100, "Chromium", 950},
                 {102, 101, "chromium-renderer", 300},
                 {103, 100, "bash", 5}});
    m_view.setSearchText("");
    EXPECT_EQ(m_view.page(), ProcessesView::Page::Tree);
    EXPECT_EQ(m_view.expandedProcessIDs(), expanded);
    for (Pid pid : expanded) {
        EXPECT_TRUE(m_view.treeView()->isExpanded(m_view.treeModel()->indexOfPid(pid))) << pid;
    }
    EXPECT_EQ(m_view.footerText().section('\n', 0, 0), "5 processes");

    // A process that ends takes its expansion with it.
    sampleTable({{1, 0, "init", 4}, {100, 1, "systemd", 10}, {103, 100, "bash", 5}});
    EXPECT_EQ(m_view.expandedProcessIDs(), QSet<Pid>({1, 100}));

    // Closed, it follows no sample; shown again, it has the newest one.
    m_view.hide();
    sampleTable({{1, 0, "init", 4}, {100, 1, "systemd", 10}, {104, 100, "zsh", 5}});
    EXPECT_FALSE(m_view.treeModel()->indexOfPid(104).isValid());
    EXPECT_EQ(m_view.footerText().section('\n', 0, 0), "3 processes");
    m_view.show();
    EXPECT_TRUE(m_view.treeModel()->indexOfPid(104).isValid());
    EXPECT_FALSE(m_view.treeModel()->indexOfPid(103).isValid());
}

TEST_F(ProcessesViewTest, WithoutTheManagerNothingOpensUntilTheRootsChange) {
    sampleTable({{1, 0, "init", 4}, {100, 1, "bash", 5}});
    EXPECT_FALSE(m_view.didApplyDefaultExpansion());
    // The manager appears below the same root: the roots are the same, so no new try.
    sampleTable({{1, 0, "init", 4}, {100, 1, "bash", 5}, {110, 1, "systemd", 5}});
    EXPECT_FALSE(m_view.didApplyDefaultExpansion());
    // An orphan is a new root: the rule runs again and finds the manager.
    sampleTable(
        {{1, 0, "init", 4}, {100, 1, "bash", 5}, {110, 1, "systemd", 5}, {300, 299, "x", 1}});
    EXPECT_TRUE(m_view.didApplyDefaultExpansion());
    EXPECT_EQ(m_view.expandedProcessIDs(), QSet<Pid>({1, 110}));
}

TEST_F(ProcessesViewTest, RowMenusOfferWhatTheConfigurationAllowsAndAct) {
    sampleTable({{1, 0, "init", 4}, {100, 1, "chrome", 2000}, {101, 100, "helper", 48}});
    config().addLimit("chrome", 1500.7, true);
    ProcessInfo chrome = m_view.treeModel()
                             ->indexOfPid(100)
                             .data(ProcessTreeModel::ProcessRole)
                             .value<ProcessInfo>();

    std::unique_ptr<QMenu> tree(m_view.buildRowMenu(chrome, true));
    EXPECT_EQ(entries(*tree),
              QStringList({"Copy Name", "Copy PID", "Copy RAM", "-", "Edit RAM Limit...",
                           "Disable Auto-Kill", "Remove RAM Limit", "-", "Whitelist Process"}));
    trigger(*tree, "Copy RAM");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "2.0 GB");  // the subtree's total
    trigger(*tree, "Copy PID");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "100");
    trigger(*tree, "Whitelist Process");
    EXPECT_EQ(savedConfig().whitelistedProcesses, std::set<QString>({"chrome"}));
    trigger(*tree, "Edit RAM Limit...");
    ASSERT_TRUE(m_view.editingLimit().has_value());
    EXPECT_EQ(m_view.editingLimit()->processName, "chrome");
    EXPECT_EQ(m_view.editingLimit()->existingLimit->limitMB, 1500.7);
    ASSERT_NE(qobject_cast<ProcessLimitEditorSheet*>(m_view.presentedSheet()), nullptr);
    m_view.presentedSheet()->reject();
    EXPECT_FALSE(m_view.editingLimit().has_value());

    // The flat row has no "Copy RAM"; whitelisted and without a limit, it offers the reverse.
    config().removeLimit(config().config().limits[0].id);
    std::unique_ptr<QMenu> flat(m_view.buildRowMenu(chrome, false));
    EXPECT_EQ(entries(*flat), QStringList({"Copy Name", "Copy PID", "-", "Set RAM Limit...", "-",
                                           "Remove from Whitelist"}));
    trigger(*flat, "Remove from Whitelist");
    EXPECT_TRUE(savedConfig().whitelistedProcesses.empty());
}

TEST_F(ProcessesViewTest, StripCountsAndChipsFollowTheConfigurationAndTheirMenusAct) {
    config().addLimit("chrome", 1500.7, false);
    config().addToWhitelist("zsh");
    EXPECT_EQ(m_view.limitCountText(), "1 limits");
    EXPECT_EQ(m_view.whitelistCountText(), "1 whitelisted");
    EXPECT_EQ(m_view.chipTexts(), QStringList({"chrome 1500MB", "zsh"}));

    const ProcessLimit limit = config().config().limits[0];
    std::unique_ptr<QMenu> menu(m_view.buildLimitChipMenu(limit));
    EXPECT_EQ(entries(*menu), QStringList({"Edit Limit", "Enable Auto-Kill", "Remove Limit"}));
    trigger(*menu, "Enable Auto-Kill");
    EXPECT_TRUE(savedConfig().limits[0].autoKillEnabled);
    trigger(*menu, "Remove Limit");
    EXPECT_TRUE(savedConfig().limits.isEmpty());

    std::unique_ptr<QMenu> whitelist(m_view.buildWhitelistChipMenu("zsh"));
    trigger(*whitelist, "Remove from Whitelist");
    EXPECT_EQ(m_view.chipTexts(), QStringList());
    EXPECT_EQ(m_view.whitelistCountText(), "0 whitelisted");
}

class ContentViewTest : public UiFixture {
protected:
    std::unique_ptr<ContentView> makeView() {
        return std::make_unique<ContentView>(ContentView::Managers{
            processMonitor(), config(), m_monitors->alerts()->alerts, m_network,
            *m_networkMonitors.batteryPowerMonitor(), *m_networkMonitors.audioMonitor(),
            *m_networkMonitors.focusMonitor(), m_fake.notifications, m_monitors->alerts()->sounds,
            m_fake.clock, anchors()});
    }

    // The other tabs' monitors: built from the same fake ports, never started.
    Monitors m_networkMonitors{m_fake.ports(), Monitors::Mode::Headless,
                               Monitors::Parts(Monitors::Part::Bandwidth) | Monitors::Part::Power |
                                   Monitors::Part::Audio | Monitors::Part::Focus};
    BandwidthMonitor& m_network = *m_networkMonitors.bandwidthMonitor();
};

TEST_F(ContentViewTest, SevenTabsInOrderTheHeaderAndOneLineAtStart) {
    LogCapture log;
    auto view = makeView();
    EXPECT_EQ(log.lines().filter("[ContentView]"),
              QStringList({"[ContentView] Initialized with managers"}));
    QStringList labels;
    for (int i = 0; i < view->tabs()->count(); ++i) {
        labels << view->tabs()->tabText(i);
    }
    EXPECT_EQ(labels, QStringList({"RAM", "Disk", "Network", "Power", "Audio", "Focus", "Alerts"}));
    EXPECT_EQ(view->tabs()->currentIndex(), 0);
    EXPECT_NE(qobject_cast<DiskView*>(view->tabs()->widget(1)), nullptr);
    EXPECT_NE(qobject_cast<NetworkView*>(view->tabs()->widget(2)), nullptr);
    EXPECT_NE(qobject_cast<PowerView*>(view->tabs()->widget(3)), nullptr);
    EXPECT_NE(qobject_cast<AudioView*>(view->tabs()->widget(4)), nullptr);
    EXPECT_NE(qobject_cast<FocusView*>(view->tabs()->widget(5)), nullptr);
    EXPECT_EQ(view->minimumSize(), QSize(900, 700));
    // Before the first cycle: the monitor's initial time.
    EXPECT_EQ(view->updatedText(),
              "Updated: " + QLocale().toString(m_fake.clock.now().toLocalTime().time(),
                                               QLocale::ShortFormat));
}

TEST_F(ContentViewTest, SettingsCloseKeepsTheTabAndAFailedSaveShowsInTheWindow) {
    auto view = makeView();
    view->tabs()->setCurrentIndex(6);
    view->presentSettings();
    ASSERT_TRUE(view->showSettings());
    view->settingsSheet()->reject();
    ASSERT_TRUE(processEventsUntil([&] { return !view->showSettings(); }));
    EXPECT_EQ(view->tabs()->currentIndex(), 6);

    EXPECT_EQ(view->statusText(), "");
    // Something that isn't a file where the configuration goes: the save fails.
    QFile::remove(config().configPath());
    ASSERT_TRUE(QDir().mkpath(config().configPath()));
    config().addToWhitelist("zsh");
    EXPECT_THAT(view->statusText().toStdString(), ::testing::StartsWith("Error saving config: "));
}

}  // namespace
