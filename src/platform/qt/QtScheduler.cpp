#include "platform/qt/QtScheduler.h"

#include <QTimer>
#include <algorithm>
#include <cmath>

namespace zelvar {

void QtScheduler::callAfter(double seconds, QObject* context, std::function<void()> callback) {
    // NaN and negative delays fire at once; very long ones are held to Qt's timer range.
    const double clamped = seconds > 0.0 ? std::min(seconds, 24.0 * 24 * 3600) : 0.0;
    const auto ms = static_cast<int>(std::llround(clamped * 1000.0));
    QTimer::singleShot(ms, Qt::PreciseTimer, context, std::move(callback));
}

}  // namespace zelvar
