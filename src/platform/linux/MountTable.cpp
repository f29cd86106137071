#include "platform/linux/MountTable.h"

#include <QList>

namespace zelvar {

QString decodeMountField(const QByteArray& field) {
    QByteArray decoded;
    decoded.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        const char c = field[i];
        if (c == '\\' && i + 3 < field.size()) {
            const QByteArray digits = field.mid(i + 1, 3);
            bool ok = false;
            const int value = digits.toInt(&ok, 8);
            if (ok && digits.size() == 3 && value < 256) {
                decoded.append(static_cast<char>(value));
                i += 3;
                continue;
            }
        }
        decoded.append(c);
    }
    return QString::fromUtf8(decoded);
}

QStringList blockDeviceMountsUnder(const QByteArray& mountTable, const QStringList& roots) {
    QStringList points;
    for (const QByteArray& line : mountTable.split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() < 3 || !fields[0].startsWith("/dev/")) {
            continue;
        }
        const QString point = decodeMountField(fields[1]);
        const bool underARoot = std::any_of(roots.begin(), roots.end(), [&](const QString& root) {
            return point == root || point.startsWith(root + QLatin1Char('/'));
        });
        if (underARoot && !points.contains(point)) {
            points.append(point);
        }
    }
    return points;
}

}  // namespace zelvar
