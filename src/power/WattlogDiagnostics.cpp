#include "power/WattlogDiagnostics.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QStringDecoder>
#include <climits>

#include "power/WattlogSampleFiles.h"

namespace zelvar {
namespace {

using namespace Qt::StringLiterals;

// A UTF-8 character takes at most four bytes, so this many bytes hold the characters a panic
// report is read for.
constexpr qint64 kPanicHeadBytes = WattlogDiagnostics::kPanicHeadCharacters * 4;

const QRegularExpression& anyDate() {
    static const QRegularExpression pattern(u"(\\d{4}-\\d{2}-\\d{2}-\\d{6})"_s);
    return pattern;
}

const QRegularExpression& underscoredDate() {
    static const QRegularExpression pattern(u"_(\\d{4}-\\d{2}-\\d{2}-\\d{6})_"_s);
    return pattern;
}

const QRegularExpression& leadingUnderscoreDate() {
    static const QRegularExpression pattern(u"_(\\d{4}-\\d{2}-\\d{2}-\\d{6})"_s);
    return pattern;
}

WattlogEvent reportEvent(const QDateTime& at, WattlogEventKind kind, QString detail,
                         const QString& filename) {
    return {WattlogEvent::newId(), at,           kind,    std::move(detail),
            std::nullopt,          std::nullopt, filename};
}

QStringList listing(const QString& directory) {
    return QDir(directory).entryList(
        QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
}

// The head of a file, or nothing when it can't be read: bounded, so a huge report or a device
// at the path costs nothing.
std::optional<QByteArray> head(const QString& path, qint64 bytes) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.read(bytes);
}

}  // namespace

std::optional<QDateTime> WattlogDiagnostics::diagnosticDate(const QString& filename,
                                                            const QRegularExpression& pattern) {
    const QRegularExpressionMatch match = pattern.match(filename);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    QString text = match.captured(0);
    while (text.startsWith(u'_')) {
        text.remove(0, 1);
    }
    while (text.endsWith(u'_')) {
        text.chop(1);
    }
    const QDateTime date = QDateTime::fromString(text, u"yyyy-MM-dd-HHmmss"_s);
    if (!date.isValid()) {
        return std::nullopt;
    }
    return date.toUTC();
}

std::optional<QString> WattlogDiagnostics::panicReason(const QString& path) {
    const std::optional<QByteArray> bytes = head(path, kPanicHeadBytes);
    if (!bytes) {
        return std::nullopt;
    }
    // A character cut at the end of the head is kept back by the decoder, not an error.
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = QString(utf8(*bytes)).left(kPanicHeadCharacters);
    if (utf8.hasError()) {
        return std::nullopt;
    }
    const qsizetype brace = text.indexOf(u'{');
    if (brace < 0) {
        return std::nullopt;
    }
    qsizetype close = text.indexOf(u"\n}\n");
    if (close < 0) {
        close = text.indexOf(u"\n}");
    }
    if (close < 0) {
        return std::nullopt;
    }
    const QByteArray json = text.mid(brace, close + 2 - brace).toUtf8();
    const QJsonDocument document = QJsonDocument::fromJson(json);
    const QJsonValue panic = document.object().value(u"panicString"_s);
    if (!document.isObject() || !panic.isString()) {
        return std::nullopt;
    }
    static const QRegularExpression prefix(u"panic\\(cpu \\d+ caller 0x[0-9a-f]+\\): "_s);
    QString first = panic.toString().section(u'\n', 0, 0);
    first.remove(prefix);
    return first.left(kPanicReasonLength);
}

std::optional<WattlogEvent> WattlogDiagnostics::parseDiagnosticReport(const QString& filename,
                                                                      const QString& directory) {
    using K = WattlogEventKind;
    const QString head = filename.section(u'_', 0, 0);
    const QString name = head.isEmpty() ? u"Unknown"_s : head;
    if (filename.endsWith(u".panic")) {
        if (const auto at = diagnosticDate(filename, anyDate())) {
            return reportEvent(*at, K::KernelPanic,
                               panicReason(directory + u'/' + filename).value_or(u"Kernel Panic"_s),
                               filename);
        }
    }
    if (filename.endsWith(u".hang")) {
        if (const auto at = diagnosticDate(filename, underscoredDate())) {
            return reportEvent(*at, K::AppHang, name + u" stopped responding"_s, filename);
        }
    }
    if (filename.endsWith(u".diag") || filename.contains(u".cpu_resource.")) {
        if (const auto at = diagnosticDate(filename, underscoredDate())) {
            return reportEvent(*at, K::AppCrash,
                               name + (filename.contains(u"cpu_resource") ? u" CPU resource limit"_s
                                                                          : u" crashed"_s),
                               filename);
        }
    }
    if (filename.startsWith(u"JetsamEvent") && filename.endsWith(u".ips")) {
        if (const auto at = diagnosticDate(filename, anyDate())) {
            return reportEvent(*at, K::JetsamEvent, u"Memory pressure OOM kill"_s, filename);
        }
    }
    if (filename.endsWith(u".ips") && !filename.startsWith(u"Jetsam")) {
        if (const auto at = diagnosticDate(filename, leadingUnderscoreDate())) {
            return reportEvent(*at, K::AppCrash, name + u" crashed"_s, filename);
        }
    }
    return std::nullopt;
}

QList<WattlogEvent> WattlogDiagnostics::loadDiagnosticEvents(const QStringList& directories,
                                                             const QDateTime& since,
                                                             const QSet<QString>& alreadyIngested) {
    QList<WattlogEvent> events;
    for (const QString& directory : directories) {
        for (const QString& filename : listing(directory)) {
            if (alreadyIngested.contains(filename)) {
                continue;
            }
            if (auto e = parseDiagnosticReport(filename, directory); e && e->timestamp > since) {
                events.append(std::move(*e));
            }
        }
    }
    return events;
}

QList<WattlogEvent> WattlogDiagnostics::loadPanicRecords(const QStringList& directories,
                                                         const QDateTime& since,
                                                         const QSet<QString>& alreadyIngested) {
    static const QRegularExpression reason(u"Kernel panic - not syncing: ([^\\n]*)"_s);
    QList<WattlogEvent> events;
    for (const QString& directory : directories) {
        for (const QString& filename : listing(directory)) {
            if (!filename.startsWith(u"dmesg-") || alreadyIngested.contains(filename)) {
                continue;
            }
            const QString path = directory + u'/' + filename;
            const std::optional<QByteArray> text = head(path, kPanicHeadBytes * 16);
            // A record holds the kernel's last messages before an oops or a panic; only a
            // panic counts ("Panic#1 Part1" heads the record the kernel wrote for it).
            if (!text || !(text->startsWith("Panic") || text->contains("Kernel panic"))) {
                continue;
            }
            const QDateTime at = QFileInfo(path).lastModified().toUTC();
            if (!(at > since)) {
                continue;
            }
            const QRegularExpressionMatch match = reason.match(QString::fromUtf8(*text));
            const QString detail = match.hasMatch()
                                       ? match.captured(1).trimmed().left(kPanicReasonLength)
                                       : u"Kernel Panic"_s;
            events.append(reportEvent(at, WattlogEventKind::KernelPanic,
                                      detail.isEmpty() ? u"Kernel Panic"_s : detail, filename));
        }
    }
    return events;
}

std::optional<WattlogEvent> WattlogDiagnostics::parseCrashReport(const QString& filename,
                                                                 const QByteArray& head) {
    QHash<QByteArray, QByteArray> fields;
    for (const QByteArray& line : head.split('\n')) {
        // Continuation lines of a long value start with a blank; only first lines count.
        if (const qsizetype colon = line.indexOf(": "); colon > 0 && line[0] != ' ') {
            fields.insert(line.left(colon), line.mid(colon + 2).trimmed());
        }
    }
    // asctime's form in the C locale: "Tue Mar  5 10:15:00 2024".
    const QDateTime local = QLocale::c().toDateTime(
        QString::fromUtf8(fields.value("Date")).simplified(), u"ddd MMM d HH:mm:ss yyyy"_s);
    if (!local.isValid()) {
        return std::nullopt;
    }
    const QString path = QString::fromUtf8(fields.value("ExecutablePath"));
    const QString name = path.isEmpty() ? u"Unknown"_s : path.section(u'/', -1);
    const QByteArray type = fields.value("ProblemType");
    const QDateTime at = WattlogEvent::utcTime(local.toMSecsSinceEpoch());
    if (type == "Crash") {
        return reportEvent(at, WattlogEventKind::AppCrash, name + u" crashed"_s, filename);
    }
    if (type == "Hang") {
        return reportEvent(at, WattlogEventKind::AppHang, name + u" stopped responding"_s,
                           filename);
    }
    if (type == "KernelCrash") {
        return reportEvent(at, WattlogEventKind::KernelPanic, u"Kernel Panic"_s, filename);
    }
    return std::nullopt;
}

QList<WattlogEvent> WattlogDiagnostics::loadCrashReports(const QStringList& directories,
                                                         const QDateTime& since,
                                                         const QSet<QString>& alreadyIngested) {
    QList<WattlogEvent> events;
    for (const QString& directory : directories) {
        for (const QString& filename : listing(directory)) {
            if (!filename.endsWith(u".crash") || alreadyIngested.contains(filename)) {
                continue;
            }
            // The fields that count come first; the core dump that follows can be huge.
            const std::optional<QByteArray> text = head(directory + u'/' + filename, 8192);
            if (auto e = text ? parseCrashReport(filename, *text) : std::nullopt;
                e && e->timestamp > since) {
                events.append(std::move(*e));
            }
        }
    }
    return events;
}

QList<WattlogEvent> WattlogDiagnostics::loadBatterySampleEvents(const QString& samplesFile,
                                                                const QDateTime& since) {
    const QList<WattlogBatterySample> samples =
        WattlogSampleFiles::readJSONLLines<WattlogBatterySample>(samplesFile, INT_MAX);
    QList<WattlogEvent> events;
    for (auto s = samples.crbegin(); s != samples.crend(); ++s) {
        const QDateTime at = WattlogEvent::utcTime(s->date().toMSecsSinceEpoch());
        if (!(at > since)) {
            continue;
        }
        const WattlogPowerSource source =
            s->source == u"AC"_s ? WattlogPowerSource::AC : WattlogPowerSource::Battery;
        const std::optional<qint64> percent = s->percent();
        QStringList pieces{WattlogEventKinds::sourceText(source) + QLatin1Char(' ') +
                           (percent ? QString::number(*percent) + QLatin1Char('%') : u"--"_s)};
        if (s->current) {
            pieces << QString::number(*s->current) + u"mA"_s;
        }
        if (const std::optional<double> watts = s->watts()) {
            pieces << QString::asprintf("%.1fW", *watts);
        }
        WattlogEvent e{WattlogEvent::newId(),
                       at,
                       WattlogEventKind::BatteryLevel,
                       pieces.join(QLatin1Char(' ')),
                       std::nullopt,
                       source,
                       QString()};
        if (percent && *percent >= INT_MIN && *percent <= INT_MAX) {
            e.batteryPercent = static_cast<int>(*percent);
        }
        e.rawLine = u"Wattlog sample "_s + e.detail;
        events.append(std::move(e));
    }
    return events;
}

}  // namespace zelvar
