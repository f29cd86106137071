#include "disk/DiskChange.h"

#include <QJsonArray>
#include <cmath>
#include <cstdlib>

#include "common/IsoDate.h"

namespace zelvar {
namespace {

QJsonArray attributionsJson(const QList<DiskAttribution>& attributions) {
    QJsonArray array;
    for (const DiskAttribution& a : attributions) {
        array.append(QJsonObject{{QStringLiteral("label"), a.label},
                                 {QStringLiteral("path"), a.detail},
                                 {QStringLiteral("bytes"), a.bytes}});
    }
    return array;
}

}  // namespace

DiskAttribution DiskAttribution::make(const QString& path, qint64 bytes,
                                      const QString& homeDirectory) {
    QString label = path;
    if (!homeDirectory.isEmpty()) {
        label.replace(homeDirectory, QStringLiteral("~"));
    }
    return DiskAttribution{QUuid::createUuid(), label, path, bytes};
}

QString DiskAttribution::formatFileByteCount(qint64 bytes) {
    if (bytes == 0) {
        return QStringLiteral("Zero KB");
    }
    const double magnitude = std::fabs(static_cast<double>(bytes));
    const QString sign = bytes < 0 ? QStringLiteral("-") : QString();
    if (magnitude < 1000.0) {
        return sign + (magnitude == 1.0 ? QStringLiteral("1 byte")
                                        : QStringLiteral("%1 bytes").arg(std::llabs(bytes)));
    }
    static const char* const units[] = {"KB", "MB", "GB", "TB", "PB", "EB"};
    int unit = 0;
    double value = magnitude / 1000.0;
    while (true) {
        const int digits = unit == 0 ? 0 : (unit == 1 ? 1 : 2);
        const double scale = std::pow(10.0, digits);
        const double rounded = std::round(value * scale) / scale;
        // A value that rounds up to 1000 shows in the next unit.
        if (rounded >= 1000.0 && unit < 5) {
            value /= 1000.0;
            ++unit;
            continue;
        }
        QString text = QString::number(rounded, 'f', digits);
        if (text.contains(QLatin1Char('.'))) {
            while (text.endsWith(QLatin1Char('0'))) {
                text.chop(1);
            }
            if (text.endsWith(QLatin1Char('.'))) {
                text.chop(1);
            }
        }
        return sign + text + QLatin1Char(' ') + QLatin1String(units[unit]);
    }
}

qint64 DiskChange::changeMB() const {
    return std::llabs(changeBytes) / 1048576;
}

QString DiskChange::displayChange() const {
    if (changeBytes >= 1) {
        return QStringLiteral("+%1 MB").arg(changeBytes >> 20);
    }
    return QStringLiteral("-%1 MB").arg(std::llabs(changeBytes) / 1048576);
}

QString DiskChange::summary() const {
    const QString head = displayChange() + QStringLiteral(" on ") + mountPoint;
    if (!directoryDeltas.isEmpty()) {
        const DiskAttribution& first = directoryDeltas.first();
        return head + QStringLiteral(", largest directory change: ") + first.label +
               QLatin1Char(' ') + first.displaySize();
    }
    if (!recentFiles.isEmpty()) {
        const DiskAttribution& first = recentFiles.first();
        return head + QStringLiteral(", recent file: ") + first.label + QLatin1Char(' ') +
               first.displaySize();
    }
    if (!activeWriters.isEmpty()) {
        return head + QStringLiteral(", active writers: ") +
               activeWriters.join(QStringLiteral(", "));
    }
    return head;
}

QJsonObject DiskChange::toEventJson() const {
    return QJsonObject{
        {QStringLiteral("timestamp"), formatIsoDate(timestamp)},
        {QStringLiteral("mount_point"), mountPoint},
        {QStringLiteral("change_bytes"), changeBytes},
        {QStringLiteral("previous_bytes"), previousBytes},
        {QStringLiteral("current_bytes"), currentBytes},
        {QStringLiteral("directory_deltas"), attributionsJson(directoryDeltas)},
        {QStringLiteral("recent_files"), attributionsJson(recentFiles)},
        {QStringLiteral("active_writers"), QJsonArray::fromStringList(activeWriters)},
    };
}

}  // namespace zelvar
