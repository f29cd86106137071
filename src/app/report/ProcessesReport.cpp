#include "app/report/ProcessesReport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <cstdio>

#include "app/report/RunMonitors.h"
#include "common/TerminalText.h"
#include "config/ConfigManager.h"
#include "process/ProcessMonitor.h"

namespace zelvar {
namespace {

// Room for an icon and a short label; longer labels push the row on rather than being cut.
constexpr int kChipWidth = 20;

// The longest interval the settings offer.
constexpr double kLongestConfiguredInterval = 60.0;

}  // namespace

QList<ReportOption> ProcessesReport::options() {
    constexpr double floor = ProcessMonitor::kMinimumIntervalSeconds;
    return {
        {.name = QStringLiteral("cycles"),
         .valueName = QStringLiteral("N"),
         .description = QStringLiteral("Monitoring cycles to run (two measure CPU shares)"),
         .minimum = 1,
         .maximum = 1000,
         .whole = true,
         .defaultValue = 2,
         .defaultText = QStringLiteral("2")},
        {.name = QStringLiteral("interval"),
         .valueName = QStringLiteral("SECONDS"),
         .description =
             QStringLiteral("Seconds between cycles (never below %1; 0 keeps the configured "
                            "interval)")
                 .arg(floor),
         .maximum = 3600,
         .defaultText = QStringLiteral("the configured interval"),
         // The monitor never ticks faster than its floor; say so rather than wait silently.
         .adjustment =
             [floor](double seconds) {
                 return seconds > 0 && seconds < floor
                            ? QStringLiteral(
                                  "--interval %1 is below the %2-second floor; "
                                  "sampling every %2 s")
                                  .arg(seconds)
                                  .arg(floor)
                            : QString();
             }},
    };
}

ProcessesReport::Settings ProcessesReport::settings(const ReportOptions& options) {
    const double interval = options.number(QStringLiteral("interval"));
    return Settings{static_cast<int>(options.number(QStringLiteral("cycles"))),
                    interval > 0 ? std::optional(interval) : std::nullopt};
}

ReportKind ProcessesReport::kind() {
    return {
        QStringLiteral("processes"),
        QStringLiteral("Every process with its memory, CPU share and origin."), options(),
        Monitors::Part::Processes,
        ReportKind::runner(
            &settings, &sample,
            [](const Sample& sample, const Settings&) { return formatTable(sample.processes); },
            [](const Sample& sample, const Settings&) { return formatJson(sample.processes); })};
}

ProcessesReport::Sample ProcessesReport::sample(Monitors& monitors, const Settings& settings) {
    if (settings.intervalSeconds) {
        monitors.setCheckInterval(*settings.intervalSeconds);
    } else if (const double configured =
                   monitors.config() ? monitors.config()->config().checkIntervalSeconds : 0.0;
               !(configured <= kLongestConfiguredInterval)) {
        // A hand-edited file can hold any number; a report that waits an hour or a week for
        // its second cycle only looks hung. The settings never go above this.
        std::fprintf(stderr,
                     "The configured check_interval of %g s is above the settings' range; "
                     "sampling every %g s (--interval sets another)\n",
                     configured, kLongestConfiguredInterval);
        monitors.setCheckInterval(kLongestConfiguredInterval);
    }
    const ProcessMonitor& monitor = *monitors.processMonitor();
    runMonitors(monitors, monitor, &ProcessMonitor::cycleFinished, {settings.cycles});
    return {monitor.currentProcesses(), monitor.processTree()};
}

QString ProcessesReport::originChip(const ProcessOrigin& origin) {
    if (origin.kind() == ProcessOrigin::Kind::Unknown) {
        return {};
    }
    return origin.icon() + QLatin1Char(' ') + TerminalText::escaped(origin.shortLabel());
}

QString ProcessesReport::originColumns(const ProcessInfo& process) {
    return TerminalText::leftJustified(originChip(process.immediateOrigin), kChipWidth) +
           QLatin1Char(' ') +
           TerminalText::leftJustified(originChip(process.rootOrigin), kChipWidth);
}

QString ProcessesReport::originColumnsHeader() {
    return QStringLiteral("ORIGIN").leftJustified(kChipWidth) + QLatin1Char(' ') +
           QStringLiteral("ROOT").leftJustified(kChipWidth);
}

QString ProcessesReport::formatTable(const QList<ProcessInfo>& processes) {
    QString text;
    QTextStream out(&text);
    out << QStringLiteral("%1 %2 %3 %4  ")
               .arg(QStringLiteral("PID"), 7)
               .arg(QStringLiteral("PPID"), 7)
               .arg(QStringLiteral("MEMORY"), 9)
               .arg(QStringLiteral("CPU"), 7)
        << originColumnsHeader() << " NAME\n";
    for (const ProcessInfo& p : processes) {
        // Text fields are appended, not substituted, so a "%" in a label or name stays as it is.
        out << QStringLiteral("%1 %2 %3 %4  ")
                   .arg(p.id, 7)
                   .arg(p.ppid, 7)
                   .arg(p.displayMemory(), 9)
                   .arg(p.displayCPU(), 7)
            << originColumns(p) << ' ' << TerminalText::escaped(p.name) << '\n';
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
