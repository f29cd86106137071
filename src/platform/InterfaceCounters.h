#pragma once

#include <QList>
#include <QString>
#include <optional>

namespace zelvar {

// One network interface's byte counters as the system keeps them.
struct InterfaceCounter {
    QString name;
    quint64 receivedBytes = 0;
    quint64 sentBytes = 0;
    // A real network device (Wi-Fi or Ethernet) rather than a tunnel, bridge or loopback: on
    // macOS the "en" interfaces, on Linux those with a device behind them.
    bool physical = false;
};

// The byte counters of every interface, loopback included, in the system's order. No value
// when the list can't be read at all. Cheap enough for the main thread.
class InterfaceCounters {
public:
    virtual ~InterfaceCounters() = default;
    virtual std::optional<QList<InterfaceCounter>> read() = 0;
};

}  // namespace zelvar
