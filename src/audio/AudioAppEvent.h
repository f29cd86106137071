#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QUuid>
#include <optional>

#include "audio/AudioDeviceType.h"

namespace zelvar {

// One attributed use of a device: the application found when the device started running, or
// named by the system's log as starting to play.
struct AudioAppEvent {
    QUuid id;
    QDateTime timestamp;  // when the monitor recorded it, not when the log line was written
    QString appName;
    std::optional<QString> bundleID;  // only for events from the log
    AudioDeviceType deviceType = AudioDeviceType::Output;
    QString source;  // the label of the strategy that found the application

    static AudioAppEvent make(const QDateTime& timestamp, const QString& appName,
                              std::optional<QString> bundleID, AudioDeviceType deviceType,
                              const QString& source) {
        return {QUuid::createUuid(), timestamp, appName, std::move(bundleID), deviceType, source};
    }
};

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::AudioAppEvent)
