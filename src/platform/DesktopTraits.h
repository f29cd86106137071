#pragma once

namespace zelvar {

// Facts about the desktop the app runs on that shape what it shows, answered by the current
// system's adapter.

// Whether the tray shows every status icon square, scaling a wider picture down to fit.
// True for the trays of Linux desktops; false for the macOS menu bar, where an item is as
// wide as its picture.
bool trayIconsAreSquare();

}  // namespace zelvar
