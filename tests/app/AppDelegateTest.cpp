#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenu>
#include <QTimer>
#include <csignal>

#include "app/AppDelegate.h"
#include "app/TerminationSignals.h"
#include "config/ConfigManager.h"
#include "process/ProcessMonitor.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "ui/DashboardWindow.h"
#include "ui/StatusItem.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

// The delegate over a fake of every port, under a temporary home, launched.
class AppDelegateTest : public ::testing::Test {
protected:
    AppDelegateTest() { m_delegate.applicationDidFinishLaunching(); }

    // Lets the queued window-close rule run.
    static void settle() {
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents();
        }
    }

    LogCapture m_log;
    FakePorts m_fakes;
    AppDelegate m_delegate{m_fakes.ports()};
};

}  // namespace

// The launch without a tray, then both ways out: "Quit Zelvar+" from the status menu and a
// termination signal take the same shutdown.
TEST(AppDelegateShutdownTest, LaunchesWithoutTrayAndBothWaysOutStopAndSave) {
    for (const bool bySignal : {false, true}) {
        SCOPED_TRACE(bySignal ? "SIGTERM" : "menu");
        LogCapture log;
        FakePorts fakes;
        AppDelegate delegate(fakes.ports());
        TerminationSignals termination;
        QObject::connect(&termination, &TerminationSignals::terminationRequested, &delegate,
                         &AppDelegate::quitApp);
        delegate.applicationDidFinishLaunching();

        EXPECT_EQ(fakes.activation.changes(), QStringList{"accessory"});
        ASSERT_NE(delegate.statusItem(), nullptr);
        EXPECT_FALSE(delegate.statusItem()->isShown());
        EXPECT_TRUE(
            log.contains("[AppDelegate] No system tray available; running without a "
                         "status item"));
        EXPECT_EQ(fakes.notifications.requests(), 1);  // the launch's; the helper needed none
        EXPECT_TRUE(delegate.processMonitor()->isMonitoring());
        EXPECT_TRUE(processEventsUntil(
            [&] { return !delegate.processMonitor()->currentProcesses().isEmpty(); }));
        EXPECT_TRUE(processEventsUntil([&] {
            return log.contains(
                "[AppDelegate] No daemon installer available; running without the daemon");
        }));
        EXPECT_FALSE(QFile::exists(ConfigManager::defaultFile(fakes.paths)));

        delegate.configManager()->addLimit("Safari", 2048, false);  // saves
        QFile::remove(ConfigManager::defaultFile(fakes.paths));
        QTimer::singleShot(0, [&] {
            if (bySignal) {
                ::raise(SIGTERM);
                return;
            }
            std::unique_ptr<QMenu> menu(delegate.statusItem()->buildMenu());
            menu->actions().last()->trigger();
        });
        QApplication::exec();

        EXPECT_FALSE(delegate.processMonitor()->isMonitoring());
        QFile file(ConfigManager::defaultFile(fakes.paths));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QJsonObject written = QJsonDocument::fromJson(file.readAll()).object();
        ASSERT_EQ(written["limits"].toArray().size(), 1);
        EXPECT_EQ(written["limits"][0]["process_name"].toString(), "Safari");
    }
}

TEST_F(AppDelegateTest, DashboardIsCreatedOnceAndComesBackTheSame) {
    EXPECT_EQ(m_delegate.dashboardWindow(), nullptr);
    // From the status menu's first entry.
    std::unique_ptr<QMenu> menu(m_delegate.statusItem()->buildMenu());
    menu->actions().first()->trigger();
    DashboardWindow* window = m_delegate.dashboardWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->windowTitle(), "Zelvar+");
    EXPECT_EQ(window->size(), QSize(900, 700));
    EXPECT_TRUE(window->isVisible());

    window->move(40, 60);
    const QPoint placed = window->pos();
    window->close();
    ASSERT_TRUE(processEventsUntil([&] { return !window->isVisible(); }));
    m_delegate.openDashboard();
    m_delegate.openDashboard();
    EXPECT_EQ(m_delegate.dashboardWindow(), window);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->pos(), placed);
    EXPECT_EQ(m_fakes.activation.changes().count("regular"), 3);

    // The size the user gave it outlives the window: the next run's opens at that size.
    window->resize(1000, 760);
    window->close();
    EXPECT_EQ(DashboardWindow(m_fakes.paths.dataDirectory(kZelvar2Folder)).size(),
              QSize(1000, 760));
}

TEST_F(AppDelegateTest, ClosingTheLastVisibleWindowReturnsToAccessory) {
    m_delegate.openDashboard();
    QWidget other;
    other.show();
    m_delegate.dashboardWindow()->close();
    settle();
    EXPECT_EQ(m_fakes.activation.changes(), (QStringList{"accessory", "regular"}));
    other.close();
    settle();
    EXPECT_EQ(m_fakes.activation.changes(), (QStringList{"accessory", "regular", "accessory"}));

    // A miniaturized window counts as closed when another window closes.
    m_delegate.openDashboard();
    other.showMinimized();
    m_delegate.dashboardWindow()->close();
    settle();
    EXPECT_EQ(m_fakes.activation.changes().last(), "accessory");
    EXPECT_EQ(m_fakes.activation.changes().size(), 5);
}
