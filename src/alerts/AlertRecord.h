#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QUuid>
#include <optional>

namespace zelvar {

// One violation of a memory limit as the monitor saw it. Kept in memory only.
struct AlertRecord {
    QUuid id = QUuid::createUuid();
    QString processName;
    qint32 pid = 0;
    double memoryMB = 0.0;  // mebibytes
    double limitMB = 0.0;   // mebibytes
    QDateTime timestamp = QDateTime::currentDateTimeUtc();
    bool wasAutoKilled = false;

    double exceededByMB() const { return memoryMB - limitMB; }
    // The moment in the user's locale: short date, time with seconds.
    QString displayTime() const;

    // The record's JSON form; decoding needs all seven keys.
    QJsonObject toJson() const;
    static std::optional<AlertRecord> fromJson(const QJsonObject& object);

    bool operator==(const AlertRecord&) const = default;
};

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::AlertRecord)
