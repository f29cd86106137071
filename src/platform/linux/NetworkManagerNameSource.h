#pragma once

#include <QDBusConnection>

#include "platform/NetworkNameSource.h"

namespace zelvar {

// The Id of NetworkManager's primary connection on the system bus: the Wi-Fi network's name
// for a wireless connection, the profile's name ("Wired connection 1") otherwise. Empty when
// NetworkManager isn't running or there is no primary connection.
class NetworkManagerNameSource final : public NetworkNameSource {
public:
    explicit NetworkManagerNameSource(QDBusConnection bus = QDBusConnection::systemBus())
        : m_bus(std::move(bus)) {}
    NetworkNameReading read() override;

private:
    QDBusConnection m_bus;
};

}  // namespace zelvar
