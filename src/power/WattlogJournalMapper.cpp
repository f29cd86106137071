#include "power/WattlogJournalMapper.h"

#include <QRegularExpression>
#include <cmath>
#include <limits>

#include "common/BoundedFile.h"
#include "power/WattlogLogParser.h"

namespace zelvar {
namespace {

using namespace Qt::StringLiterals;
using K = WattlogEventKind;

constexpr qint64 kNoLidClosed = std::numeric_limits<qint64>::min();

QDateTime entryTime(const JournalEntry& entry) {
    return WattlogEvent::utcTime(entry.realtimeMicroseconds / 1000);
}

WattlogEvent entryEvent(const JournalEntry& entry, K kind, QString detail) {
    return {WattlogEvent::newId(),
            entryTime(entry),
            kind,
            std::move(detail),
            std::nullopt,
            std::nullopt,
            WattlogJournalMapper::rawLine(entry)};
}

// The text between the first pair of single quotes, or `fallback`.
QString quoted(const QString& message, const QString& fallback) {
    const qsizetype open = message.indexOf(u'\'');
    const qsizetype close = open < 0 ? -1 : message.indexOf(u'\'', open + 1);
    return close > open + 1 ? message.mid(open + 1, close - open - 1) : fallback;
}

std::optional<WattlogEvent> sleepEntry(const JournalEntry& e) {
    const QString& m = e.message;
    if (m.startsWith(u"Entering sleep state") || m.startsWith(u"Performing sleep operation")) {
        return entryEvent(e, K::Sleep, quoted(m, u"System Sleep"_s));
    }
    if (m.startsWith(u"System returned from sleep") || m.startsWith(u"System resumed")) {
        return entryEvent(e, K::Wake, u"Resumed"_s);
    }
    return std::nullopt;
}

std::optional<WattlogEvent> kernelEntry(const JournalEntry& e) {
    const QString& m = e.message;
    if (m.startsWith(u"PM: ")) {
        // "PM: suspend entry (deep)", "PM: suspend exit", "PM: hibernation entry"
        const QString what = m.mid(4).trimmed();
        if (what.startsWith(u"suspend entry") || what.startsWith(u"hibernation entry")) {
            return entryEvent(e, K::Sleep, what);
        }
        if (what.startsWith(u"suspend exit") || what.startsWith(u"hibernation exit")) {
            return entryEvent(e, K::Wake, what);
        }
        return std::nullopt;
    }
    if (m.startsWith(u"Out of memory") || m.contains(u"Out of memory: Killed process")) {
        // The name may hold parentheses itself: "Killed process 15925 ((resolved)) total-vm".
        static const QRegularExpression killed(u"Killed process (\\d+) \\((.+?)\\)(?=[ ,]|$)"_s);
        const QRegularExpressionMatch match = killed.match(m);
        return entryEvent(e, K::JetsamEvent,
                          match.hasMatch() ? u"Memory pressure OOM kill: "_s + match.captured(2)
                                           : u"Memory pressure OOM kill"_s);
    }
    if (m.contains(u"AC Adapter") || m.startsWith(u"ACPI: AC")) {
        if (m.contains(u"(on-line)")) {
            return entryEvent(e, K::AcConnected, u"AC adapter on-line"_s);
        }
        if (m.contains(u"(off-line)")) {
            return entryEvent(e, K::AcDisconnected, u"AC adapter off-line"_s);
        }
    }
    return std::nullopt;
}

}  // namespace

QString WattlogJournalMapper::rawLine(const JournalEntry& entry) {
    const QDateTime local = entryTime(entry).toLocalTime();
    const int offset = local.offsetFromUtc();
    const int minutes = std::abs(offset) / 60;
    return local.toString(u"yyyy-MM-dd HH:mm:ss "_s) + (offset < 0 ? u'-' : u'+') +
           u"%1%2"_s.arg(minutes / 60, 2, 10, QLatin1Char('0'))
               .arg(minutes % 60, 2, 10, QLatin1Char('0')) +
           QLatin1Char(' ') + entry.identifier + u": "_s + entry.message;
}

std::optional<WattlogEvent> WattlogJournalMapper::mapEntry(const JournalEntry& e) {
    const QString& id = e.identifier;
    const QString& m = e.message;
    if (id == u"kernel") {
        return kernelEntry(e);
    }
    if (id == u"systemd-sleep") {
        return sleepEntry(e);
    }
    if (id == u"systemd-logind") {
        if (m.startsWith(u"Lid opened")) {
            return entryEvent(e, K::LidOpen, u"Lid opened"_s);
        }
        return std::nullopt;
    }
    if (id == u"systemd-coredump") {
        // "Process 1234 (name) of user 1000 dumped core."
        static const QRegularExpression dumped(
            u"^Process \\d+ \\((.*?)\\) of user \\S+ dumped core"_s);
        if (m.startsWith(u"Process ")) {
            if (const QRegularExpressionMatch match = dumped.match(m); match.hasMatch()) {
                return entryEvent(e, K::AppCrash, match.captured(1) + u" crashed"_s);
            }
        }
        return std::nullopt;
    }
    if (id == u"systemd-oomd" && m.startsWith(u"Killed ")) {
        // "Killed /user.slice/.../app.scope due to memory pressure for ..."
        const QString unit = m.mid(7).section(u' ', 0, 0);
        return entryEvent(e, K::JetsamEvent, u"Memory pressure OOM kill: "_s + unit);
    }
    return std::nullopt;
}

QList<WattlogEvent> WattlogJournalMapper::map(const QList<JournalEntry>& entries,
                                              const QDateTime& since) {
    QList<WattlogEvent> events;
    const QString* lastBoot = nullptr;
    // One suspend leaves several entries (systemd-sleep's and the kernel's, on the way down and
    // up again), seconds apart: the first of each way is the event, the rest are dropped. A
    // closed lid doesn't always suspend (docked, or the switch ignored), so the closing alone
    // makes no event; a suspend within a minute of it is the lid's sleep.
    enum class Power { Unknown, Awake, Asleep } power = Power::Unknown;
    qint64 lidClosedAt = kNoLidClosed;
    for (const JournalEntry& entry : entries) {
        const bool newBoot = !entry.bootId.isEmpty() && (!lastBoot || *lastBoot != entry.bootId);
        if (!entry.bootId.isEmpty()) {
            lastBoot = &entry.bootId;
        }
        if (newBoot) {
            power = Power::Unknown;
            lidClosedAt = kNoLidClosed;
        }
        const qint64 at = entry.realtimeMicroseconds;
        std::optional<WattlogEvent> e = mapEntry(entry);
        if (entry.identifier == u"systemd-logind" && entry.message.startsWith(u"Lid closed")) {
            lidClosedAt = at;
        } else if (e && e->kind == K::LidOpen) {
            lidClosedAt = kNoLidClosed;
        } else if (e && e->kind == K::Sleep) {
            if (power == Power::Asleep) {
                e.reset();
            } else {
                power = Power::Asleep;
                if (lidClosedAt != kNoLidClosed && at - lidClosedAt <= kLidSuspendMicroseconds) {
                    e->kind = K::LidSleep;
                    e->detail = u"Lid closed, "_s + e->detail;
                }
            }
        } else if (e && e->kind == K::Wake) {
            if (power == Power::Awake) {
                e.reset();
            }
            power = Power::Awake;
        }
        if (entryTime(entry) <= since) {
            continue;
        }
        if (newBoot) {
            events.append(entryEvent(entry, K::Reboot, u"System boot"_s));
        }
        if (e) {
            events.append(std::move(*e));
        }
    }
    return events;
}

QList<WattlogEvent> WattlogJournalMapper::parseUpowerHistory(const QByteArray& text,
                                                             const QDateTime& since) {
    QList<WattlogEvent> events;
    // As between two summaries of the power log, a change of the state's power source between
    // two lines is an AC change; the lines before `since` count for it. An unknown state
    // (upower writes one around a suspend) changes nothing.
    std::optional<WattlogPowerSource> lastSource;
    for (const QByteArray& raw : text.split('\n')) {
        // Tabs as upower writes them; blanks and a decimal comma as a copy may have them.
        const QList<QByteArray> fields = raw.simplified().split(' ');
        if (fields.size() < 3) {
            continue;
        }
        bool timeOk = false;
        bool valueOk = false;
        const qint64 seconds = fields[0].toLongLong(&timeOk);
        const double value = QByteArray(fields[1]).replace(',', '.').toDouble(&valueOk);
        if (!timeOk || !valueOk || !std::isfinite(value) || std::abs(value) > 1e6) {
            continue;
        }
        const QDateTime at = WattlogEvent::utcTime(seconds * 1000);
        const QByteArray& state = fields[2];
        std::optional<WattlogPowerSource> source;
        if (state == "charging" || state == "fully-charged" || state == "pending-charge") {
            source = WattlogPowerSource::AC;
        } else if (state == "discharging" || state == "empty" || state == "pending-discharge") {
            source = WattlogPowerSource::Battery;
        }
        const std::optional<WattlogPowerSource> previous = lastSource;
        lastSource = source ? source : lastSource;
        if (!(at > since)) {
            continue;
        }
        // Halves away from zero, as every whole number of this subsystem.
        const int percent = static_cast<int>(std::round(value));
        const QString line = QString::fromUtf8(raw);
        const QString detail =
            (source ? WattlogEventKinds::sourceText(*source) + QLatin1Char(' ') : QString()) +
            QString::number(percent) + QLatin1Char('%');
        const WattlogEvent level{
            WattlogEvent::newId(), at, K::BatteryLevel, detail, percent, source, line};
        if (source && previous && *source != *previous) {
            events.append(WattlogLogParser::powerSourceChange(level));
        }
        events.append(level);
    }
    return events;
}

QList<WattlogEvent> WattlogJournalMapper::loadUpowerHistory(const QStringList& files,
                                                            const QDateTime& since) {
    QList<WattlogEvent> events;
    for (const QString& file : files) {
        const BoundedFile::Result read = BoundedFile::readOnce(file);
        if (read.status == BoundedFile::Status::read) {
            events.append(parseUpowerHistory(read.data, since));
        }
    }
    return events;
}

}  // namespace zelvar
