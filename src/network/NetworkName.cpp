#include "network/NetworkName.h"

namespace zelvar {

QString NetworkName::ssid(const NetworkNameReading& reading) {
    if (reading.form == NetworkNameReading::Form::ConnectionName) {
        return reading.text.trimmed();
    }
    static const QString kMarker = QStringLiteral("Current Wi-Fi Network:");
    const qsizetype at = reading.text.indexOf(kMarker);
    if (at < 0) {
        return {};
    }
    return reading.text.mid(at + kMarker.size()).trimmed();
}

QString NetworkName::read(NetworkNameSource& source, const InterfaceMap& interfaces) {
    const QString name = ssid(source.read());
    if (!name.isEmpty()) {
        return name;
    }
    // Only whether such an interface exists matters, not how busy it is.
    const bool anyWifiLike = std::any_of(interfaces.begin(), interfaces.end(),
                                         [](const InterfaceUsage& i) { return i.wifiLike; });
    return anyWifiLike ? QStringLiteral("Wi-Fi") : QStringLiteral("Network");
}

}  // namespace zelvar
