#include "app/report/ProcessesReport.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "app/report/ProcessMonitorSession.h"

namespace zelvar {
namespace {

// Room for an icon and a short label; longer labels push the row on rather than being cut.
constexpr int kChipWidth = 20;

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
    return sampleWithTree(services, cycles, intervalSeconds).processes;
}

ProcessesReport::Sample ProcessesReport::sampleWithTree(SystemServices& services, int cycles,
                                                        std::optional<double> intervalSeconds) {
    ProcessMonitorSession session(services, intervalSeconds);
    session.run(cycles);
    return {session.monitor().currentProcesses(), session.monitor().processTree()};
}

QString ProcessesReport::originChip(const ProcessOrigin& origin) {
    if (origin.kind() == ProcessOrigin::Kind::Unknown) {
        return {};
    }
    return origin.icon() + QLatin1Char(' ') + origin.shortLabel();
}

QString ProcessesReport::originColumns(const ProcessInfo& process) {
    return originChip(process.immediateOrigin).leftJustified(kChipWidth) + QLatin1Char(' ') +
           originChip(process.rootOrigin).leftJustified(kChipWidth);
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
            << originColumns(p) << ' ' << p.name << '\n';
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
