#include "process/ServiceJobParsers.h"

#include <algorithm>
#include <optional>

namespace zelvar {
namespace {

bool isBlank(QChar c) {
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

QStringView trimBlanks(QStringView s) {
    while (!s.isEmpty() && isBlank(s.front())) {
        s = s.sliced(1);
    }
    while (!s.isEmpty() && isBlank(s.back())) {
        s.chop(1);
    }
    return s;
}

// A 32-bit decimal: an optional sign and ASCII digits, nothing else. QStringView::toInt would
// also skip surrounding whitespace such as a vertical tab or a carriage return, which makes the
// field something other than a number.
std::optional<Pid> parsePid(QStringView field) {
    const QStringView digits =
        field.startsWith(u'+') || field.startsWith(u'-') ? field.sliced(1) : field;
    if (digits.isEmpty() || !std::all_of(digits.begin(), digits.end(),
                                         [](QChar c) { return c >= u'0' && c <= u'9'; })) {
        return std::nullopt;
    }
    bool ok = false;
    const int value = field.toInt(&ok, 10);
    if (!ok) {
        return std::nullopt;
    }
    return static_cast<Pid>(value);
}

}  // namespace

QHash<Pid, QString> parseLaunchctlList(QStringView text) {
    QHash<Pid, QString> map;
    const QList<QStringView> lines = text.split(u'\n', Qt::SkipEmptyParts);
    if (lines.size() < 2) {
        return map;
    }
    for (qsizetype i = 1; i < lines.size(); ++i) {  // the first line is the header
        const QList<QStringView> fields = lines[i].split(u'\t');
        if (fields.size() < 3) {
            continue;
        }
        const std::optional<Pid> pid = parsePid(trimBlanks(fields[0]));
        if (!pid || *pid < 1) {
            continue;  // "-" for a job that isn't running
        }
        map.insert(*pid, trimBlanks(fields[2]).toString());
    }
    return map;
}

QHash<Pid, QString> parseSystemdShow(QStringView text) {
    QHash<Pid, QString> map;
    QStringView id;
    std::optional<Pid> mainPid;
    const auto endBlock = [&] {
        if (!id.isEmpty() && mainPid && *mainPid >= 1) {
            QStringView label = id;
            if (label.endsWith(u".service") && label.size() > 8) {
                label.chop(8);
            }
            map.insert(*mainPid, label.toString());
        }
        id = {};
        mainPid.reset();
    };
    for (QStringView line : text.split(u'\n')) {
        if (line.endsWith(u'\r')) {
            line.chop(1);
        }
        if (line.isEmpty()) {
            endBlock();
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0) {
            continue;
        }
        const QStringView key = line.first(equals);
        const QStringView value = line.sliced(equals + 1);
        if (key == u"Id") {
            id = value.trimmed();
        } else if (key == u"MainPID") {
            mainPid = parsePid(value.trimmed());
        }
    }
    endBlock();
    return map;
}

}  // namespace zelvar
