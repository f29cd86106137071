#pragma once

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>

namespace zelvar {

// One mounted volume with its capacity at the moment it was read. GB here is 2^30 bytes.
struct DiskInfo {
    QString mountPoint;
    qint64 totalBytes = 0;
    qint64 usedBytes = 0;  // totalBytes - availableBytes
    qint64 availableBytes = 0;
    QDateTime timestamp;

    const QString& id() const { return mountPoint; }

    double usedGB() const;
    double totalGB() const;
    double availableGB() const;
    // 0.0 when the volume reports no size.
    double percentUsed() const;
    // "12.3 GB / 456.7 GB"
    QString displayUsed() const;
    // "42%"
    QString displayPercent() const;

    bool operator==(const DiskInfo&) const = default;
};

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::DiskInfo)
