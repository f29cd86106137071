#include "app/report/ProcessesReport.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "app/report/RunMonitors.h"
#include "common/TerminalText.h"
#include "process/ProcessMonitor.h"

namespace zelvar {
namespace {

// Room for an icon and a short label; longer labels push the row on rather than being cut.
constexpr int kChipWidth = 20;

}  // namespace

std::optional<ProcessesReport::Settings> ProcessesReport::settings(const ReportOptions& options) {
    const auto cycles = options.number(QStringLiteral("cycles"), 2, 1, 1000);
    const auto interval = options.number(QStringLiteral("interval"), 0, 0, 3600);
    if (!cycles || !interval) {
        return std::nullopt;
    }
    return Settings{static_cast<int>(*cycles),
                    *interval > 0 ? std::optional(*interval) : std::nullopt};
}

ReportKind ProcessesReport::kind() {
    return {
        QStringLiteral("processes"),
        QStringLiteral("processes [--json] [--cycles N] [--interval SECONDS]"),
        {QStringLiteral("cycles"), QStringLiteral("interval")},
        Monitors::Part::Processes,
        ReportKind::runner(
            QStringLiteral("--cycles takes a whole number from 1 to 1000, --interval a "
                           "number of seconds"),
            &settings, &sample,
            [](const Sample& sample, const Settings&) { return formatTable(sample.processes); },
            [](const Sample& sample, const Settings&) { return formatJson(sample.processes); })};
}

ProcessesReport::Sample ProcessesReport::sample(Monitors& monitors, const Settings& settings) {
    if (settings.intervalSeconds) {
        monitors.setCheckInterval(*settings.intervalSeconds);
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
