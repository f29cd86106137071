#pragma once

#include <QString>

namespace zelvar {

// The texts of the macOS tools that name the Wi-Fi interface and its network.
class WifiToolOutput {
public:
    // The device ("en0", "en1", ...) of the first hardware port named "Wi-Fi" (or "AirPort",
    // its name before macOS 10.7) in `networksetup -listallhardwareports`; empty when there
    // is none, as on a Mac with Ethernet only.
    static QString wifiDevice(const QString& hardwarePorts);

    // The network's name from `ipconfig getsummary <device>`: the value of its "SSID : "
    // line. Empty when there is no such line or when the system hides the name ("<redacted>",
    // as recent macOS answers without verbose mode).
    static QString summarySsid(const QString& summary);
};

}  // namespace zelvar
