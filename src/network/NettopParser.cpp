#include "network/NettopParser.h"

#include <QStringList>

#include "common/BlankText.h"

namespace zelvar {
namespace {

QList<QStringView> splitBlanks(QStringView text) {
    QList<QStringView> fields;
    qsizetype i = 0;
    while (i < text.size()) {
        while (i < text.size() && isSpaceOrTab(text[i])) {
            ++i;
        }
        const qsizetype start = i;
        while (i < text.size() && !isSpaceOrTab(text[i])) {
            ++i;
        }
        if (i > start) {
            fields.append(text.sliced(start, i - start));
        }
    }
    return fields;
}

bool isDecimal(QStringView text) {
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

std::optional<quint64> parseUnsigned(QStringView text) {
    bool ok = false;
    const quint64 value = text.toULongLong(&ok, 10);
    return ok && isDecimal(text) ? std::optional(value) : std::nullopt;
}

}  // namespace

ProcessCounterMap NettopParser::parse(const QString& text) {
    ProcessCounterMap counters;
    const QList<QStringView> lines = QStringView(text).split(u'\n', Qt::SkipEmptyParts);
    for (qsizetype i = 1; i < lines.size(); ++i) {  // the first line is the column header
        const QStringView line = trimSpacesAndTabs(lines[i]);
        const qsizetype blank = std::find_if(line.begin(), line.end(), isSpaceOrTab) - line.begin();
        if (line.isEmpty() || blank == line.size()) {
            continue;
        }
        const QList<QStringView> fields = splitBlanks(trimSpacesAndTabs(line.sliced(blank)));
        if (fields.size() < 3) {
            continue;
        }
        const auto inBytes = parseUnsigned(fields[fields.size() - 2]);
        const auto outBytes = parseUnsigned(fields[fields.size() - 1]);
        if (!inBytes || !outBytes) {
            continue;
        }
        QStringList labelParts;
        for (qsizetype f = 0; f < fields.size() - 2; ++f) {
            labelParts.append(fields[f].toString());
        }
        const QString label = labelParts.join(QLatin1Char(' '));
        const qsizetype dot = label.lastIndexOf(QLatin1Char('.'));
        if (dot < 0) {
            continue;
        }
        bool pidOk = false;
        const QStringView pidText = QStringView(label).sliced(dot + 1);
        const int pid = pidText.toInt(&pidOk, 10);
        const QString name = label.left(dot);
        // toInt() would skip the blank of a label such as "name. 12"; a pid has none.
        if (!pidOk || pidText.contains(u' ') || name.isEmpty()) {
            continue;
        }
        const ProcessCounter counter{name, pid, *inBytes, *outBytes};
        counters.insert(counter.key(), counter);
    }
    return counters;
}

}  // namespace zelvar
