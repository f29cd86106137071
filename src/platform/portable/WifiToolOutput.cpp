#include "platform/portable/WifiToolOutput.h"

#include <QStringList>

namespace zelvar {

QString WifiToolOutput::wifiDevice(const QString& hardwarePorts) {
    static const QLatin1String kPort("Hardware Port:");
    static const QLatin1String kDevice("Device:");
    bool inWifiPort = false;
    for (const QString& raw : hardwarePorts.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        if (line.startsWith(kPort)) {
            const QString port = line.mid(kPort.size()).trimmed();
            inWifiPort = port == QLatin1String("Wi-Fi") || port == QLatin1String("AirPort");
        } else if (inWifiPort && line.startsWith(kDevice)) {
            const QString device = line.mid(kDevice.size()).trimmed();
            if (!device.isEmpty()) {
                return device;
            }
        }
    }
    return {};
}

QString WifiToolOutput::summarySsid(const QString& summary) {
    static const QLatin1String kKey("SSID :");
    for (const QString& raw : summary.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        if (!line.startsWith(kKey)) {
            continue;  // BSSID and the like don't begin with the key
        }
        const QString name = line.mid(kKey.size()).trimmed();
        return name == QLatin1String("<redacted>") ? QString() : name;
    }
    return {};
}

}  // namespace zelvar
