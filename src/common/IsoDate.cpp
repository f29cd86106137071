#include "common/IsoDate.h"

#include <QRegularExpression>
#include <QTimeZone>

namespace zelvar {

QString formatIsoDate(const QDateTime& instant) {
    return instant.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss'Z'"));
}

std::optional<QDateTime> parseIsoDate(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral(
        R"(^(\d{4})-(\d{2})-(\d{2})T(\d{2}):(\d{2}):(\d{2})(?:(Z)|([+-])(\d{2}):?(\d{2}))$)"));
    const auto match = pattern.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const QDate date(match.captured(1).toInt(), match.captured(2).toInt(),
                     match.captured(3).toInt());
    const QTime time(match.captured(4).toInt(), match.captured(5).toInt(),
                     match.captured(6).toInt());
    if (!date.isValid() || !time.isValid()) {
        return std::nullopt;
    }
    int offsetSeconds = 0;
    if (match.captured(7).isEmpty()) {
        const int hours = match.captured(9).toInt();
        const int minutes = match.captured(10).toInt();
        if (hours > 23 || minutes > 59) {
            return std::nullopt;
        }
        offsetSeconds = (hours * 3600 + minutes * 60) * (match.captured(8) == u"-" ? -1 : 1);
    }
    return QDateTime(date, time, QTimeZone(offsetSeconds)).toUTC();
}

}  // namespace zelvar
