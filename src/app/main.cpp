#include <QCoreApplication>

#include "app/SystemServices.h"
#include "app/TerminationSignals.h"
#include "app/report/ReportCommand.h"
#include "config/ConfigManager.h"
#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Zelvar+"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("orlen.com"));

    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (!arguments.isEmpty() && arguments.first() == u"report") {
        return zelvar::runReportCommand(arguments.mid(1));
    }

    zelvar::SystemServices services;
    zelvar::ConfigManager config(services.paths->configFile(), services.clock);
    zelvar::ProcessInfoProvider provider(*services.processTable, services.commandRunner,
                                         *services.serviceJobs, services.clock);
    zelvar::DiskMonitor diskMonitor(*services.volumes, services.clock);
    zelvar::DiskIOReader diskIOReader(services.paths->diskIOLogFile());
    zelvar::ProcessMonitor monitor(config, provider, diskMonitor, diskIOReader, services.clock,
                                   services.scheduler);
    monitor.startMonitoring();

    zelvar::TerminationSignals termination;
    QObject::connect(&termination, &zelvar::TerminationSignals::terminationRequested, &app,
                     &QCoreApplication::quit);
    const int status = QCoreApplication::exec();

    monitor.stopMonitoring();
    config.save();
    return status;
}
