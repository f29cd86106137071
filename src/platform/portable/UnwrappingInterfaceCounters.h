#pragma once

#include <QHash>
#include <memory>

#include "platform/InterfaceCounters.h"

namespace zelvar {

// Widens counters that the system keeps in 32 bits (macOS's if_data) into running 64-bit
// totals: each read adds the difference to the interface's previous raw figure modulo 2^32, so
// a wrap at 4 GiB reads as the bytes it stands for rather than as a fall. An interface's total
// starts at its first raw figure and is forgotten once the interface is missing from a read.
// More than 4 GiB in one direction between two reads can't be told from less; at the
// monitor's two seconds that would take over 16 Gbit/s. Systems with 64-bit counters (Linux)
// don't use it.
class UnwrappingInterfaceCounters final : public InterfaceCounters {
public:
    explicit UnwrappingInterfaceCounters(std::unique_ptr<InterfaceCounters> source)
        : m_source(std::move(source)) {}

    std::optional<QList<InterfaceCounter>> read() override;

private:
    struct Counter {
        quint32 raw = 0;
        quint64 total = 0;
    };
    struct Totals {
        Counter received;
        Counter sent;
    };

    static quint64 advance(Counter& counter, quint64 raw);

    std::unique_ptr<InterfaceCounters> m_source;
    QHash<QString, Totals> m_totals;
};

}  // namespace zelvar
