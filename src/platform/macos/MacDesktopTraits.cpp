#include "platform/DesktopTraits.h"

namespace zelvar {

// A menu bar status item takes the width of its image.
bool trayIconsAreSquare() {
    return false;
}

}  // namespace zelvar
