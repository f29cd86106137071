#include "app/report/ProcessesReport.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>

#include "alerts/AlertManager.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "config/ConfigManager.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"

namespace zelvar {
namespace {

int run(ReportContext& context) {
    const auto cycles = context.options.number(QStringLiteral("cycles"), 2, 1, 1000);
    const auto interval = context.options.number(QStringLiteral("interval"), 0, 0, 3600);
    if (!cycles || !interval) {
        context.err << "zelvar2: --cycles takes a whole number from 1 to 1000, --interval a "
                       "number of seconds\n";
        return 2;
    }
    const bool intervalGiven = *interval > 0;
    const QList<ProcessInfo> processes =
        ProcessesReport::sample(context.services, static_cast<int>(*cycles),
                                intervalGiven ? std::optional(*interval) : std::nullopt);
    if (context.options.flag(QStringLiteral("json"))) {
        context.out << ProcessesReport::formatJson(processes);
    } else {
        context.out << ProcessesReport::formatTable(processes);
    }
    return 0;
}

}  // namespace

ReportKind ProcessesReport::kind() {
    return {QStringLiteral("processes"),
            QStringLiteral("processes [--json] [--cycles N] [--interval SECONDS]"),
            {QStringLiteral("cycles"), QStringLiteral("interval")},
            &run};
}

QList<ProcessInfo> ProcessesReport::sample(SystemServices& services, int cycles,
                                           std::optional<double> intervalSeconds) {
    // The user's own settings, read but never written back from here.
    ConfigManager config(services.paths->configFile(), services.clock);
    // A report only looks: it enforces no limit, so it neither alerts nor kills.
    MonitorConfig changed = config.config();
    changed.limits.clear();
    if (intervalSeconds) {
        changed.checkIntervalSeconds = *intervalSeconds;
    }
    config.setConfig(changed);
    NullNotificationCenter silentCenter;
    NullSoundOutput silentOutput;
    NotificationHelper notifications(silentCenter);
    SoundPlayer sounds(silentOutput, services.scheduler, services.paths->appDataDirectory());
    AlertManager alerts(notifications, sounds, services.clock, services.scheduler);
    ProcessInfoProvider provider(*services.processTable, services.commandRunner, services.clock);
    ProcessMonitor monitor(config, alerts, provider, services.processSignaller, services.clock,
                           services.scheduler);

    QEventLoop loop;
    int finished = 0;
    QObject::connect(&monitor, &ProcessMonitor::cycleFinished, &loop, [&] {
        if (++finished >= cycles) {
            monitor.stopMonitoring();
            loop.quit();
        }
    });
    monitor.startMonitoring();
    loop.exec();
    return monitor.currentProcesses();
}

QString ProcessesReport::formatTable(const QList<ProcessInfo>& processes) {
    QString text;
    QTextStream out(&text);
    out << QStringLiteral("%1 %2 %3 %4  %5\n")
               .arg(QStringLiteral("PID"), 7)
               .arg(QStringLiteral("PPID"), 7)
               .arg(QStringLiteral("MEMORY"), 9)
               .arg(QStringLiteral("CPU"), 7)
               .arg(QStringLiteral("NAME"));
    for (const ProcessInfo& p : processes) {
        out << QStringLiteral("%1 %2 %3 %4  %5\n")
                   .arg(p.id, 7)
                   .arg(p.ppid, 7)
                   .arg(p.displayMemory(), 9)
                   .arg(p.displayCPU(), 7)
                   .arg(p.name);
    }
    return text;
}

QByteArray ProcessesReport::formatJson(const QList<ProcessInfo>& processes) {
    QJsonArray array;
    for (const ProcessInfo& p : processes) {
        array.append(p.toJson());
    }
    return QJsonDocument(array).toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
