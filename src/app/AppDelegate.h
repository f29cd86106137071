#pragma once

#include <QObject>
#include <QPointer>
#include <memory>

#include "config/MonitorConfig.h"

namespace zelvar {

class AlertManager;
class BandwidthMonitor;
class MenuBarStatus;
class ConfigManager;
class DashboardWindow;
class NotificationHelper;
class DiskIOReader;
class DiskMonitor;
class DiskIOPoller;
class LimitEnforcer;
class ProcessInfoProvider;
class ProcessMonitor;
class SoundPlayer;
class StatusItem;
struct SystemServices;

// Owns everything long-lived, creates it at launch in a fixed order and stops it at the end.
// The program has no window of its own until the dashboard opens, and keeps running when the
// dashboard closes. Runs on the main thread.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    explicit AppDelegate(SystemServices& services, QObject* parent = nullptr);
    ~AppDelegate() override;

    // The composition, in order: activation policy, window-close rule, configuration, alerts,
    // process monitoring, status item, notification permission, daemon, menu-bar monitors.
    void applicationDidFinishLaunching();
    // The shutdown, in order: the menu-bar monitors, process monitoring, the configuration.
    // Runs once, when the application is about to quit.
    void applicationWillTerminate();

    // Opens the one dashboard window, creating it the first time.
    void openDashboard();
    // Asks the application to quit; the shutdown follows.
    void quitApp();

    ConfigManager* configManager() const { return m_configManager.get(); }
    AlertManager* alertManager() const { return m_alertManager.get(); }
    NotificationHelper* notificationHelper() const { return m_notificationHelper.get(); }
    SoundPlayer* soundPlayer() const { return m_soundPlayer.get(); }
    ProcessMonitor* processMonitor() const { return m_processMonitor.get(); }
    BandwidthMonitor* bandwidthMonitor() const { return m_bandwidthMonitor.get(); }
    StatusItem* statusItem() const { return m_statusItem.get(); }
    DashboardWindow* dashboardWindow() const { return m_dashboardWindow.get(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void installBundledDaemon(MonitorConfig config);
    void startMenuBarMonitors();
    void updateMenuBarStatus();
    // After a window has closed: back to accessory unless another window is still on screen.
    void applyWindowCloseRule(const QPointer<QObject>& closing);

    SystemServices& m_services;
    bool m_terminated = false;

    std::unique_ptr<StatusItem> m_statusItem;
    std::unique_ptr<DashboardWindow> m_dashboardWindow;
    // Created idle with the delegate. The battery power, audio and focus monitors join here.
    std::unique_ptr<BandwidthMonitor> m_bandwidthMonitor;
    // The status item's picture and tool tip, following the rates (and later the power).
    std::unique_ptr<MenuBarStatus> m_menuBarStatus;
    std::unique_ptr<ConfigManager> m_configManager;
    std::unique_ptr<NotificationHelper> m_notificationHelper;
    std::unique_ptr<SoundPlayer> m_soundPlayer;
    std::unique_ptr<AlertManager> m_alertManager;
    std::unique_ptr<ProcessInfoProvider> m_processInfoProvider;
    std::unique_ptr<DiskMonitor> m_diskMonitor;
    std::unique_ptr<DiskIOReader> m_diskIOReader;
    std::unique_ptr<LimitEnforcer> m_limitEnforcer;
    std::unique_ptr<DiskIOPoller> m_diskIOPoller;
    std::unique_ptr<ProcessMonitor> m_processMonitor;
};

}  // namespace zelvar
