#include <QApplication>
#include <QCoreApplication>
#include <cstring>
#include <optional>

#include "app/AppDelegate.h"
#include "app/SystemServices.h"
#include "app/TerminationSignals.h"
#include "app/report/ReportCommand.h"
#include "common/ProcessOrigin.h"
#include "platform/system/PlatformServices.h"

namespace {

void nameApplication() {
    QCoreApplication::setApplicationName(QStringLiteral("Zelvar+"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("orlen.com"));
}

}  // namespace

int main(int argc, char* argv[]) {
    // Before any thread starts: origins of the system show with this system's icon and name.
    zelvar::ProcessOrigin::setSystemStyle(zelvar::currentSystemProfile().systemOrigin);

    // Reports need no display: they run on a plain core application.
    if (argc > 1 && std::strcmp(argv[1], "report") == 0) {
        QCoreApplication app(argc, argv);
        nameApplication();
        return zelvar::runReportCommand(QCoreApplication::arguments().mid(2));
    }

#ifndef Q_OS_MACOS
    // A machine without any display still runs the monitors, with no tray and no windows.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
#endif
    QApplication app(argc, argv);
    nameApplication();
    // Closing the dashboard never quits; only the menu and the system do.
    QApplication::setQuitOnLastWindowClosed(false);
    const bool openDashboard =
        QCoreApplication::arguments().contains(QStringLiteral("--dashboard"));

    zelvar::SystemServices services;
    zelvar::AppDelegate delegate(services.ports());
    zelvar::TerminationSignals termination;
    QObject::connect(&termination, &zelvar::TerminationSignals::terminationRequested, &delegate,
                     &zelvar::AppDelegate::quitApp);

    delegate.applicationDidFinishLaunching();
    if (openDashboard) {
        delegate.openDashboard();
    }
    return QApplication::exec();
}
