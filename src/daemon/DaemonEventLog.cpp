#include "daemon/DaemonEventLog.h"

#include <QJsonDocument>
#include <cstdio>

#include "platform/Clock.h"

namespace zelvar {

DaemonEventLog::DaemonEventLog(const QString& path, const Clock& clock)
    : m_clock(clock), m_file(path, kCapBytes, [](const QString& file, const QString& error) {
          std::fprintf(stderr, "[Daemon] Can't write %s: %s\n", qPrintable(file),
                       qPrintable(error));
      }) {}

void DaemonEventLog::write(const QString& event, QJsonObject fields) {
    const QDateTime now = m_clock.now();
    fields.insert(QStringLiteral("ts"), static_cast<double>(now.toMSecsSinceEpoch()) / 1000.0);
    fields.insert(QStringLiteral("iso"), now.toUTC().toString(Qt::ISODate));
    fields.insert(QStringLiteral("event"), event);
    m_file.append(QJsonDocument(fields).toJson(QJsonDocument::Compact));
}

void DaemonEventLog::reportWriteFailure(const QString& path, const QString& error) {
    const QDateTime now = m_clock.now();
    const auto last = m_lastFailureReport.constFind(path);
    if (last != m_lastFailureReport.constEnd() &&
        secondsBetween(*last, now) < kFailureReportSeconds) {
        return;
    }
    m_lastFailureReport.insert(path, now);
    write(QStringLiteral("write_failed"),
          {{QStringLiteral("file"), path}, {QStringLiteral("error"), error}});
}

JsonlFile::FailureHandler DaemonEventLog::failureHandler() {
    return [this](const QString& path, const QString& error) { reportWriteFailure(path, error); };
}

}  // namespace zelvar
