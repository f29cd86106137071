#include "app/AppDelegate.h"

#include <QApplication>
#include <QEvent>
#include <QThreadPool>
#include <QWidget>

#include "alerts/AlertManager.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "app/SystemServices.h"
#include "common/Log.h"
#include "config/ConfigManager.h"
#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "network/BandwidthMonitor.h"
#include "network/MenuBarStatus.h"
#include "network/UsageCache.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"
#include "ui/DashboardWindow.h"
#include "ui/StatusItem.h"

namespace zelvar {

AppDelegate::AppDelegate(SystemServices& services, QObject* parent)
    : QObject(parent), m_services(services) {
    m_bandwidthMonitor = std::make_unique<BandwidthMonitor>(BandwidthMonitor::Sources{
        *services.interfaceCounters, *services.networkNameSource, *services.processNetworkSource,
        services.processSignaller, services.clock, services.scheduler,
        UsageCache::defaultFile(*services.paths)});
    // Quitting from the menu and a termination signal both end here.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &AppDelegate::applicationWillTerminate);
}

AppDelegate::~AppDelegate() {
    if (qApp) {
        qApp->removeEventFilter(this);
    }
}

void AppDelegate::applicationDidFinishLaunching() {
    m_services.activationPolicy->setAccessory();
    qApp->installEventFilter(this);

    m_configManager = std::make_unique<ConfigManager>(ConfigManager::defaultFile(*m_services.paths),
                                                      m_services.clock);

    m_notificationHelper = std::make_unique<NotificationHelper>(*m_services.notificationCenter);
    m_soundPlayer = std::make_unique<SoundPlayer>(*m_services.soundOutput, m_services.scheduler,
                                                  m_services.paths->dataDirectory(kZelvar2Folder));
    m_alertManager = std::make_unique<AlertManager>(*m_notificationHelper, *m_soundPlayer,
                                                    m_services.clock, m_services.scheduler);
    m_alertManager->setConfigManager(m_configManager.get());

    m_processInfoProvider = std::make_unique<ProcessInfoProvider>(
        *m_services.processTable, m_services.commandRunner, *m_services.serviceJobs,
        m_services.clock, currentSystemProfile().originNames);
    m_diskMonitor = std::make_unique<DiskMonitor>(*m_services.volumes, m_services.clock);
    m_diskIOReader = std::make_unique<DiskIOReader>(DiskIOReader::defaultFile(*m_services.paths));
    m_processMonitor = std::make_unique<ProcessMonitor>(
        *m_configManager, *m_alertManager, *m_processInfoProvider, m_services.processSignaller,
        *m_diskMonitor, *m_diskIOReader, m_services.clock, m_services.scheduler);
    m_processMonitor->startMonitoring();

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
    m_services.notificationCenter->requestAuthorization([](bool, const QString&) {});

    installBundledDaemon(m_configManager->config());
    startMenuBarMonitors();
}

void AppDelegate::applicationWillTerminate() {
    if (m_terminated) {
        return;
    }
    m_terminated = true;
    // The battery power, audio and focus monitors stop here, in that order, before process
    // monitoring. The bandwidth monitor has no stop step.
    if (m_processMonitor) {
        m_processMonitor->stopMonitoring();
    }
    if (m_configManager) {
        m_configManager->save();
    }
}

void AppDelegate::installBundledDaemon(MonitorConfig config) {
    // The installation blocks while it runs, so it goes to a background thread.
    QThreadPool::globalInstance()->start([config = std::move(config)] {
        Q_UNUSED(config);
        // The daemon's installer plugs in here: on success it logs "[AppDelegate] Installed
        // bundled daemon LaunchAgent", on failure "[AppDelegate] Failed to install bundled
        // daemon: " with the error, and the app runs on either way.
        logLine(QStringLiteral(
            "[AppDelegate] No daemon installer available; running without the daemon"));
    });
}

void AppDelegate::startMenuBarMonitors() {
    // Every change of a rate (and, once it exists, of the power figures) redraws the item; the
    // first picture comes at once, from the current values.
    m_menuBarStatus =
        std::make_unique<MenuBarStatus>(*m_bandwidthMonitor, MenuBarStatus::nativeShape());
    m_menuBarStatus->setDevicePixelRatio(qApp->devicePixelRatio());
    connect(m_menuBarStatus.get(), &MenuBarStatus::statusChanged, this,
            &AppDelegate::updateMenuBarStatus);
    // The battery power, audio and focus monitors start here, in that order, before the
    // bandwidth monitor.
    m_bandwidthMonitor->start();
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
    m_services.activationPolicy->setRegular();
    QApplication::setWindowIcon(StatusItem::applicationIcon());
    if (m_dashboardWindow) {
        m_dashboardWindow->bringToFront();
        return;
    }
    if (!m_processMonitor || !m_configManager || !m_alertManager) {
        return;
    }
    m_dashboardWindow =
        std::make_unique<DashboardWindow>(m_services.paths->dataDirectory(kZelvar2Folder));
    m_dashboardWindow->bringToFront();
}

void AppDelegate::quitApp() {
    QCoreApplication::quit();
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
    m_services.activationPolicy->setAccessory();
}

}  // namespace zelvar
