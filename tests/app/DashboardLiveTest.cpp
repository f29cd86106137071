#include <QCoreApplication>
#include <QTabWidget>

#include "app/AppDelegate.h"
#include "platform/system/PlatformServices.h"
#include "process/ProcessMonitor.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Testing.h"
#include "ui/ContentView.h"
#include "ui/DashboardWindow.h"
#include "ui/ProcessListModel.h"
#include "ui/ProcessTreeModel.h"
#include "ui/ProcessesView.h"

namespace {

int rowsBelow(const QAbstractItemModel& model, const QModelIndex& parent = {}) {
    int rows = model.rowCount(parent);
    for (int row = 0; row < model.rowCount(parent); ++row) {
        rows += rowsBelow(model, model.index(row, 0, parent));
    }
    return rows;
}

// The tray app's dashboard over this machine's real process table (everything else fake, so
// that nothing is notified, killed or written outside a temporary home).
TEST(DashboardLiveTest, RamTabListsThisMachinesProcessesAsATreeAndFiltered) {
    FakePorts fakes;
    const std::unique_ptr<ProcessTable> table = makeProcessTable();
    const Ports ports{
        fakes.clock,          fakes.clock,       fakes.commands,     *table,
        fakes.paths,          fakes.volumes,     fakes.interfaces,   fakes.networkName,
        fakes.processNetwork, fakes.serviceJobs, fakes.audioDevices, fakes.signaller,
        fakes.notifications,  fakes.sounds,      fakes.activation,   fakes.battery,
        fakes.powerLog,       fakes.workspace,   fakes.profile};
    AppDelegate delegate(ports);
    delegate.applicationDidFinishLaunching();
    delegate.openDashboard();
    ASSERT_NE(delegate.dashboardWindow(), nullptr);
    auto* content = qobject_cast<ContentView*>(delegate.dashboardWindow()->content());
    ASSERT_NE(content, nullptr);
    EXPECT_TRUE(delegate.dashboardWindow()->isVisible());
    EXPECT_EQ(content->tabs()->tabText(content->tabs()->currentIndex()), "RAM");

    ProcessesView& ram = *content->processesView();
    ASSERT_TRUE(processEventsUntil(
        [&] { return !delegate.processMonitor()->currentProcesses().isEmpty(); }, 15000));
    QCoreApplication::processEvents();

    // Every sampled process is a row of the tree, this test among them.
    const auto& processes = delegate.processMonitor()->currentProcesses();
    EXPECT_EQ(rowsBelow(*ram.treeModel()), processes.size());
    const Pid self = static_cast<Pid>(QCoreApplication::applicationPid());
    const QModelIndex row = ram.treeModel()->indexOfPid(self);
    ASSERT_TRUE(row.isValid());
    EXPECT_EQ(row.data().toString(), "test_shell");
    EXPECT_EQ(ram.page(), ProcessesView::Page::Tree);

    ram.setSearchText("test_shel");
    EXPECT_EQ(ram.page(), ProcessesView::Page::Flat);
    bool listed = false;
    for (int i = 0; i < ram.listModel()->rowCount(); ++i) {
        listed |= ram.listModel()->index(i).data(ProcessListModel::PidRole).toInt() == self;
    }
    EXPECT_TRUE(listed);
    delegate.applicationWillTerminate();
}

}  // namespace
