// zelvar2-daemon: samples disk writers, battery, system load and per-application network
// totals into the files the app reads, while the app is closed. QtCore only.
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif

#include <QCoreApplication>
#include <cstdio>

#include "app/TerminationSignals.h"
#include "daemon/Daemon.h"
#include "daemon/DaemonLock.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SystemClock.h"
#include "platform/system/PlatformServices.h"

namespace {

constexpr const char* kUsage =
    "Usage: zelvar2-daemon --ram-threshold <percent> --interval <seconds> --log-file <path>\n";

}  // namespace

int main(int argc, char* argv[]) {
    QStringList words;
    for (int i = 1; i < argc; ++i) {
        words << QString::fromLocal8Bit(argv[i]);
    }
    if (words == QStringList{QStringLiteral("--help")}) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (words == QStringList{QStringLiteral("--version")}) {
        std::fputs("zelvar2-daemon " ZELVAR_VERSION "\n", stdout);
        return 0;
    }
    const zelvar::ParsedDaemonArguments parsed = zelvar::DaemonArguments::parse(words);
    if (!parsed.arguments) {
        std::fprintf(stderr, "zelvar2-daemon: %s\n%s", qPrintable(parsed.error), kUsage);
        return 2;
    }

    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zelvar2-daemon"));
    const std::unique_ptr<zelvar::Paths> paths = zelvar::makePaths();
    const zelvar::DaemonFiles files =
        zelvar::DaemonFiles::standard(*paths, parsed.arguments->logFile);
    zelvar::DaemonLock lock(files.lock);
    std::optional<qint64> holder;
    if (!lock.tryLock(&holder)) {
        std::fprintf(stderr, "zelvar2-daemon: another daemon is running%s; exiting\n",
                     holder ? qPrintable(QStringLiteral(" (pid %1)").arg(*holder)) : "");
        return 1;
    }
    // Below the user's own work: the daemon never competes with what it measures.
    // The same as the agent's Nice=10 and IOSchedulingClass=idle, for a daemon started without
    // a service manager.
    (void)!::nice(10);
#ifdef __linux__
    constexpr long kWhoProcess = 1;
    constexpr long kIdleClass = 3 << 13;
    ::syscall(SYS_ioprio_set, kWhoProcess, 0L, kIdleClass);
#endif

    const zelvar::SystemProfile profile = zelvar::currentSystemProfile();
    zelvar::SystemClock clock;
    zelvar::QtScheduler scheduler;
    zelvar::QProcessCommandRunner runner;
    const auto processTable = zelvar::makeProcessTable();
    const auto processIO = zelvar::makeProcessIOSource();
    const auto systemLoad = zelvar::makeSystemLoadSource();
    const auto interfaces = zelvar::makeInterfaceCounters();
    const auto networkName = zelvar::makeNetworkNameSource(runner);
    const auto processNetwork = zelvar::makeProcessNetworkSource(runner);
    const auto battery = zelvar::makeBatteryRegistry();
    const auto volumes = zelvar::makeVolumeSource();

    zelvar::Daemon daemon(
        {clock, scheduler, runner, *processTable, *processIO, *systemLoad, *interfaces,
         *networkName, *processNetwork, *battery, *volumes, paths->homeDirectory(),
         profile.lsofProgram, static_cast<qint32>(::getpid())},
        files, *parsed.arguments, QStringLiteral(ZELVAR_VERSION));
    zelvar::TerminationSignals termination;
    QObject::connect(&termination, &zelvar::TerminationSignals::terminationRequested, &app,
                     &QCoreApplication::quit);
    daemon.start();
    const int status = QCoreApplication::exec();
    daemon.stop();
    return status;
}
