#include "focus/FocusEvent.h"

namespace zelvar {

QString FocusEvent::durationText(double seconds) {
    if (seconds < 1.0) {
        return QString::asprintf("%.0fms", seconds * 1000.0);
    }
    if (seconds < 60.0) {
        return QString::asprintf("%.1fs", seconds);
    }
    return QString::asprintf("%.1fm", seconds / 60.0);
}

}  // namespace zelvar
