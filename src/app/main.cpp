#include <QApplication>
#include <QCoreApplication>
#include <cstdio>

#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/DaemonAgent.h"
#include "app/SystemServices.h"
#include "app/TerminationSignals.h"
#include "app/report/ReportCommand.h"
#include "common/ProcessOrigin.h"
#include "platform/system/PlatformServices.h"
#include "ui/Symbols.h"

namespace {

void nameApplication() {
    QCoreApplication::setApplicationName(QStringLiteral("Zelvar+"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("orlen.com"));
}

int runTrayApp(int argc, char* argv[], bool openDashboard) {
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
    // Before any view: the dashboard's symbols resolve through this theme.
    zelvar::installSymbolTheme();

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

}  // namespace

int main(int argc, char* argv[]) {
    // Before any thread starts: origins of the system show with this system's icon and name.
    zelvar::ProcessOrigin::setSystemStyle(zelvar::currentSystemProfile().systemOrigin);

    // The command line is checked before any application object exists, so that a mistake or
    // a request for help starts no tray, no display connection and no D-Bus.
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    const zelvar::CommandLine::Command command = zelvar::CommandLine::parse(arguments);
    std::fputs(command.errors.toUtf8().constData(), stderr);
    switch (command.action) {
        case zelvar::CommandLine::Action::Exit:
            std::fputs(command.output.toUtf8().constData(), stdout);
            return command.exitCode;
        case zelvar::CommandLine::Action::Report: {
            // Reports need no display: they run on a plain core application.
            QCoreApplication app(argc, argv);
            nameApplication();
            return zelvar::runReportCommand(*command.report, command.options);
        }
        case zelvar::CommandLine::Action::UninstallDaemon: {
            QCoreApplication app(argc, argv);
            nameApplication();
            zelvar::QProcessCommandRunner runner;
            const auto launcher = zelvar::makeDaemonLauncher();
            const auto paths = zelvar::makePaths();
            zelvar::DaemonAgent(runner, *launcher, *paths).uninstall();
            std::fputs("The background daemon's agent is removed and the daemon stopped.\n",
                       stdout);
            return 0;
        }
        case zelvar::CommandLine::Action::TrayApp:
            break;
    }
    return runTrayApp(argc, argv, command.dashboard);
}
