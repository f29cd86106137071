#include "app/report/AudioReport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include "app/report/RunMonitors.h"
#include "audio/AudioMonitor.h"
#include "common/TerminalText.h"
#include "platform/Clock.h"

namespace zelvar {
namespace {

QString clockTime(const QDateTime& time) {
    return time.toLocalTime().toString(QStringLiteral("HH:mm:ss"));
}

QJsonObject eventJson(const AudioAppEvent& event) {
    return {{QStringLiteral("id"), event.id.toString(QUuid::WithoutBraces)},
            {QStringLiteral("timestamp"), event.timestamp.toUTC().toString(Qt::ISODateWithMs)},
            {QStringLiteral("app_name"), event.appName},
            {QStringLiteral("bundle_id"),
             event.bundleID ? QJsonValue(*event.bundleID) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("device_type"), rawValue(event.deviceType)},
            {QStringLiteral("source"), event.source}};
}

}  // namespace

ReportKind AudioReport::kind() {
    return {QStringLiteral("audio"),
            QStringLiteral("Whether the speaker and the microphone are in use and by which "
                           "application, each use as it starts."),
            {{.name = QStringLiteral("seconds"),
              .valueName = QStringLiteral("SECONDS"),
              .description = QStringLiteral("How long to watch"),
              .maximum = 3600,
              .defaultValue = 10,
              .defaultText = QStringLiteral("10")}},
            Monitors::Part::Audio,
            &run};
}

int AudioReport::run(const ReportOptions& options, Monitors& monitors, QTextStream& out) {
    AudioMonitor& monitor = *monitors.audioMonitor();
    const bool json = options.flag(QStringLiteral("json"));
    const Clock& clock = monitors.ports().clock;
    QString printedStatus;
    if (!json) {
        // As it happens: each event at once, the status when a refresh has changed it.
        QObject::connect(&monitor, &AudioMonitor::eventAdded, &monitor,
                         [&](const AudioAppEvent& event) {
                             out << formatEventLine(event) << '\n';
                             out.flush();
                         });
        QObject::connect(&monitor, &AudioMonitor::refreshFinished, &monitor, [&] {
            const QString status = monitor.outputStatusText() + u'\n' + monitor.inputStatusText();
            if (status != printedStatus) {
                printedStatus = status;
                out << formatStatusLine(clock.now(), monitor.outputStatusText(),
                                        monitor.inputStatusText())
                    << '\n';
                out.flush();
            }
        });
    }
    runMonitors(monitors, monitor, &AudioMonitor::refreshFinished,
                {1, options.number(QStringLiteral("seconds"))});
    QObject::disconnect(&monitor, nullptr, &monitor, nullptr);
    if (json) {
        out << formatJson(monitor);
    } else {
        out << "Events: " << monitor.outputHistory().size() << " speaker, "
            << monitor.inputHistory().size() << " microphone; elevated access "
            << (monitor.isElevatedAccessAvailable() ? "available" : "not available") << '\n';
    }
    return 0;
}

QString AudioReport::formatStatusLine(const QDateTime& time, const QString& outputStatus,
                                      const QString& inputStatus) {
    return clockTime(time) + QStringLiteral("  Speaker: ") + TerminalText::escaped(outputStatus) +
           QStringLiteral("  Microphone: ") + TerminalText::escaped(inputStatus);
}

QString AudioReport::formatEventLine(const AudioAppEvent& event) {
    QString line = clockTime(event.timestamp) + QStringLiteral("  ") + rawValue(event.deviceType) +
                   QStringLiteral(" started: ") + TerminalText::escaped(event.appName);
    if (event.bundleID) {
        line += QStringLiteral(" [") + TerminalText::escaped(*event.bundleID) + u']';
    }
    return line + QStringLiteral(" (") + event.source + u')';
}

QByteArray AudioReport::formatJson(const AudioMonitor& monitor) {
    QJsonArray events;
    for (const AudioAppEvent& event : monitor.outputHistory() + monitor.inputHistory()) {
        events.append(eventJson(event));
    }
    const auto optional = [](const std::optional<QString>& text) {
        return text ? QJsonValue(*text) : QJsonValue(QJsonValue::Null);
    };
    const QJsonObject root{
        {QStringLiteral("is_output_active"), monitor.isOutputActive()},
        {QStringLiteral("is_input_active"), monitor.isInputActive()},
        {QStringLiteral("output_status_text"), monitor.outputStatusText()},
        {QStringLiteral("input_status_text"), monitor.inputStatusText()},
        {QStringLiteral("most_recent_output_app"), optional(monitor.mostRecentOutputApp())},
        {QStringLiteral("most_recent_input_app"), optional(monitor.mostRecentInputApp())},
        {QStringLiteral("is_elevated_access_available"), monitor.isElevatedAccessAvailable()},
        {QStringLiteral("events"), events}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
