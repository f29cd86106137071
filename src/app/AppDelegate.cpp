#include "app/AppDelegate.h"

#include <QApplication>
#include <QEvent>
#include <QThreadPool>
#include <QWidget>

#include "app/DaemonAgent.h"
#include "common/Log.h"
#include "compose/AlertStack.h"
#include "compose/Monitors.h"
#include "config/ConfigManager.h"
#include "menubar/MenuBarStatus.h"
#include "platform/system/PlatformServices.h"
#include "power/BatteryPowerMonitor.h"
#include "ui/ContentView.h"
#include "ui/DashboardWindow.h"
#include "ui/StatusItem.h"

namespace zelvar {

AppDelegate::AppDelegate(const Ports& ports, QObject* parent) : QObject(parent), m_ports(ports) {
    // Quitting from the menu and a termination signal both end here.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &AppDelegate::applicationWillTerminate);
}

AppDelegate::~AppDelegate() {
    if (qApp) {
        qApp->removeEventFilter(this);
    }
}

void AppDelegate::applicationDidFinishLaunching() {
    m_ports.activationPolicy.setAccessory();
    qApp->installEventFilter(this);

    m_monitors = std::make_unique<Monitors>(m_ports, Monitors::Mode::Desktop);
    m_monitors->startProcessMonitoring();

    m_statusItem = std::make_unique<StatusItem>();
    connect(m_statusItem.get(), &StatusItem::openDashboardRequested, this,
            &AppDelegate::openDashboard);
    connect(m_statusItem.get(), &StatusItem::quitRequested, this, &AppDelegate::quitApp);
    updateMenuBarStatus();
    if (!m_statusItem->show()) {
        // A headless machine: everything else runs on without a face.
        logLine(QStringLiteral(
            "[AppDelegate] No system tray available; running without a status item"));
    }

    // The answer is not needed here: the notification helper keeps its own view of it.
    m_ports.notificationCenter.requestAuthorization([](bool, const QString&) {});

    installBundledDaemon(m_monitors->config()->config());
    startMenuBarMonitors();
}

void AppDelegate::applicationWillTerminate() {
    if (m_terminated) {
        return;
    }
    m_terminated = true;
    if (m_monitors) {
        m_monitors->stop();
    }
}

void AppDelegate::installBundledDaemon(MonitorConfig config) {
    // The installation blocks on the service manager, so it goes to a background thread. The
    // configuration isn't consulted: the daemon's arguments are constants, so that a change of
    // settings never reinstalls it.
    Q_UNUSED(config);
    QThreadPool::globalInstance()->start([runner = &m_ports.commandRunner, paths = &m_ports.paths] {
        const auto launcher = makeDaemonLauncher();
        if (const auto error = DaemonAgent(*runner, *launcher, *paths).installOrReplace()) {
            logLine(QStringLiteral("[AppDelegate] Failed to install bundled daemon: ") +
                    error->description);
        } else {
            logLine(QStringLiteral("[AppDelegate] Installed bundled daemon LaunchAgent"));
        }
    });
}

void AppDelegate::startMenuBarMonitors() {
    // Every change of a rate, of the battery snapshot or of the daemon's battery samples
    // redraws the item; the first picture comes at once, from the current values.
    m_menuBarStatus = std::make_unique<MenuBarStatus>(
        *m_monitors->bandwidthMonitor(),
        m_ports.system.squareTrayIcons ? MenuBarStatus::Shape::Square : MenuBarStatus::Shape::Wide);
    m_menuBarStatus->setDevicePixelRatio(qApp->devicePixelRatio());
    if (BatteryPowerMonitor* power = m_monitors->batteryPowerMonitor()) {
        m_menuBarStatus->setPowerTextSource([power] { return power->menuPowerRateText(); });
        connect(power, &BatteryPowerMonitor::snapshotChanged, m_menuBarStatus.get(),
                &MenuBarStatus::powerChanged);
        connect(power, &BatteryPowerMonitor::recentBatterySamplesChanged, m_menuBarStatus.get(),
                &MenuBarStatus::powerChanged);
    }
    connect(m_menuBarStatus.get(), &MenuBarStatus::statusChanged, this,
            &AppDelegate::updateMenuBarStatus);
    m_monitors->startMenuBarMonitors();
}

void AppDelegate::updateMenuBarStatus() {
    if (!m_statusItem) {
        return;
    }
    if (!m_menuBarStatus || m_menuBarStatus->image().isNull()) {
        // Before the first picture of the rates: the plain application icon.
        m_statusItem->setIcon(StatusItem::applicationIcon());
        m_statusItem->setToolTip(QStringLiteral("Zelvar+"));
        return;
    }
    m_statusItem->setStatusImage(m_menuBarStatus->image());
    m_statusItem->setToolTip(m_menuBarStatus->toolTip());
}

void AppDelegate::openDashboard() {
    m_ports.activationPolicy.setRegular();
    QApplication::setWindowIcon(StatusItem::applicationIcon());
    if (m_dashboardWindow) {
        m_dashboardWindow->bringToFront();
        return;
    }
    if (!m_monitors) {
        return;
    }
    m_dashboardWindow =
        std::make_unique<DashboardWindow>(m_ports.paths.dataDirectory(kZelvar2Folder));
    AlertStack& alerts = *m_monitors->alerts();
    m_dashboardWindow->setContent(new ContentView(ContentView::Managers{
        *m_monitors->processMonitor(), *m_monitors->config(), alerts.alerts,
        *m_monitors->bandwidthMonitor(), *m_monitors->batteryPowerMonitor(),
        *m_monitors->audioMonitor(), *m_monitors->focusMonitor(), m_ports.notificationCenter,
        alerts.sounds, m_ports.scheduler, expansionAnchors()}));
    m_dashboardWindow->bringToFront();
}

DefaultExpansion::Anchors AppDelegate::expansionAnchors() {
    // Linux: pid 1 and the user's own systemd; macOS: the kernel's and launchd's names.
    std::function<bool(Pid)> ownProcess = makeOwnProcessTest();
    return ownProcess ? DefaultExpansion::linuxAnchors(std::move(ownProcess))
                      : DefaultExpansion::macAnchors();
}

void AppDelegate::quitApp() {
    QCoreApplication::quit();
}

ConfigManager* AppDelegate::configManager() const {
    return m_monitors ? m_monitors->config() : nullptr;
}

AlertManager* AppDelegate::alertManager() const {
    return m_monitors ? &m_monitors->alerts()->alerts : nullptr;
}

NotificationHelper* AppDelegate::notificationHelper() const {
    return m_monitors ? &m_monitors->alerts()->notifications : nullptr;
}

SoundPlayer* AppDelegate::soundPlayer() const {
    return m_monitors ? &m_monitors->alerts()->sounds : nullptr;
}

ProcessMonitor* AppDelegate::processMonitor() const {
    return m_monitors ? m_monitors->processMonitor() : nullptr;
}

BandwidthMonitor* AppDelegate::bandwidthMonitor() const {
    return m_monitors ? m_monitors->bandwidthMonitor() : nullptr;
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Close) {
        auto* widget = qobject_cast<QWidget*>(watched);
        if (widget && widget->isWindow()) {
            // The rule runs after the close has gone through.
            QPointer<QObject> closing(widget);
            QMetaObject::invokeMethod(
                this, [this, closing] { applyWindowCloseRule(closing); }, Qt::QueuedConnection);
        }
    }
    return QObject::eventFilter(watched, event);
}

void AppDelegate::applyWindowCloseRule(const QPointer<QObject>& closing) {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window == closing.data()) {
            continue;
        }
        if (window->isVisible() && !window->isMinimized()) {
            return;
        }
    }
    m_ports.activationPolicy.setAccessory();
}

}  // namespace zelvar
