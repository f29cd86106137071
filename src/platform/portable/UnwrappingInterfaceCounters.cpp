#include "platform/portable/UnwrappingInterfaceCounters.h"

namespace zelvar {

quint64 UnwrappingInterfaceCounters::advance(Counter& counter, quint64 raw) {
    const auto now = static_cast<quint32>(raw);
    counter.total += static_cast<quint32>(now - counter.raw);  // unsigned: modulo 2^32
    counter.raw = now;
    return counter.total;
}

std::optional<QList<InterfaceCounter>> UnwrappingInterfaceCounters::read() {
    std::optional<QList<InterfaceCounter>> interfaces = m_source->read();
    if (!interfaces) {
        return interfaces;  // a failed read forgets nothing
    }
    QHash<QString, Totals> seen;
    for (InterfaceCounter& interface : *interfaces) {
        const auto known = m_totals.constFind(interface.name);
        Totals totals = known != m_totals.constEnd()
                            ? *known
                            : Totals{{static_cast<quint32>(interface.receivedBytes),
                                      static_cast<quint32>(interface.receivedBytes)},
                                     {static_cast<quint32>(interface.sentBytes),
                                      static_cast<quint32>(interface.sentBytes)}};
        interface.receivedBytes = advance(totals.received, interface.receivedBytes);
        interface.sentBytes = advance(totals.sent, interface.sentBytes);
        seen.insert(interface.name, totals);
    }
    m_totals = std::move(seen);
    return interfaces;
}

}  // namespace zelvar
