#include "app/report/HistoryReport.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QTextStream>
#include <QTimeZone>
#include <cstdio>

#include "common/BoundedFile.h"
#include "common/TerminalText.h"
#include "power/BatteryPowerMonitor.h"
#include "power/WattlogHistory.h"
#include "power/WattlogLogParser.h"

namespace zelvar {
namespace {

using namespace Qt::StringLiterals;

// A saved power log of several months runs to tens of megabytes.
constexpr qint64 kMaxLogBytes = 1024LL * 1024 * 1024;

QString isoDate(const QDateTime& date) {
    return date.toUTC().toString(Qt::ISODate);
}

// "3h 05m", "12m 09s", "42s".
QString duration(double seconds) {
    const qint64 s = static_cast<qint64>(seconds);
    if (s >= 3600) {
        return u"%1h %2m"_s.arg(s / 3600).arg(s % 3600 / 60, 2, 10, QLatin1Char('0'));
    }
    if (s >= 60) {
        return u"%1m %2s"_s.arg(s / 60).arg(s % 60, 2, 10, QLatin1Char('0'));
    }
    return u"%1s"_s.arg(s);
}

QString percentText(double ratio) {
    return QString::number(std::round(ratio * 1000.0) / 10.0) + QLatin1Char('%');
}

// Counts of each kind, in the kinds' order.
QList<std::pair<WattlogEventKind, int>> kindCounts(const QList<WattlogEvent>& events) {
    QMap<int, int> counts;
    for (const WattlogEvent& e : events) {
        ++counts[static_cast<int>(e.kind)];
    }
    QList<std::pair<WattlogEventKind, int>> list;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        list.append({static_cast<WattlogEventKind>(it.key()), it.value()});
    }
    return list;
}

QList<WattlogEvent> later(QList<WattlogEvent> events, const QDateTime& since) {
    events.removeIf([&since](const WattlogEvent& e) { return !(e.timestamp > since); });
    return events;
}

struct Settings {
    QDateTime since;
    QString fromLog;
    bool follow = false;
    bool json = false;
};

Settings settings(const ReportOptions& options) {
    Settings s;
    s.since =
        HistoryReport::parseDate(options.text(u"since"_s)).value_or(WattlogHistory::distantPast());
    s.fromLog = options.text(u"from-log"_s);
    s.follow = options.flag(u"follow"_s);
    s.json = options.flag(u"json"_s);
    return s;
}

// Loads the history with the monitor and waits for it.
HistoryReport::History loadHistory(BatteryPowerMonitor& monitor, const Clock& clock,
                                   const QDateTime& since) {
    QEventLoop loop;
    QObject::connect(&monitor, &BatteryPowerMonitor::historyLoadFinished, &loop, &QEventLoop::quit);
    monitor.reloadWattlogHistory();
    loop.exec();
    HistoryReport::History h;
    h.now = clock.now();
    h.events = later(monitor.powerEvents(), since);
    h.derived = h.events.size() == monitor.powerEvents().size()
                    ? monitor.derivedData()
                    : WattlogDerivedData::build(h.events, h.now);
    return h;
}

// Prints each new raw line of the live tail as it comes, until the process is ended.
int follow(BatteryPowerMonitor& monitor, QTextStream& out, bool json) {
    QObject::connect(&monitor, &BatteryPowerMonitor::liveLinesAppended, &monitor,
                     [&out, json](const QStringList& lines) {
                         for (const QString& line : lines) {
                             if (json) {
                                 out << QJsonDocument(QJsonObject{{u"raw_line"_s, line}})
                                            .toJson(QJsonDocument::Compact)
                                     << '\n';
                             } else {
                                 out << TerminalText::escaped(line) << '\n';
                             }
                         }
                         out.flush();
                     });
    // On standard error, so that the lines on standard output stay the log's alone.
    std::fprintf(stderr,
                 "Following the power log every 15 s; new lines appear below "
                 "(Ctrl+C ends).\n");
    monitor.startWattlogLiveTail();
    QEventLoop loop;
    return loop.exec();
}

int run(const ReportOptions& options, Monitors& monitors, QTextStream& out) {
    const Settings s = settings(options);
    const QDateTime now = monitors.ports().clock.now();
    if (!s.fromLog.isEmpty() && s.follow) {
        std::fprintf(stderr,
                     "zelvar2: --follow polls this system's power log; a saved log has no news\n");
        return 2;
    }
    if (!s.fromLog.isEmpty()) {
        const BoundedFile::Result file = BoundedFile::readOnce(s.fromLog, kMaxLogBytes);
        if (file.status != BoundedFile::Status::read) {
            std::fprintf(stderr, "zelvar2: can't read the power log %s: %s\n",
                         qUtf8Printable(TerminalText::escaped(s.fromLog)),
                         qUtf8Printable(file.error.isEmpty() ? u"no such file"_s : file.error));
            return 2;
        }
        const HistoryReport::History h =
            HistoryReport::fromLogText(QString::fromUtf8(file.data), s.since, now);
        out << (s.json ? QString::fromUtf8(HistoryReport::formatJson(h))
                       : HistoryReport::formatText(h));
        return 0;
    }
    BatteryPowerMonitor& monitor = *monitors.batteryPowerMonitor();
    const HistoryReport::History h = loadHistory(monitor, monitors.ports().clock, s.since);
    out << (s.json ? QString::fromUtf8(HistoryReport::formatJson(h))
                   : HistoryReport::formatText(h));
    out.flush();
    return s.follow ? follow(monitor, out, s.json) : 0;
}

QString checkDate(const QString& text) {
    return HistoryReport::parseDate(text) ? QString() : u"\"%1\" is not a date"_s.arg(text);
}

QString checkFile(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) {
        return u"there is no file \"%1\""_s.arg(path);
    }
    if (!info.isFile() || !info.isReadable()) {
        return u"\"%1\" is not a readable file"_s.arg(path);
    }
    return {};
}

}  // namespace

ReportKind HistoryReport::kind() {
    return {u"history"_s,
            u"The power history: sleeps, wakes, the lid, power sources, battery levels, reboots "
            "and crashes, with usage and battery statistics."_s,
            {{.name = u"since"_s,
              .valueName = u"DATE"_s,
              .description = u"Only events after this date"_s,
              .type = ReportOption::Type::Text,
              .check = &checkDate,
              .acceptsText = u"a date such as 2024-03-01 or 2024-03-01T10:30:00+01:00"_s},
             {.name = u"from-log"_s,
              .valueName = u"FILE"_s,
              .description = u"Read a saved 'pmset -g log' text instead of this system's log"_s,
              .type = ReportOption::Type::Text,
              .check = &checkFile,
              .acceptsText = u"a readable file"_s},
             {.name = u"follow"_s,
              .description = u"Then poll the power log every 15 s and print each new line"_s,
              .type = ReportOption::Type::Flag}},
            Monitors::Part::Power,
            &run};
}

std::optional<QDateTime> HistoryReport::parseDate(const QString& raw) {
    const QString text = raw.trimmed();
    if (text.isEmpty()) {
        return std::nullopt;
    }
    if (const auto pmset = WattlogLogParser::pmsetDate(text)) {
        return pmset;
    }
    for (const QString& format :
         {u"yyyy-MM-dd"_s, u"yyyy-MM-dd HH:mm"_s, u"yyyy-MM-dd HH:mm:ss"_s}) {
        if (const QDateTime local = QDateTime::fromString(text, format); local.isValid()) {
            return local.toUTC();
        }
    }
    const QDateTime iso = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (iso.isValid()) {
        return iso.toUTC();
    }
    return std::nullopt;
}

HistoryReport::History HistoryReport::fromLogText(const QString& text, const QDateTime& since,
                                                  const QDateTime& now) {
    QList<WattlogEvent> events =
        WattlogHistory::deduplicated(later(WattlogLogParser::parsePmsetText(text), since));
    WattlogHistory::sortByTime(events);
    History h;
    h.now = now;
    h.derived = WattlogDerivedData::build(events, now);
    h.events = std::move(events);
    return h;
}

QString HistoryReport::formatText(const History& h) {
    QString text;
    QTextStream t(&text);
    t << "Events: " << h.events.size();
    if (!h.events.isEmpty()) {
        t << " from " << isoDate(h.events.constFirst().timestamp) << " to "
          << isoDate(h.events.constLast().timestamp);
    }
    t << '\n';
    for (const WattlogEvent& e : h.events) {
        t << "  " << isoDate(e.timestamp) << "  "
          << TerminalText::leftJustified(WattlogEventKinds::label(e.kind), 18)
          << TerminalText::escaped(e.detail);
        if (e.batteryPercent || e.powerSource) {
            t << "  ["
              << (e.batteryPercent ? QString::number(*e.batteryPercent) + QLatin1Char('%') : u"-"_s)
              << (e.powerSource ? QLatin1Char(' ') + WattlogEventKinds::sourceText(*e.powerSource)
                                : QString())
              << ']';
        }
        t << '\n';
    }
    t << "\nBy kind:";
    for (const auto& [kind, count] : kindCounts(h.events)) {
        t << "\n  " << TerminalText::leftJustified(WattlogEventKinds::label(kind), 18) << count;
    }
    const WattlogStats& s = h.derived.stats;
    const WattlogHealthCounts& health = h.derived.systemHealthCounts;
    t << "\n\nStatistics:\n";
    t << "  Awake:          " << duration(s.totalAwakeTime) << " in "
      << h.derived.usageSessions.size()
      << (h.derived.usageSessions.size() == 1 ? " session (average " : " sessions (average ")
      << duration(s.averageSessionLength) << ", longest " << duration(s.longestSession) << ")\n";
    t << "  Asleep:         " << duration(s.totalSleepTime) << '\n';
    t << "  Lid closes:     " << s.lidCloseCount << "\n  Reboots:        " << s.rebootCount
      << "\n  Charge cycles:  " << s.batteryChargeCycles << '\n';
    t << "  Battery points: " << h.derived.batteryPoints.size() << " (on AC "
      << percentText(s.timeOnACRatio) << ", on battery " << percentText(s.timeOnBatteryRatio)
      << ")\n";
    t << "  Health:         " << health.panics << " panics, " << health.crashes << " crashes, "
      << health.hangs << " hangs, " << health.jetsam << " out-of-memory kills\n";
    return text;
}

QByteArray HistoryReport::formatJson(const History& h) {
    QJsonArray events;
    for (const WattlogEvent& e : h.events) {
        events.append(QJsonObject{
            {u"timestamp"_s, isoDate(e.timestamp)},
            {u"kind"_s, WattlogEventKinds::label(e.kind)},
            {u"detail"_s, e.detail},
            {u"battery_percent"_s, e.batteryPercent ? QJsonValue(*e.batteryPercent) : QJsonValue()},
            {u"power_source"_s, e.powerSource
                                    ? QJsonValue(WattlogEventKinds::sourceText(*e.powerSource))
                                    : QJsonValue()},
            {u"raw_line"_s, e.rawLine}});
    }
    QJsonObject counts;
    for (const auto& [kind, count] : kindCounts(h.events)) {
        counts.insert(WattlogEventKinds::label(kind), count);
    }
    const WattlogStats& s = h.derived.stats;
    const WattlogHealthCounts& health = h.derived.systemHealthCounts;
    const QJsonObject stats{{u"total_sleep_time_s"_s, s.totalSleepTime},
                            {u"total_awake_time_s"_s, s.totalAwakeTime},
                            {u"average_session_length_s"_s, s.averageSessionLength},
                            {u"longest_session_s"_s, s.longestSession},
                            {u"session_count"_s, h.derived.usageSessions.size()},
                            {u"lid_close_count"_s, s.lidCloseCount},
                            {u"reboot_count"_s, s.rebootCount},
                            {u"battery_charge_cycles"_s, s.batteryChargeCycles},
                            {u"time_on_ac_ratio"_s, s.timeOnACRatio},
                            {u"time_on_battery_ratio"_s, s.timeOnBatteryRatio},
                            {u"event_count"_s, s.eventCount},
                            {u"battery_point_count"_s, h.derived.batteryPoints.size()},
                            {u"timeline_event_count"_s, h.derived.batteryTimelineEvents.size()}};
    const QJsonObject healthJson{{u"panics"_s, health.panics},
                                 {u"crashes"_s, health.crashes},
                                 {u"hangs"_s, health.hangs},
                                 {u"jetsam"_s, health.jetsam}};
    return QJsonDocument(QJsonObject{{u"events"_s, events},
                                     {u"counts"_s, counts},
                                     {u"stats"_s, stats},
                                     {u"health"_s, healthJson}})
        .toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
