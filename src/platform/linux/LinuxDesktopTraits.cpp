#include "platform/DesktopTraits.h"

namespace zelvar {

// StatusNotifierItem and XEmbed trays draw each icon in a square cell.
bool trayIconsAreSquare() {
    return true;
}

}  // namespace zelvar
