#include <QApplication>
#include <QMenu>
#include <QTimer>
#include <csignal>

#include "app/AppDelegate.h"
#include "app/TerminationSignals.h"
#include "config/ConfigManager.h"
#include "power/BatteryPowerSnapshot.h"
#include "process/ProcessMonitor.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"
#include "ui/DashboardWindow.h"
#include "ui/StatusItem.h"

// Both ways out, the status menu's Quit and a termination signal, take the same shutdown.
TEST(AppDelegateTest, LaunchesWithoutTrayOpensTheDashboardAndBothWaysOutStopAndSave) {
    for (const bool bySignal : {false, true}) {
        SCOPED_TRACE(bySignal ? "SIGTERM" : "menu");
        LogCapture log;
        FakePorts fakes;
        AppDelegate delegate(fakes.ports());
        TerminationSignals termination;
        QObject::connect(&termination, &TerminationSignals::terminationRequested, &delegate,
                         &AppDelegate::quitApp);
        delegate.applicationDidFinishLaunching();

        ASSERT_TRUE(delegate.statusItem() && !delegate.statusItem()->isShown());
        EXPECT_TRUE(log.contains("No system tray available; running without a status item"));
        EXPECT_EQ(fakes.notifications.requests(), 1);  // the launch's; the helper needed none
        EXPECT_TRUE(processEventsUntil([&] {
            return !delegate.processMonitor()->currentProcesses().isEmpty() &&
                   // No daemon's executable lies beside the test: the installation fails,
                   // is logged, and the app runs on.
                   log.contains(
                       "[AppDelegate] Failed to install bundled daemon: Bundled daemon "
                       "helper is missing: ");
        }));
        EXPECT_FALSE(QFile::exists(ConfigManager::defaultFile(fakes.paths)));

        // The dashboard, from the status menu's first entry, is created once and comes back
        // the same; closing the last visible (not minimized) window returns to accessory.
        EXPECT_EQ(delegate.dashboardWindow(), nullptr);
        const auto settle = [] { processEventsUntil([] { return false; }, 20); };
        std::unique_ptr<QMenu>(delegate.statusItem()->buildMenu())->actions().first()->trigger();
        DashboardWindow* window = delegate.dashboardWindow();
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(window->size(), QSize(900, 700));  // nothing saved yet
        window->move(40, 60);
        const QPoint placed = window->pos();
        window->close();
        settle();
        delegate.openDashboard();
        delegate.openDashboard();
        EXPECT_EQ(std::tuple(delegate.dashboardWindow(), window->isVisible(), window->pos()),
                  std::tuple(window, true, placed));
        QWidget other;
        other.show();
        window->close();
        settle();
        other.close();
        settle();
        delegate.openDashboard();
        other.showMinimized();
        window->resize(1000, 760);
        window->close();
        settle();
        EXPECT_EQ(fakes.activation.changes(),
                  (QStringList{"accessory", "regular", "accessory", "regular", "regular",
                               "accessory", "regular", "accessory"}));
        // The size the user gave it outlives the window: the next run's opens at that size.
        EXPECT_EQ(DashboardWindow(fakes.paths.dataDirectory(kZelvar2Folder)).size(),
                  QSize(1000, 760));

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
        EXPECT_EQ(QJsonDocument::fromJson(file.readAll())["limits"][0]["process_name"],
                  QJsonValue("Safari"));
    }
}

// The status item's text follows the battery: the power monitor's share of a full load.
TEST(AppDelegateTest, StatusItemCarriesThePowerText) {
    LogCapture log;
    FakePorts fakes;
    fakes.clock.setNow((BatteryPowerSnapshot::unavailable(), QDateTime::currentDateTimeUtc()));
    fakes.battery.set(BatteryReading{.amperageMA = -1500, .voltageMV = 10000});
    AppDelegate delegate(fakes.ports());
    delegate.applicationDidFinishLaunching();
    EXPECT_TRUE(processEventsUntil([&] {
        return delegate.statusItem()->toolTip().endsWith(QStringLiteral(", Power -50%"));
    })) << delegate.statusItem()->toolTip().toStdString();
    delegate.applicationWillTerminate();
}

TEST(StatusItemTest, MenuOffersTheDashboardAndQuitAndExistsOnlyWhileOpen) {
    StatusItem item;
    std::unique_ptr<QMenu> menu(item.buildMenu());
    QStringList described;
    for (QAction* action : menu->actions()) {
        described << (action->isSeparator() ? QStringLiteral("---")
                                            : action->text() + "|" + action->shortcut().toString());
    }
    EXPECT_EQ(described, (QStringList{"Open Dashboard|", "---", "Quit Zelvar+|Ctrl+Q"}));

    item.showStatusMenu();
    QPointer<QMenu> first = item.openMenu();
    ASSERT_TRUE(first && first->isVisible());
    item.showStatusMenu();
    QPointer<QMenu> second = item.openMenu();
    ASSERT_TRUE(second && second != first);
    EXPECT_TRUE(processEventsUntil([&] { return first.isNull(); }));
    second->hide();
    EXPECT_TRUE(processEventsUntil([&] { return second.isNull(); }));
}
