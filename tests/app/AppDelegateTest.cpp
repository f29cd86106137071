#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenu>
#include <QTemporaryDir>
#include <QTimer>
#include <csignal>

#include "alerts/AlertManager.h"
#include "app/AppDelegate.h"
#include "app/SystemServices.h"
#include "app/TerminationSignals.h"
#include "config/ConfigManager.h"
#include "process/ProcessMonitor.h"
#include "support/EventLoop.h"
#include "support/FakeDesktop.h"
#include "support/FakePaths.h"
#include "support/LogCapture.h"
#include "ui/DashboardWindow.h"
#include "ui/StatusItem.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

// The real system services with the home, the desktop and the activation policy replaced.
class AppDelegateTest : public ::testing::Test {
protected:
    AppDelegateTest() {
        m_services.paths = std::make_unique<FakePaths>(m_home.path());
        m_services.notificationCenter = std::unique_ptr<NotificationCenter>(m_center);
        m_services.soundOutput = std::make_unique<FakeSoundOutput>();
        m_services.activationPolicy = std::unique_ptr<ActivationPolicy>(m_policy);
    }

    QString configFile() const { return ConfigManager::defaultFile(*m_services.paths); }

    QTemporaryDir m_home;
    LogCapture m_log;
    FakeNotificationCenter* m_center = new FakeNotificationCenter;
    FakeActivationPolicy* m_policy = new FakeActivationPolicy;
    SystemServices m_services;
    AppDelegate m_delegate{m_services};
};

}  // namespace

TEST_F(AppDelegateTest, StartsWithoutConfigurationOrTrayAndQuittingWritesTheDefaults) {
    ASSERT_FALSE(QFile::exists(configFile()));
    m_delegate.applicationDidFinishLaunching();

    EXPECT_EQ(m_policy->changes(), QStringList{"accessory"});
    ASSERT_NE(m_delegate.statusItem(), nullptr);
    EXPECT_FALSE(m_delegate.statusItem()->isShown());
    EXPECT_TRUE(
        m_log.contains("[AppDelegate] No system tray available; running without a "
                       "status item"));
    EXPECT_EQ(m_center->requests(), 1);  // the launch's own request; the helper needed none
    ASSERT_NE(m_delegate.processMonitor(), nullptr);
    EXPECT_TRUE(m_delegate.processMonitor()->isMonitoring());
    EXPECT_TRUE(processEventsUntil(
        [&] { return !m_delegate.processMonitor()->currentProcesses().isEmpty(); }));
    EXPECT_TRUE(processEventsUntil([&] {
        return m_log.contains(
            "[AppDelegate] No daemon installer available; running without "
            "the daemon");
    }));
    EXPECT_FALSE(QFile::exists(configFile()));

    // "Quit Zelvar+" from the status menu.
    QTimer::singleShot(0, [&] {
        std::unique_ptr<QMenu> menu(m_delegate.statusItem()->buildMenu());
        menu->actions().last()->trigger();
    });
    QApplication::exec();

    EXPECT_FALSE(m_delegate.processMonitor()->isMonitoring());
    QFile file(configFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonObject written = QJsonDocument::fromJson(file.readAll()).object();
    EXPECT_EQ(written["check_interval"].toDouble(), 5);
    EXPECT_TRUE(written["enable_notifications"].toBool());
    EXPECT_TRUE(written["enable_sound"].toBool());
    EXPECT_TRUE(written["limits"].toArray().isEmpty());
    EXPECT_TRUE(written["whitelist"].toArray().isEmpty());
}

TEST_F(AppDelegateTest, TerminationSignalTakesTheSameShutdown) {
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &m_delegate,
                     &AppDelegate::quitApp);
    m_delegate.applicationDidFinishLaunching();
    m_delegate.configManager()->addLimit("Safari", 2048, false);  // saves
    QFile::remove(configFile());

    QTimer::singleShot(0, [] { ::raise(SIGTERM); });
    QApplication::exec();

    EXPECT_FALSE(m_delegate.processMonitor()->isMonitoring());
    QFile file(configFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonObject written = QJsonDocument::fromJson(file.readAll()).object();
    ASSERT_EQ(written["limits"].toArray().size(), 1);
    EXPECT_EQ(written["limits"][0]["process_name"].toString(), "Safari");
}

TEST_F(AppDelegateTest, DashboardIsCreatedOnceAndComesBackTheSame) {
    m_delegate.applicationDidFinishLaunching();
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
    EXPECT_EQ(m_policy->changes().count("regular"), 3);

    // The size the user gave it outlives the window: the next run's opens at that size.
    window->resize(1000, 760);
    window->close();
    const DashboardWindow nextRun(m_services.paths->dataDirectory(kZelvar2Folder));
    EXPECT_EQ(nextRun.size(), QSize(1000, 760));
}

TEST_F(AppDelegateTest, ClosingTheLastVisibleWindowReturnsToAccessory) {
    m_delegate.applicationDidFinishLaunching();
    m_delegate.openDashboard();
    QWidget other;
    other.setWindowTitle("Other");
    other.show();
    const auto settle = [] {
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents();
        }
    };

    m_delegate.dashboardWindow()->close();
    settle();
    EXPECT_EQ(m_policy->changes(), (QStringList{"accessory", "regular"}));

    other.close();
    settle();
    EXPECT_EQ(m_policy->changes(), (QStringList{"accessory", "regular", "accessory"}));

    // A miniaturized window counts as closed when another window closes.
    m_delegate.openDashboard();
    other.showMinimized();
    m_delegate.dashboardWindow()->close();
    settle();
    EXPECT_EQ(m_policy->changes().last(), "accessory");
    EXPECT_EQ(m_policy->changes().size(), 5);
}
