#include "disk/DiskIOModels.h"

#include <QJsonArray>

namespace zelvar {

std::optional<WindowData> DiskIOSummary::windowData(const QString& window) const {
    for (const WindowData& data : windows) {
        if (data.window == window) {
            return data;
        }
    }
    return std::nullopt;
}

QString DiskIOBurst::icon() const {
    switch (source) {
        case BurstSource::Process:
            return QStringLiteral("cpu");
        case BurstSource::Directory:
            return QStringLiteral("folder.fill");
        case BurstSource::File:
            return QStringLiteral("doc.fill");
    }
    return {};
}

QString formatMegabytes(double megabytes) {
    if (megabytes >= 1000.0) {
        return QString::asprintf("%.1f GB", megabytes / 1024.0);
    }
    return QString::asprintf("%.0f MB", megabytes);
}

QString DiskIOBurst::sourceName(BurstSource source) {
    switch (source) {
        case BurstSource::Process:
            return QStringLiteral("process");
        case BurstSource::Directory:
            return QStringLiteral("directory");
        case BurstSource::File:
            return QStringLiteral("file");
    }
    return {};
}

namespace {

// Whole seconds in UTC with a "Z": the one form the log's reader accepts.
QString logTimestamp(const QDateTime& instant) {
    return instant.toUTC().toString(Qt::ISODate);
}

}  // namespace

QJsonObject DiskIOSummary::WindowData::toJson() const {
    QJsonArray writers;
    for (const WriterEntry& writer : topWriters) {
        QJsonObject entry{{QStringLiteral("name"), writer.name},
                          {QStringLiteral("written_mb"), writer.writtenMB},
                          {QStringLiteral("read_mb"), writer.readMB}};
        if (writer.pid) {
            entry.insert(QStringLiteral("pid"), *writer.pid);
        }
        writers.append(entry);
    }
    QJsonArray directories;
    for (const DirectoryEntry& directory : topDirectories) {
        directories.append(QJsonObject{{QStringLiteral("path"), directory.path},
                                       {QStringLiteral("written_mb"), directory.writtenMB}});
    }
    QJsonArray files;
    for (const FileEntry& file : topFiles) {
        files.append(QJsonObject{{QStringLiteral("path"), file.path},
                                 {QStringLiteral("written_mb"), file.writtenMB}});
    }
    return {{QStringLiteral("window"), window},
            {QStringLiteral("top_writers"), writers},
            {QStringLiteral("top_directories"), directories},
            {QStringLiteral("top_files"), files}};
}

QJsonObject DiskIOSummary::toJson() const {
    QJsonArray windowArray;
    for (const WindowData& data : windows) {
        windowArray.append(data.toJson());
    }
    return {{QStringLiteral("type"), QStringLiteral("diskio_summary")},
            {QStringLiteral("timestamp"), logTimestamp(timestamp)},
            {QStringLiteral("rusage_interval_s"), rusageIntervalS},
            {QStringLiteral("rusage_overhead_pct"), rusageOverheadPct},
            {QStringLiteral("windows"), windowArray}};
}

QJsonObject DiskIOBurst::toJson() const {
    QJsonObject line{
        {QStringLiteral("type"), QStringLiteral("diskio_burst")},
        {QStringLiteral("timestamp"), logTimestamp(timestamp)},
        {QStringLiteral("source"), sourceName(source)},
        {source == BurstSource::Process ? QStringLiteral("process") : QStringLiteral("path"),
         label},
        {QStringLiteral("written_mb"), writtenMB},
        {QStringLiteral("window_s"), windowS}};
    if (pid) {
        line.insert(QStringLiteral("pid"), *pid);
    }
    return line;
}

}  // namespace zelvar
