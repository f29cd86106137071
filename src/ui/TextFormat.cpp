#include "ui/TextFormat.h"

#include <QLocale>
#include <cmath>

namespace zelvar {

QString wholeNumber(double value) {
    if (!std::isfinite(value)) {
        return QStringLiteral("0");
    }
    return QString::number(static_cast<qint64>(std::trunc(value)));
}

QString wholeMegabytes(double megabytes) {
    return wholeNumber(megabytes) + QStringLiteral(" MB");
}

QString localTimeText(const QDateTime& when) {
    return QLocale().toString(when.toLocalTime().time(), QLocale::ShortFormat);
}

QString localDateTimeText(const QDateTime& when) {
    return QLocale().toString(when.toLocalTime(), QLocale::ShortFormat);
}

}  // namespace zelvar
