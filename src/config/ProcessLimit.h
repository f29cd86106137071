#pragma once

#include <QDateTime>
#include <QString>
#include <QUuid>
#include <optional>

namespace zelvar {

// A memory limit for the processes whose name contains `processName`.
struct ProcessLimit {
    QUuid id;
    QString processName;
    double limitMB = 0.0;  // mebibytes
    bool autoKillEnabled = false;
    QDateTime createdAt;
    std::optional<QDateTime> lastTriggered;

    static ProcessLimit create(QString processName, double limitMB, bool autoKillEnabled,
                               QDateTime createdAt, QUuid id = QUuid::createUuid()) {
        return {id, std::move(processName), limitMB, autoKillEnabled, std::move(createdAt), {}};
    }

    void markTriggered(const QDateTime& now) { lastTriggered = now; }

    bool operator==(const ProcessLimit&) const = default;
};

}  // namespace zelvar
