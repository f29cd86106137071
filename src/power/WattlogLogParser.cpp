#include "power/WattlogLogParser.h"

#include "common/BlankText.h"

namespace zelvar {
namespace {

using namespace Qt::StringLiterals;

int digit(QChar c) {
    return c >= u'0' && c <= u'9' ? c.unicode() - u'0' : -1;
}

// The number in `count` ASCII digits at `at`, or -1.
int number(QStringView text, qsizetype at, int count) {
    int value = 0;
    for (int i = 0; i < count; ++i) {
        const int d = digit(text[at + i]);
        if (d < 0) {
            return -1;
        }
        value = value * 10 + d;
    }
    return value;
}

// Reads a run of decimal digits at `at` as an integer; nothing for a run that isn't plain
// ASCII or doesn't fit.
std::optional<int> digitsAt(QStringView text, qsizetype at, qsizetype* end) {
    qsizetype i = at;
    while (i < text.size() && text[i].isDigit()) {
        ++i;
    }
    *end = i;
    if (i == at) {
        return std::nullopt;
    }
    qint64 value = 0;
    for (qsizetype k = at; k < i; ++k) {
        const int d = digit(text[k]);
        if (d < 0 || value > (qint64{INT_MAX} - d) / 10) {
            return std::nullopt;
        }
        value = value * 10 + d;
    }
    return static_cast<int>(value);
}

qsizetype skipSpaces(QStringView text, qsizetype at) {
    while (at < text.size() && text[at].isSpace()) {
        ++at;
    }
    return at;
}

QString sleepDetail(QStringView rest) {
    if (rest.contains(u'\'')) {
        const auto pieces = rest.split(u'\'');
        if (pieces.size() >= 2) {
            return pieces[1].toString();
        }
    }
    return u"System Sleep"_s;
}

WattlogEvent event(WattlogEventKind kind, QString detail) {
    WattlogEvent e;
    e.kind = kind;
    e.detail = std::move(detail);
    return e;
}

WattlogEvent withPower(WattlogEvent e, QStringView rest) {
    e.batteryPercent = WattlogLogParser::extractCharge(rest);
    e.powerSource = WattlogLogParser::extractSource(rest);
    return e;
}

}  // namespace

std::optional<QDateTime> WattlogLogParser::pmsetDate(QStringView t) {
    if (t.size() != kStampLength || t[4] != u'-' || t[7] != u'-' || t[10] != u' ' ||
        t[13] != u':' || t[16] != u':' || t[19] != u' ' || (t[20] != u'+' && t[20] != u'-')) {
        return std::nullopt;
    }
    const int year = number(t, 0, 4);
    const int month = number(t, 5, 2);
    const int day = number(t, 8, 2);
    const int hour = number(t, 11, 2);
    const int minute = number(t, 14, 2);
    const int second = number(t, 17, 2);
    const int zoneHours = number(t, 21, 2);
    const int zoneMinutes = number(t, 23, 2);
    if (year < 0 || month < 0 || day < 0 || hour < 0 || hour > 23 || minute < 0 || minute > 59 ||
        second < 0 || second > 59 || zoneHours < 0 || zoneHours > 18 || zoneMinutes < 0 ||
        zoneMinutes > 59) {
        return std::nullopt;
    }
    const QDate date(year, month, day);
    if (!date.isValid()) {
        return std::nullopt;
    }
    constexpr qint64 kUnixEpochJulianDay = 2440588;
    const qint64 offset = (t[20] == u'-' ? -1 : 1) * (zoneHours * 3600 + zoneMinutes * 60);
    const qint64 seconds = (date.toJulianDay() - kUnixEpochJulianDay) * 86400 + hour * 3600 +
                           minute * 60 + second - offset;
    return WattlogEvent::utcTime(seconds * 1000);
}

std::optional<int> WattlogLogParser::extractCharge(QStringView text) {
    static constexpr QStringView kCharge = u"Charge:";
    for (qsizetype at = text.indexOf(kCharge); at >= 0; at = text.indexOf(kCharge, at + 1)) {
        qsizetype end = 0;
        const qsizetype digits = skipSpaces(text, at + kCharge.size());
        if (digits < text.size() && text[digits].isDigit()) {
            return digitsAt(text, digits, &end);
        }
    }
    return std::nullopt;
}

std::optional<WattlogPowerSource> WattlogLogParser::extractSource(QStringView text) {
    if (text.contains(u"Using AC") || text.contains(u"AC (")) {
        return WattlogPowerSource::AC;
    }
    if (text.contains(u"Using Batt") || (text.contains(u"Battery") && text.contains(u"Charge"))) {
        return WattlogPowerSource::Battery;
    }
    return std::nullopt;
}

QString WattlogLogParser::extractWakeReason(QStringView text) {
    if (const qsizetype due = text.lastIndexOf(u"due to"); due >= 0) {
        const QStringView last = text.mid(due + 6).trimmed();
        return last.left(last.indexOf(u'/') < 0 ? last.size() : last.indexOf(u'/'))
            .trimmed()
            .toString();
    }
    if (const qsizetype from = text.indexOf(u"from"); from >= 0) {
        QStringView second = text.mid(from + 4);
        if (const qsizetype next = second.indexOf(u"from"); next >= 0) {
            second = second.left(next);
        }
        second = second.trimmed();
        const qsizetype colon = second.indexOf(u':');
        return (colon < 0 ? second : second.left(colon)).trimmed().toString();
    }
    return u"Wake"_s;
}

std::optional<WattlogLogParser::BatteryState> WattlogLogParser::extractSummaryBatteryState(
    QStringView text) {
    static constexpr QStringView kUsing = u"Using";
    static constexpr QStringView kCharge = u"(Charge:";
    for (qsizetype at = text.indexOf(kUsing); at >= 0; at = text.indexOf(kUsing, at + 1)) {
        qsizetype i = at + kUsing.size();
        if (i >= text.size() || !text[i].isSpace()) {
            continue;
        }
        i = skipSpaces(text, i);
        const QStringView word = text.mid(i);
        const qsizetype wordLength =
            word.startsWith(u"AC") ? 2 : (word.startsWith(u"Batt") ? 4 : 0);
        if (wordLength == 0 || !text.mid(i + wordLength).startsWith(kCharge)) {
            continue;
        }
        const qsizetype digits = skipSpaces(text, i + wordLength + kCharge.size());
        qsizetype end = digits;
        while (end < text.size() && end - digits < 4 && text[end].isDigit()) {
            ++end;
        }
        if (end == digits || end - digits > 3 || end >= text.size() || text[end] != u')') {
            continue;
        }
        // The match as a whole decides the source, as written: "Using" and "AC" one blank
        // apart.
        const QStringView match = text.mid(at, end + 1 - at);
        qsizetype ignored = 0;
        const std::optional<int> charge = digitsAt(text, digits, &ignored);
        if (!charge || *charge > 100) {
            return std::nullopt;
        }
        return BatteryState{
            match.contains(u"Using AC") ? WattlogPowerSource::AC : WattlogPowerSource::Battery,
            *charge};
    }
    return std::nullopt;
}

namespace {

// The event a body describes, without its time, id and line; nothing for any other body.
std::optional<WattlogEvent> parseBody(QStringView body) {
    using K = WattlogEventKind;
    if (body.startsWith(u"Notification")) {
        const QString message = body.toString().remove(u"Notification"_s).trimmed();
        if (message.contains(u"Display is turned on")) {
            return event(K::DisplayOn, u"Display turned on"_s);
        }
        if (message.contains(u"Display is turned off")) {
            return event(K::DisplayOff, u"Display turned off"_s);
        }
    }
    if (body.startsWith(u"Sleep")) {
        const QStringView rest = body.mid(5);
        return withPower(
            event(rest.contains(u"Clamshell") ? K::LidSleep : K::Sleep, sleepDetail(rest)), rest);
    }
    if (body.startsWith(u"Wake\t") || body.startsWith(u"Wake ")) {
        const QStringView rest = body.mid(4);
        return withPower(event(K::Wake, WattlogLogParser::extractWakeReason(rest)), rest);
    }
    if (body.startsWith(u"DarkWake")) {
        const QStringView rest = body.mid(8);
        return withPower(event(K::DarkWake, WattlogLogParser::extractWakeReason(rest)), rest);
    }
    if (body.contains(u"powerd process is started")) {
        return event(K::Reboot, u"powerd restarted (system boot/restart)"_s);
    }
    if (body.startsWith(u"BatteryHealth")) {
        return event(K::BatteryHealth, trimSpacesAndTabs(body.mid(13)).toString());
    }
    if (body.contains(u"Summary-") && body.contains(u"Using")) {
        if (const auto state = WattlogLogParser::extractSummaryBatteryState(body)) {
            WattlogEvent e = event(K::BatteryLevel,
                                   WattlogEventKinds::sourceText(state->source) + QLatin1Char(' ') +
                                       QString::number(state->charge) + QLatin1Char('%'));
            e.batteryPercent = state->charge;
            e.powerSource = state->source;
            return e;
        }
    }
    return std::nullopt;
}

// Adds events in log order with the two inferences: a lid opening before a wake within a day
// of a clamshell sleep, and an AC change before a summary whose source differs from the last.
class Inference {
public:
    void add(WattlogEvent e, QList<WattlogEvent>& events) {
        const qint64 at = e.timestamp.toMSecsSinceEpoch();
        if (e.kind == WattlogEventKind::Wake && m_pendingLidClose) {
            // A wake dated before the close gives a negative gap, which counts as within.
            if (at - *m_pendingLidClose < WattlogLogParser::kLidOpenWindowSeconds * 1000) {
                WattlogEvent open = e;
                open.id = WattlogEvent::newId();
                open.kind = WattlogEventKind::LidOpen;
                open.detail = u"Lid opened"_s;
                events.append(std::move(open));
            }
            m_pendingLidClose.reset();
        }
        if (e.kind == WattlogEventKind::LidSleep) {
            m_pendingLidClose = at;
        }
        if (e.kind == WattlogEventKind::BatteryLevel) {
            if (e.powerSource && m_lastSource && *e.powerSource != *m_lastSource) {
                events.append(WattlogLogParser::powerSourceChange(e));
            }
            m_lastSource = e.powerSource;
        }
        events.append(std::move(e));
    }

private:
    std::optional<qint64> m_pendingLidClose;  // ms since 1970
    std::optional<WattlogPowerSource> m_lastSource;
};

}  // namespace

WattlogEvent WattlogLogParser::powerSourceChange(const WattlogEvent& level) {
    WattlogEvent change = level;
    change.id = WattlogEvent::newId();
    const bool toAC = level.powerSource == WattlogPowerSource::AC;
    change.kind = toAC ? WattlogEventKind::AcConnected : WattlogEventKind::AcDisconnected;
    // A missing charge prints 0.
    change.detail =
        u"Switched to "_s +
        WattlogEventKinds::sourceText(level.powerSource.value_or(WattlogPowerSource::Battery)) +
        u" at "_s + QString::number(level.batteryPercent.value_or(0)) + QLatin1Char('%');
    return change;
}

std::optional<WattlogEvent> WattlogLogParser::parse(QStringView line) {
    const QStringView trimmed = trimSpacesAndTabs(line);
    if (trimmed.size() < kStampLength + 1) {
        return std::nullopt;
    }
    // The body first: most lines of a log name no event, and need no date.
    std::optional<WattlogEvent> e = parseBody(trimSpacesAndTabs(trimmed.mid(kStampLength)));
    if (!e) {
        return std::nullopt;
    }
    const std::optional<QDateTime> at = pmsetDate(trimmed.left(kStampLength));
    if (!at) {
        return std::nullopt;
    }
    e->id = WattlogEvent::newId();
    e->timestamp = *at;
    e->rawLine = line.toString();
    return e;
}

QList<WattlogEvent> WattlogLogParser::parsePmsetLines(const QList<QString>& lines) {
    QList<WattlogEvent> events;
    Inference inference;
    for (const QString& line : lines) {
        if (std::optional<WattlogEvent> e = parse(line)) {
            inference.add(std::move(*e), events);
        }
    }
    return events;
}

QList<WattlogEvent> WattlogLogParser::parsePmsetText(const QString& text) {
    // Line by line without splitting the text into strings first: only an event's line is
    // copied.
    QList<WattlogEvent> events;
    Inference inference;
    const QStringView all(text);
    for (qsizetype start = 0; start <= all.size();) {
        qsizetype end = all.indexOf(u'\n', start);
        if (end < 0) {
            end = all.size();
        }
        if (std::optional<WattlogEvent> e = parse(all.mid(start, end - start))) {
            inference.add(std::move(*e), events);
        }
        start = end + 1;
    }
    return events;
}

}  // namespace zelvar
