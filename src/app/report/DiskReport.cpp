#include "app/report/DiskReport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/report/RunMonitors.h"
#include "common/IsoDate.h"
#include "common/TerminalText.h"
#include "compose/ProcessStack.h"

namespace zelvar {
namespace {

// "parent launchd · 💻 zsh · via ⚙️ agent", the missing pieces left out.
QString originCaption(const std::optional<QString>& parentName, const ProcessOrigin& immediate,
                      const ProcessOrigin& root) {
    QStringList pieces;
    if (parentName && !parentName->isEmpty()) {
        pieces << QStringLiteral("parent ") + TerminalText::escaped(*parentName);
    }
    if (immediate.kind() != ProcessOrigin::Kind::Unknown) {
        pieces << immediate.icon() + QLatin1Char(' ') +
                      TerminalText::escaped(immediate.shortLabel());
    }
    if (root != immediate && root.kind() != ProcessOrigin::Kind::Unknown) {
        pieces << QStringLiteral("via ") + root.icon() + QLatin1Char(' ') +
                      TerminalText::escaped(root.shortLabel());
    }
    return pieces.join(QStringLiteral(" · "));
}

QJsonValue optionalJson(const std::optional<qint64>& value) {
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QJsonValue optionalJson(const std::optional<QString>& value) {
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

// The window as the log has it, its writers with their parent and origins.
QJsonObject windowJson(const WindowData& window) {
    QJsonArray writers;
    for (const WriterEntry& w : window.topWriters) {
        writers.append(QJsonObject{{QStringLiteral("name"), w.name},
                                   {QStringLiteral("pid"), optionalJson(w.pid)},
                                   {QStringLiteral("written_mb"), w.writtenMB},
                                   {QStringLiteral("read_mb"), w.readMB},
                                   {QStringLiteral("parent_name"), optionalJson(w.parentName)},
                                   {QStringLiteral("immediate_origin"), w.immediateOrigin.toJson()},
                                   {QStringLiteral("root_origin"), w.rootOrigin.toJson()}});
    }
    QJsonObject json = window.toJson();
    json.insert(QStringLiteral("top_writers"), writers);
    return json;
}

void writeWindow(QTextStream& out, const WindowData& window) {
    if (window.topWriters.isEmpty() && window.topDirectories.isEmpty() &&
        window.topFiles.isEmpty()) {
        out << "  No significant disk write activity\n";
        return;
    }
    if (!window.topWriters.isEmpty()) {
        out << "  Top Writers (processes)\n";
        int rank = 0;
        for (const WriterEntry& w : window.topWriters) {
            out << QStringLiteral("  %1. %2%3  %4  ↑  %5 ↓\n")
                       .arg(++rank, 3)
                       .arg(TerminalText::escaped(w.name),
                            w.pid ? QStringLiteral(" (pid %1)").arg(*w.pid) : QString(),
                            formatMegabytes(w.writtenMB), formatMegabytes(w.readMB));
            const QString caption = originCaption(w.parentName, w.immediateOrigin, w.rootOrigin);
            if (!caption.isEmpty()) {
                out << "       " << caption << '\n';
            }
        }
    }
    if (!window.topDirectories.isEmpty()) {
        out << "  Growing Directories\n";
        for (const DirectoryEntry& d : window.topDirectories) {
            out << QStringLiteral("  %1  %2\n")
                       .arg(formatMegabytes(d.writtenMB), 9)
                       .arg(TerminalText::escaped(d.path));
        }
    }
    if (!window.topFiles.isEmpty()) {
        out << "  Growing Files\n";
        for (const FileEntry& f : window.topFiles) {
            out << QStringLiteral("  %1  %2\n")
                       .arg(formatMegabytes(f.writtenMB), 9)
                       .arg(TerminalText::escaped(f.path));
        }
    }
}

}  // namespace

ReportKind DiskReport::kind() {
    return {QStringLiteral("disk"),
            QStringLiteral("The volumes, the heaviest writers and the recent bursts of writing."),
            {},
            Monitors::Part::Processes,
            ReportKind::runner(&ReportKind::noSettings, &sample, &formatText, &formatJson)};
}

const QStringList& DiskReport::windows() {
    static const QStringList names{QStringLiteral("1m"), QStringLiteral("5m"),
                                   QStringLiteral("30m")};
    return names;
}

DiskReport::Snapshot DiskReport::sample(Monitors& monitors) {
    const ProcessStack& stack = *monitors.processes();
    runMonitors(monitors, stack.monitor, &ProcessMonitor::cycleFinished, {});
    return {stack.monitor.diskInfo(),
            {stack.monitor.diskIOSummary(), stack.monitor.diskIOBursts()},
            stack.diskIOReader.logFile()};
}

QString DiskReport::formatText(const Snapshot& snapshot) {
    QString text;
    QTextStream out(&text);
    out << "Volumes\n";
    out << QStringLiteral("  %1  %2  %3\n")
               .arg(QStringLiteral("MOUNT POINT"), -30)
               .arg(QStringLiteral("USED / TOTAL"), -26)
               .arg(QStringLiteral("USED"), 5);
    for (const DiskInfo& disk : snapshot.volumes) {
        // One substitution for all three, so that a "%" in a mount point stays as it is.
        out << QStringLiteral("  %1  %2  %3\n")
                   .arg(TerminalText::leftJustified(TerminalText::escaped(disk.mountPoint), 30),
                        disk.displayUsed().leftJustified(26),
                        disk.displayPercent().rightJustified(5));
    }

    out << "\nWrite Activity (" << snapshot.logFile << ")\n";
    const auto& summary = snapshot.diskIO.summary;
    if (!summary) {
        out << "  No disk I/O summary\n";
    } else {
        out << "Updated: " << formatIsoDate(summary->timestamp) << "  "
            << QString::asprintf("rusage %.0fs · overhead %.2f%%", summary->rusageIntervalS,
                                 summary->rusageOverheadPct)
            << '\n';
        for (const QString& name : windows()) {
            out << "\nWindow " << name << '\n';
            if (const auto window = summary->windowData(name)) {
                writeWindow(out, *window);
            } else {
                out << "  No significant disk write activity\n";
            }
        }
    }

    if (!snapshot.diskIO.bursts.isEmpty()) {
        out << "\nRecent Bursts\n";
        for (const DiskIOBurst& burst : snapshot.diskIO.bursts) {
            out << QStringLiteral("  %1  %2  %3  %4 / %5s\n")
                       .arg(formatIsoDate(burst.timestamp),
                            DiskIOBurst::sourceName(burst.source).leftJustified(9),
                            TerminalText::escaped(burst.label), burst.displayWritten(),
                            QString::number(burst.windowS));
            const QString caption =
                originCaption(burst.parentName, burst.immediateOrigin, burst.rootOrigin);
            if (!caption.isEmpty()) {
                out << "      " << caption << '\n';
            }
        }
    }
    return text;
}

QByteArray DiskReport::formatJson(const Snapshot& snapshot) {
    QJsonArray volumes;
    for (const DiskInfo& disk : snapshot.volumes) {
        volumes.append(QJsonObject{{QStringLiteral("mount_point"), disk.mountPoint},
                                   {QStringLiteral("total_bytes"), disk.totalBytes},
                                   {QStringLiteral("used_bytes"), disk.usedBytes},
                                   {QStringLiteral("available_bytes"), disk.availableBytes},
                                   {QStringLiteral("percent_used"), disk.percentUsed()},
                                   {QStringLiteral("display_used"), disk.displayUsed()},
                                   {QStringLiteral("display_percent"), disk.displayPercent()},
                                   {QStringLiteral("timestamp"), formatIsoDate(disk.timestamp)}});
    }
    QJsonValue summary(QJsonValue::Null);
    if (const auto& s = snapshot.diskIO.summary) {
        QJsonArray windowsJson;
        for (const WindowData& window : s->windows) {
            windowsJson.append(windowJson(window));
        }
        summary = QJsonObject{{QStringLiteral("timestamp"), formatIsoDate(s->timestamp)},
                              {QStringLiteral("rusage_interval_s"), s->rusageIntervalS},
                              {QStringLiteral("rusage_overhead_pct"), s->rusageOverheadPct},
                              {QStringLiteral("windows"), windowsJson}};
    }
    QJsonArray bursts;
    for (const DiskIOBurst& b : snapshot.diskIO.bursts) {
        bursts.append(QJsonObject{{QStringLiteral("timestamp"), formatIsoDate(b.timestamp)},
                                  {QStringLiteral("source"), DiskIOBurst::sourceName(b.source)},
                                  {QStringLiteral("label"), b.label},
                                  {QStringLiteral("pid"), optionalJson(b.pid)},
                                  {QStringLiteral("written_mb"), b.writtenMB},
                                  {QStringLiteral("display_written"), b.displayWritten()},
                                  {QStringLiteral("window_s"), b.windowS},
                                  {QStringLiteral("parent_name"), optionalJson(b.parentName)},
                                  {QStringLiteral("immediate_origin"), b.immediateOrigin.toJson()},
                                  {QStringLiteral("root_origin"), b.rootOrigin.toJson()}});
    }
    const QJsonObject root{{QStringLiteral("volumes"), volumes},
                           {QStringLiteral("disk_io_log"), snapshot.logFile},
                           {QStringLiteral("summary"), summary},
                           {QStringLiteral("bursts"), bursts}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
