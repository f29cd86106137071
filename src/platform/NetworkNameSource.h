#pragma once

#include <QString>

namespace zelvar {

// What the system says about the network the machine is on. Linux answers with the name of
// NetworkManager's primary connection; macOS with the Wi-Fi network's name from `ipconfig`
// when it gives one, else with the text of `networksetup -getairportnetwork <device>`, which
// the network subsystem parses.
struct NetworkNameReading {
    enum class Form { ConnectionName, AirportToolOutput };
    Form form = Form::ConnectionName;
    QString text;  // empty when unknown or when the source failed
};

// Blocks while the system answers, so callers keep it off the main thread.
class NetworkNameSource {
public:
    virtual ~NetworkNameSource() = default;
    virtual NetworkNameReading read() = 0;
};

}  // namespace zelvar
