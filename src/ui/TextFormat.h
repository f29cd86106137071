#pragma once

#include <QDateTime>
#include <QString>

namespace zelvar {

// Whole numbers in the dashboard's text are cut toward zero, never rounded: a limit of
// 1500.7 reads "1500", and 48.9 megabytes over reads "+48".
QString wholeNumber(double value);

// "<whole number> MB", with the blank, as the sheets and the alert rows show sizes.
QString wholeMegabytes(double megabytes);

// An instant as the dashboard shows it: in the user's time zone, in the locale's short
// format; the time of day alone, or with the date.
QString localTimeText(const QDateTime& when);
QString localDateTimeText(const QDateTime& when);

}  // namespace zelvar
