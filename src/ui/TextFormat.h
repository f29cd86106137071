#pragma once

#include <QString>

namespace zelvar {

// Whole numbers in the dashboard's text are cut toward zero, never rounded: a limit of
// 1500.7 reads "1500", and 48.9 megabytes over reads "+48".
QString wholeNumber(double value);

// "<whole number> MB", with the blank, as the sheets and the alert rows show sizes.
QString wholeMegabytes(double megabytes);

}  // namespace zelvar
