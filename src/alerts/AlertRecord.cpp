#include "alerts/AlertRecord.h"

#include <QLocale>
#include <QRegularExpression>

#include "common/IsoDate.h"

namespace zelvar {

QString AlertRecord::displayTime() const {
    const QLocale locale;
    // The long time format is the medium one plus the time zone; drop the zone.
    QString timeFormat = locale.timeFormat(QLocale::LongFormat);
    timeFormat.remove(QRegularExpression(QStringLiteral("\\s*\\(?t+\\)?")));
    const QDateTime local = timestamp.toLocalTime();
    return locale.toString(local.date(), QLocale::ShortFormat) + QStringLiteral(", ") +
           locale.toString(local.time(), timeFormat.trimmed());
}

QJsonObject AlertRecord::toJson() const {
    return {
        {QStringLiteral("id"), id.toString(QUuid::WithoutBraces).toUpper()},
        {QStringLiteral("process_name"), processName},
        {QStringLiteral("pid"), pid},
        {QStringLiteral("memory_mb"), memoryMB},
        {QStringLiteral("limit_mb"), limitMB},
        {QStringLiteral("timestamp"), formatIsoDate(timestamp)},
        {QStringLiteral("was_auto_killed"), wasAutoKilled},
    };
}

std::optional<AlertRecord> AlertRecord::fromJson(const QJsonObject& object) {
    const auto value = [&](const char* key) { return object.value(QLatin1String(key)); };
    const QUuid id = QUuid::fromString(value("id").toString());
    const std::optional<QDateTime> timestamp = parseIsoDate(value("timestamp").toString());
    if (id.isNull() || !value("process_name").isString() || !value("pid").isDouble() ||
        !value("memory_mb").isDouble() || !value("limit_mb").isDouble() || !timestamp ||
        !value("was_auto_killed").isBool()) {
        return std::nullopt;
    }
    AlertRecord record;
    record.id = id;
    record.processName = value("process_name").toString();
    record.pid = value("pid").toInt();
    record.memoryMB = value("memory_mb").toDouble();
    record.limitMB = value("limit_mb").toDouble();
    record.timestamp = *timestamp;
    record.wasAutoKilled = value("was_auto_killed").toBool();
    return record;
}

}  // namespace zelvar
