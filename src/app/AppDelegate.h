#pragma once

#include <QObject>
#include <QPointer>
#include <memory>

#include "config/MonitorConfig.h"
#include "platform/Ports.h"
#include "ui/DefaultExpansion.h"

namespace zelvar {

class AlertManager;
class BandwidthMonitor;
class MenuBarStatus;
class ConfigManager;
class DashboardWindow;
class Monitors;
class NotificationHelper;
class ProcessMonitor;
class SoundPlayer;
class StatusItem;

// Owns everything long-lived, creates it at launch in a fixed order and stops it at the end.
// The program has no window of its own until the dashboard opens, and keeps running when the
// dashboard closes. Runs on the main thread.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    // `ports` must outlive the delegate.
    explicit AppDelegate(const Ports& ports, QObject* parent = nullptr);
    ~AppDelegate() override;

    // The composition, in order: activation policy, window-close rule, the monitors
    // (configuration, alerts, process monitoring, started), status item, notification
    // permission, daemon, menu-bar monitors.
    void applicationDidFinishLaunching();
    // The shutdown, in order: the menu-bar monitors, process monitoring, the configuration.
    // Runs once, when the application is about to quit.
    void applicationWillTerminate();

    // Opens the one dashboard window, creating it the first time.
    void openDashboard();
    // Asks the application to quit; the shutdown follows.
    void quitApp();

    // Each is null before launch.
    ConfigManager* configManager() const;
    AlertManager* alertManager() const;
    NotificationHelper* notificationHelper() const;
    SoundPlayer* soundPlayer() const;
    ProcessMonitor* processMonitor() const;
    BandwidthMonitor* bandwidthMonitor() const;
    StatusItem* statusItem() const { return m_statusItem.get(); }
    DashboardWindow* dashboardWindow() const { return m_dashboardWindow.get(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // How the dashboard's process tree finds the rows it opens at first, on this system.
    static DefaultExpansion::Anchors expansionAnchors();
    void installBundledDaemon(MonitorConfig config);
    void startMenuBarMonitors();
    void updateMenuBarStatus();
    // After a window has closed: back to accessory unless another window is still on screen.
    void applyWindowCloseRule(const QPointer<QObject>& closing);

    Ports m_ports;
    bool m_terminated = false;

    std::unique_ptr<StatusItem> m_statusItem;
    std::unique_ptr<DashboardWindow> m_dashboardWindow;
    // Every monitor, built at launch.
    std::unique_ptr<Monitors> m_monitors;
    // The status item's picture and tool tip, following the rates and the power.
    std::unique_ptr<MenuBarStatus> m_menuBarStatus;
};

}  // namespace zelvar
