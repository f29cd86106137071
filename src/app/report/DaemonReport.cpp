#include "app/report/DaemonReport.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <QTimeZone>

#include "common/BoundedFile.h"
#include "common/TerminalText.h"
#include "daemon/DaemonFiles.h"
#include "platform/system/PlatformServices.h"

namespace zelvar {

namespace {

// The time a line carries: "ts" in seconds, or an ISO "timestamp" or "iso".
std::optional<QDateTime> lineTime(const QByteArray& line) {
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    if (object.value(QLatin1String("ts")).isDouble()) {
        return QDateTime::fromMSecsSinceEpoch(
            qint64(object.value(QLatin1String("ts")).toDouble() * 1000), QTimeZone::utc());
    }
    for (const char* key : {"timestamp", "iso"}) {
        const QDateTime date =
            QDateTime::fromString(object.value(QLatin1String(key)).toString(), Qt::ISODate);
        if (date.isValid()) {
            return date.toUTC();
        }
    }
    return std::nullopt;
}

QString isoDate(const std::optional<QDateTime>& date) {
    return date ? date->toUTC().toString(Qt::ISODate) : QStringLiteral("-");
}

}  // namespace

ReportKind DaemonReport::kind() {
    return {QStringLiteral("daemon"),
            QStringLiteral("Whether the background daemon is installed and running, and the "
                           "files it writes."),
            {},
            Monitors::Parts(),
            ReportKind::runner(&ReportKind::noSettings, &sample, &formatText, &formatJson)};
}

DaemonReport::FileState DaemonReport::fileState(const QString& path) {
    FileState state{path, {}, {}};
    const QFileInfo info(path);
    if (!info.exists()) {
        return state;
    }
    state.sizeBytes = info.size();
    if (path.endsWith(QLatin1String(".jsonl"))) {
        const BoundedFile::Tail tail = BoundedFile::readTail(path, 64 * 1024);
        const QList<QByteArray> lines = tail.result.data.trimmed().split('\n');
        for (auto line = lines.rbegin(); line != lines.rend() && !state.newest; ++line) {
            state.newest = lineTime(*line);
        }
    } else {
        state.newest = info.lastModified().toUTC();
    }
    return state;
}

DaemonReport::Snapshot DaemonReport::sample(Monitors& monitors) {
    const Ports& ports = monitors.ports();
    const auto launcher = makeDaemonLauncher();
    DaemonAgent agent(ports.commandRunner, *launcher, ports.paths);
    Snapshot snapshot{agent.status(), {}};
    const QString logs = DaemonFiles::logDirectory(ports.paths);
    const DaemonFiles files =
        DaemonFiles::standard(ports.paths, logs + QStringLiteral("/events.jsonl"));
    for (const QString& path : files.written()) {
        snapshot.files.append(fileState(path));
    }
    return snapshot;
}

QString DaemonReport::formatText(const Snapshot& s) {
    const auto yesNo = [](bool value) {
        return value ? QStringLiteral("yes") : QStringLiteral("no");
    };
    QString text;
    QTextStream out(&text);
    out << "Service manager: "
        << (s.agent.serviceManager ? QStringLiteral("yes") : QStringLiteral("none (detached)"))
        << "\n";
    out << "Agent installed: " << yesNo(s.agent.installed) << "  ("
        << TerminalText::escaped(s.agent.definitionFile) << ")\n";
    out << "Agent loaded:    " << yesNo(s.agent.loaded) << "\n";
    out << "Agent current:   " << yesNo(s.agent.current) << "\n";
    out << "Helper:          " << TerminalText::escaped(s.agent.helper) << "\n";
    out << "Daemon running:  "
        << (s.agent.pid ? QStringLiteral("yes, pid %1").arg(*s.agent.pid) : QStringLiteral("no"))
        << "\n\nFiles:\n";
    for (const FileState& file : s.files) {
        out << "  " << TerminalText::escaped(file.path) << "\n      "
            << (file.sizeBytes ? QStringLiteral("%1 bytes, newest %2")
                                     .arg(*file.sizeBytes)
                                     .arg(isoDate(file.newest))
                               : QStringLiteral("missing"))
            << "\n";
    }
    return text;
}

QByteArray DaemonReport::formatJson(const Snapshot& s) {
    QJsonArray files;
    for (const FileState& file : s.files) {
        files.append(
            QJsonObject{{QStringLiteral("path"), file.path},
                        {QStringLiteral("exists"), file.sizeBytes.has_value()},
                        {QStringLiteral("size_bytes"),
                         file.sizeBytes ? QJsonValue(double(*file.sizeBytes)) : QJsonValue::Null},
                        {QStringLiteral("newest"),
                         file.newest ? QJsonValue(isoDate(file.newest)) : QJsonValue::Null}});
    }
    const QJsonObject root{
        {QStringLiteral("service_manager"), s.agent.serviceManager},
        {QStringLiteral("installed"), s.agent.installed},
        {QStringLiteral("loaded"), s.agent.loaded},
        {QStringLiteral("current"), s.agent.current},
        {QStringLiteral("definition_file"), s.agent.definitionFile},
        {QStringLiteral("helper"), s.agent.helper},
        {QStringLiteral("pid"), s.agent.pid ? QJsonValue(double(*s.agent.pid)) : QJsonValue::Null},
        {QStringLiteral("files"), files}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
