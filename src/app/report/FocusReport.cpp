#include "app/report/FocusReport.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

#include "common/TerminalText.h"
#include "focus/FocusMonitor.h"

namespace zelvar {
namespace {

QString isoDate(const QDateTime& date) {
    return date.toUTC().toString(Qt::ISODateWithMs);
}

}  // namespace

ReportKind FocusReport::kind() {
    return {QStringLiteral("focus"),
            QStringLiteral("The application that holds the focus and each change of it as it "
                           "happens, with how long the previous one held it, and whether one "
                           "just stole it."),
            {{.name = QStringLiteral("seconds"),
              .valueName = QStringLiteral("SECONDS"),
              .description = QStringLiteral("How long to watch"),
              .maximum = 86400,
              .defaultValue = 10,
              .defaultText = QStringLiteral("10")}},
            Monitors::Part::Focus,
            [](const ReportOptions& options, Monitors& monitors, QTextStream& out) {
                const bool json = options.flag(QStringLiteral("json"));
                const auto print = [&](const QString& text) {
                    if (!json) {
                        out << text;
                        out.flush();
                    }
                };
                const Snapshot s = sample(
                    monitors, options.number(QStringLiteral("seconds")),
                    [&](const QString& startApp) { print(formatStart(startApp)); },
                    [&](const FocusEvent& event) { print(formatEvent(event)); });
                if (json) {
                    out << formatJson(s);
                } else {
                    out << formatEnd(s);
                }
                return 0;
            }};
}

FocusReport::Snapshot FocusReport::sample(Monitors& monitors, double seconds,
                                          const std::function<void(const QString&)>& started,
                                          const std::function<void(const FocusEvent&)>& changed) {
    const FocusMonitor& monitor = *monitors.focusMonitor();
    Snapshot s;
    QEventLoop loop;
    QObject::connect(&monitor, &FocusMonitor::focusHistoryChanged, &loop, [&] {
        s.events.append(monitor.focusHistory().last());
        changed(s.events.last());
    });
    QTimer::singleShot(static_cast<int>(seconds * 1000.0), &loop, [&] {
        monitors.stop();
        loop.quit();
    });
    monitors.start();
    s.startApp = monitor.currentApp();
    started(s.startApp);
    loop.exec();
    s.currentApp = monitor.currentApp();
    s.lastStolenBy = monitor.lastStolenBy();
    s.seconds = seconds;
    return s;
}

QString FocusReport::formatStart(const QString& startApp) {
    return QStringLiteral("Current Focus: %1\n").arg(TerminalText::escaped(startApp));
}

QString FocusReport::formatEvent(const FocusEvent& event) {
    QString line = event.timestamp.toLocalTime().toString(QStringLiteral("HH:mm:ss.zzz")) +
                   QStringLiteral("  ") + TerminalText::escaped(event.appName);
    if (event.previousApp) {
        line += QStringLiteral("  from ") + TerminalText::escaped(*event.previousApp);
    }
    if (event.duration) {
        line += QStringLiteral(" after ") + FocusEvent::durationText(*event.duration);
    }
    return line + '\n';
}

QString FocusReport::formatEnd(const Snapshot& s) {
    QString end = QStringLiteral("Changes: %1 in %2 s\n")
                      .arg(s.events.size())
                      .arg(QString::number(s.seconds, 'f', 1));
    if (s.lastStolenBy) {
        end += QStringLiteral("Focus stolen by ") + TerminalText::escaped(*s.lastStolenBy) + '\n';
    } else {
        end += QStringLiteral("No focus stolen\n");
    }
    return end;
}

QByteArray FocusReport::formatJson(const Snapshot& s) {
    QJsonArray events;
    for (const FocusEvent& e : s.events) {
        events.append(
            QJsonObject{{QStringLiteral("id"), e.id.toString(QUuid::WithoutBraces)},
                        {QStringLiteral("timestamp"), isoDate(e.timestamp)},
                        {QStringLiteral("app_name"), e.appName},
                        {QStringLiteral("previous_app"),
                         e.previousApp ? QJsonValue(*e.previousApp) : QJsonValue(QJsonValue::Null)},
                        {QStringLiteral("duration"),
                         e.duration ? QJsonValue(*e.duration) : QJsonValue(QJsonValue::Null)}});
    }
    const QJsonObject root{
        {QStringLiteral("start_app"), s.startApp},
        {QStringLiteral("current_app"), s.currentApp},
        {QStringLiteral("seconds"), s.seconds},
        {QStringLiteral("events"), events},
        {QStringLiteral("last_stolen_by"),
         s.lastStolenBy ? QJsonValue(*s.lastStolenBy) : QJsonValue(QJsonValue::Null)}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
