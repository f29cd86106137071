#include "process/PsFallbackMap.h"

#include <charconv>

namespace zelvar {
namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

template <typename T>
bool parseWhole(QByteArrayView field, T& value) {
    const char* end = field.data() + field.size();
    const char* begin = field.data();
    if (begin != end && *begin == '+') {
        ++begin;  // a leading plus is a valid decimal integer, but only as the one sign
        if (begin != end && *begin == '-') {
            return false;
        }
    }
    auto [ptr, ec] = std::from_chars(begin, end, value);
    return ec == std::errc{} && ptr == end && begin != end;
}

}  // namespace

QHash<Pid, qint64> parsePsFallbackMap(QByteArrayView text) {
    QHash<Pid, qint64> map;
    qsizetype lineStart = 0;
    while (lineStart < text.size()) {
        qsizetype lineEnd = text.indexOf('\n', lineStart);
        if (lineEnd < 0) {
            lineEnd = text.size();
        }
        const QByteArrayView line = text.sliced(lineStart, lineEnd - lineStart);
        lineStart = lineEnd + 1;

        QByteArrayView fields[2];
        int count = 0;
        for (qsizetype i = 0; i < line.size() && count < 2;) {
            while (i < line.size() && isBlank(line[i])) {
                ++i;
            }
            const qsizetype start = i;
            while (i < line.size() && !isBlank(line[i])) {
                ++i;
            }
            if (i > start) {
                fields[count++] = line.sliced(start, i - start);
            }
        }
        Pid pid = 0;
        qint64 rss = 0;
        if (count == 2 && parseWhole(fields[0], pid) && parseWhole(fields[1], rss)) {
            map.insert(pid, rss);
        }
    }
    return map;
}

}  // namespace zelvar
