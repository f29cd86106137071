#pragma once

#include <QString>

#include "network/NetworkUsage.h"
#include "platform/NetworkNameSource.h"

namespace zelvar {

// The name shown for the network the machine is on.
class NetworkName {
public:
    // The network's name from a source's reading; empty when unknown. The macOS tool's text
    // names the network after "Current Wi-Fi Network:"; any other text (not associated, not a
    // Wi-Fi interface, whatever its words) means unknown.
    static QString ssid(const NetworkNameReading& reading);

    // The name for display: the source's name when there is one, otherwise "Wi-Fi" while a
    // Wi-Fi-like interface exists and "Network" when none does. Blocks on the source.
    static QString read(NetworkNameSource& source, const InterfaceMap& interfaces);
};

}  // namespace zelvar
