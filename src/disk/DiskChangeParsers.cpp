#include "disk/DiskChangeParsers.h"

#include <QRegularExpression>

namespace zelvar::DiskChangeParsers {

std::optional<qint64> duSizeBytes(const QString& output) {
    const QStringList pieces = output.split(QLatin1Char('\t'), Qt::SkipEmptyParts);
    if (pieces.isEmpty()) {
        return std::nullopt;
    }
    QStringView first(pieces.first());
    while (!first.isEmpty() && (first.front() == u' ' || first.front() == u'\t')) {
        first = first.mid(1);
    }
    while (!first.isEmpty() && (first.back() == u' ' || first.back() == u'\t')) {
        first.chop(1);
    }
    static const QRegularExpression number(
        QRegularExpression::anchoredPattern(QStringLiteral("[+-]?[0-9]+")));
    if (!number.match(first.toString()).hasMatch()) {
        return std::nullopt;
    }
    bool ok = false;
    const qint64 kilobytes = first.toLongLong(&ok);
    if (!ok || kilobytes > std::numeric_limits<qint64>::max() / 1024 ||
        kilobytes < std::numeric_limits<qint64>::min() / 1024) {
        return std::nullopt;
    }
    return kilobytes * 1024;
}

const QStringList& excludedWriterNames() {
    static const QStringList names{QStringLiteral("lsof"), QStringLiteral("du"),
                                   QStringLiteral("find"), QStringLiteral("awk"),
                                   QStringLiteral("grep"), QStringLiteral("sort"),
                                   QStringLiteral("sed"),  QStringLiteral("zsh"),
                                   QStringLiteral("bash"), QStringLiteral("sh")};
    return names;
}

QStringList lsofWriters(const QString& output, int cap) {
    static const QRegularExpression lineBreak(QStringLiteral("[\r\n]"));
    static const QRegularExpression blanks(QStringLiteral("[ \t]"));
    QStringList lines = output.split(lineBreak, Qt::SkipEmptyParts);
    if (!lines.isEmpty()) {
        lines.removeFirst();  // the column header
    }
    QStringList writers;
    for (const QString& line : lines) {
        if (writers.size() >= cap) {
            break;
        }
        const QStringList fields = line.split(blanks, Qt::SkipEmptyParts);
        // A command with a blank in its name shifts the columns and normally drops out here.
        if (fields.size() < 9) {
            continue;
        }
        const QString& command = fields[0];
        if (!fields[3].contains(QLatin1Char('w')) || fields[4] != u"REG" ||
            !fields[8].startsWith(QLatin1Char('/'))) {
            continue;
        }
        if (command.isEmpty() || excludedWriterNames().contains(command)) {
            continue;
        }
        if (!writers.contains(command)) {
            writers.append(command);
        }
    }
    return writers;
}

}  // namespace zelvar::DiskChangeParsers
