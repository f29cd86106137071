#include "disk/DiskIOReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>
#include <QStringDecoder>
#include <cerrno>
#include <cmath>
#include <limits>

#include "common/IsoDate.h"
#include "platform/Paths.h"

namespace zelvar {
namespace {

std::optional<QString> stringValue(const QJsonObject& object, QLatin1StringView key) {
    const QJsonValue value = object.value(key);
    if (!value.isString()) {
        return std::nullopt;
    }
    return value.toString();
}

std::optional<double> numberValue(const QJsonObject& object, QLatin1StringView key) {
    const QJsonValue value = object.value(key);
    if (!value.isDouble()) {
        return std::nullopt;
    }
    return value.toDouble();
}

// A number counts as an integer only when it is integral and fits.
std::optional<qint64> integerValue(const QJsonObject& object, QLatin1StringView key) {
    const auto number = numberValue(object, key);
    if (!number || !std::isfinite(*number) || std::trunc(*number) != *number || *number < -9.2e18 ||
        *number > 9.2e18) {
        return std::nullopt;
    }
    return static_cast<qint64>(*number);
}

std::optional<QDateTime> timestampValue(const QJsonObject& object) {
    const auto text = stringValue(object, QLatin1StringView("timestamp"));
    if (!text) {
        return std::nullopt;
    }
    return parseIsoDate(*text);
}

// The elements of an array that are objects; no value when `value` isn't an array of objects.
std::optional<QList<QJsonObject>> objectArray(const QJsonValue& value) {
    if (!value.isArray()) {
        return std::nullopt;
    }
    QList<QJsonObject> objects;
    for (const QJsonValue& element : value.toArray()) {
        if (!element.isObject()) {
            return std::nullopt;
        }
        objects.append(element.toObject());
    }
    return objects;
}

std::optional<WindowData> parseWindowData(const QJsonObject& object) {
    const auto window = stringValue(object, QLatin1StringView("window"));
    if (!window) {
        return std::nullopt;
    }
    WindowData data;
    data.window = *window;
    const QLatin1StringView writtenKey("written_mb");
    for (const QJsonObject& writer : objectArray(object.value(QLatin1StringView("top_writers")))
                                         .value_or(QList<QJsonObject>{})) {
        const auto name = stringValue(writer, QLatin1StringView("name"));
        if (!name) {
            continue;
        }
        WriterEntry entry;
        entry.id = QUuid::createUuid();
        entry.pid = integerValue(writer, QLatin1StringView("pid"));
        entry.name = *name;
        entry.writtenMB = numberValue(writer, writtenKey).value_or(0.0);
        entry.readMB = numberValue(writer, QLatin1StringView("read_mb")).value_or(0.0);
        data.topWriters.append(entry);
    }
    for (const QJsonObject& directory :
         objectArray(object.value(QLatin1StringView("top_directories")))
             .value_or(QList<QJsonObject>{})) {
        if (const auto path = stringValue(directory, QLatin1StringView("path"))) {
            data.topDirectories.append(DirectoryEntry{
                QUuid::createUuid(), *path, numberValue(directory, writtenKey).value_or(0.0)});
        }
    }
    for (const QJsonObject& file :
         objectArray(object.value(QLatin1StringView("top_files"))).value_or(QList<QJsonObject>{})) {
        if (const auto path = stringValue(file, QLatin1StringView("path"))) {
            data.topFiles.append(
                FileEntry{QUuid::createUuid(), *path, numberValue(file, writtenKey).value_or(0.0)});
        }
    }
    return data;
}

std::optional<DiskIOSummary> parseSummary(const QJsonObject& object) {
    const auto timestamp = timestampValue(object);
    const auto windows = objectArray(object.value(QLatin1StringView("windows")));
    if (!timestamp || !windows) {
        return std::nullopt;
    }
    DiskIOSummary summary;
    summary.timestamp = *timestamp;
    for (const QJsonObject& window : *windows) {
        if (auto data = parseWindowData(window)) {
            summary.windows.append(std::move(*data));
        }
    }
    summary.rusageIntervalS =
        numberValue(object, QLatin1StringView("rusage_interval_s")).value_or(30.0);
    summary.rusageOverheadPct =
        numberValue(object, QLatin1StringView("rusage_overhead_pct")).value_or(0.0);
    return summary;
}

std::optional<DiskIOBurst> parseBurst(const QJsonObject& object) {
    const auto timestamp = timestampValue(object);
    if (!timestamp) {
        return std::nullopt;
    }
    const auto source = stringValue(object, QLatin1StringView("source"));
    if (!source) {
        return std::nullopt;
    }
    DiskIOBurst burst;
    if (*source == u"process") {
        burst.source = DiskIOBurst::BurstSource::Process;
        burst.label =
            stringValue(object, QLatin1StringView("process")).value_or(QStringLiteral("unknown"));
    } else if (*source == u"directory" || *source == u"file") {
        burst.source = *source == u"file" ? DiskIOBurst::BurstSource::File
                                          : DiskIOBurst::BurstSource::Directory;
        burst.label =
            stringValue(object, QLatin1StringView("path")).value_or(QStringLiteral("unknown"));
    } else {
        return std::nullopt;
    }
    burst.id = QUuid::createUuid();
    burst.timestamp = *timestamp;
    burst.writtenMB = numberValue(object, QLatin1StringView("written_mb")).value_or(0.0);
    burst.pid = integerValue(object, QLatin1StringView("pid"));
    burst.windowS = integerValue(object, QLatin1StringView("window_s")).value_or(30);
    return burst;
}

// The file's last kTailBytes bytes, and to the end, which takes in a line that the daemon
// appended since the size was taken. One read of the last block and no walk over earlier ones:
// the block bounds the cost however short the lines are. Its first line is normally a fragment
// that fails to parse later, so nothing treats it specially. Empty when the file can't be read
// or isn't a regular file: O_NONBLOCK keeps the open of a FIFO from waiting for a writer.
QByteArray tailBlock(const QString& file) {
    const int fd = ::open(QFile::encodeName(file).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return {};
    }
    const auto closeFile = qScopeGuard([fd] { ::close(fd); });
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) || info.st_size <= 0) {
        return {};
    }
    const qint64 size = info.st_size;
    const qint64 block = std::min(size, DiskIOReader::kTailBytes);
    if (::lseek(fd, static_cast<off_t>(size - block), SEEK_SET) < 0) {
        return {};
    }
    QByteArray bytes;
    char buffer[16384];
    for (;;) {
        const ssize_t count = ::read(fd, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        bytes.append(buffer, count);
    }
    return bytes;
}

}  // namespace

DiskIORead DiskIOReader::read(int burstLimit) const {
    return parseTail(tailBlock(m_logFile), burstLimit);
}

DiskIORead DiskIOReader::parseTail(QByteArrayView block, int burstLimit) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(block);
    if (decoder.hasError()) {
        return {};
    }
    QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (lines.size() > kTailLines) {
        lines.remove(0, lines.size() - kTailLines);
    }

    DiskIORead result;
    // Newest first, so that the first valid summary is the newest one and the bursts fill up
    // from the newest. Every line is looked at, even once both are complete.
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        const QJsonDocument document = QJsonDocument::fromJson(line->toUtf8());
        if (!document.isObject()) {
            continue;
        }
        const QJsonObject object = document.object();
        const QJsonValue type = object.value(QLatin1StringView("type"));
        if (object.isEmpty() || !type.isString()) {
            continue;
        }
        if (type.toString() == u"diskio_summary") {
            if (!result.summary) {
                result.summary = parseSummary(object);
            }
        } else if (type.toString() == u"diskio_burst") {
            if (result.bursts.size() < burstLimit) {
                if (auto burst = parseBurst(object)) {
                    result.bursts.append(std::move(*burst));
                }
            }
        }
    }
    std::reverse(result.bursts.begin(), result.bursts.end());
    return result;
}

QString DiskIOReader::defaultFile(const Paths& paths) {
    return paths.stateDirectory(kZelvar2Folder) + QStringLiteral("/diskio.jsonl");
}

}  // namespace zelvar
