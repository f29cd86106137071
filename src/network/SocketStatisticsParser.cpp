#include "network/SocketStatisticsParser.h"

#include <QRegularExpression>

#include "network/SocketCounterSum.h"

namespace zelvar {
namespace {

bool startsWithBlank(QStringView line) {
    return !line.isEmpty() && (line.front() == u' ' || line.front() == u'\t');
}

std::optional<quint64> counter(const QString& record, const QRegularExpression& pattern) {
    const QRegularExpressionMatch match = pattern.match(record);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    bool ok = false;
    const quint64 value = match.capturedView(1).toULongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

void addRecord(const QString& record, ProcessCounterMap& counters) {
    static const QRegularExpression owner(QStringLiteral(R"re(\("(.*?)",pid=(\d+),)re"));
    static const QRegularExpression received(QStringLiteral(R"re((?:^|\s)bytes_received:(\d+))re"));
    static const QRegularExpression sent(QStringLiteral(R"re((?:^|\s)bytes_sent:(\d+))re"));
    static const QRegularExpression acked(QStringLiteral(R"re((?:^|\s)bytes_acked:(\d+))re"));

    const qsizetype users = record.indexOf(QLatin1String("users:("));
    if (users < 0) {
        return;
    }
    QList<SocketOwner> owners;
    QRegularExpressionMatchIterator matches = owner.globalMatch(record, users);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        bool ok = false;
        const int pid = match.capturedView(2).toInt(&ok);
        if (ok) {
            owners.append({pid, match.captured(1)});
        }
    }
    const quint64 in = counter(record, received).value_or(0);
    const quint64 out = counter(record, sent).value_or(counter(record, acked).value_or(0));
    SocketCounterSum::add(owners, in, out, counters);
}

}  // namespace

ProcessCounterMap SocketStatisticsParser::parse(const QString& text) {
    ProcessCounterMap counters;
    QString record;
    const QList<QStringView> lines = QStringView(text).split(u'\n', Qt::SkipEmptyParts);
    for (const QStringView line : lines) {
        if (startsWithBlank(line)) {
            if (!record.isEmpty()) {  // counters of the socket above
                record += QLatin1Char('\n');
                record += line;
            }
            continue;
        }
        addRecord(record, counters);
        record = line.toString();
    }
    addRecord(record, counters);
    return counters;
}

}  // namespace zelvar
