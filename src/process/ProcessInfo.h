#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QString>
#include <optional>

#include "common/ProcessOrigin.h"
#include "platform/ProcessTable.h"

namespace zelvar {

// One process in one sample.
struct ProcessInfo {
    Pid id = 0;
    Pid ppid = 0;
    QString name;
    double memoryMB = 0.0;    // resident, mebibytes
    double cpuPercent = 0.0;  // 0 to 100, one core being 100
    QDateTime timestamp;      // when this process was sampled
    ProcessOrigin immediateOrigin;
    ProcessOrigin rootOrigin;
    // The table's start time (0: unknown), so that a kill reaches this process and not a later
    // one given the same pid. Not part of the JSON: nothing shows it.
    quint64 startTime = 0;

    // "1.5 GB" above 1024 MB, otherwise "512 MB"; exactly 1024 MB still shows in MB.
    QString displayMemory() const;
    // "12.5%"
    QString displayCPU() const;

    QJsonObject toJson() const;
    // All eight keys are required; the start time is left unknown.
    static std::optional<ProcessInfo> fromJson(const QJsonObject& object);

    bool operator==(const ProcessInfo&) const = default;
};

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::ProcessInfo)
