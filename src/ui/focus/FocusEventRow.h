#pragma once

#include "focus/FocusEvent.h"
#include "ui/widgets/EventRowDelegate.h"

namespace zelvar {

// One change of focus in the history: the application that took the focus, "from" the one
// that had it, and on the right how long that one kept it, above the time of the change.
class FocusEventRow final {
public:
    FocusEventRow() = delete;

    static EventRowContent content(const FocusEvent& event, const QColor& accent);
};

}  // namespace zelvar
