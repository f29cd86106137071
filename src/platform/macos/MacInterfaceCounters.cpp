#include "platform/macos/MacInterfaceCounters.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_var.h>
#include <sys/socket.h>

namespace zelvar {

std::optional<QList<InterfaceCounter>> MacInterfaceCounters::read() {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0 || list == nullptr) {
        return std::nullopt;
    }
    QList<InterfaceCounter> interfaces;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_LINK ||
            entry->ifa_data == nullptr) {
            continue;
        }
        const auto* data = static_cast<const if_data*>(entry->ifa_data);
        const QString name = QString::fromUtf8(entry->ifa_name);
        interfaces.append({name, static_cast<quint64>(data->ifi_ibytes),
                           static_cast<quint64>(data->ifi_obytes),
                           name.startsWith(QLatin1String("en"))});
    }
    freeifaddrs(list);
    return interfaces;
}

}  // namespace zelvar
