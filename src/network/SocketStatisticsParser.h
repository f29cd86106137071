#pragma once

#include <QString>

#include "network/NetworkUsage.h"

namespace zelvar {

// The output of `ss -tinpH`: per TCP socket a line with its state, addresses and owners
// (`users:(("name",pid=N,fd=M),...)`), then a tab-indented line of TCP counters with
// `bytes_received:` and `bytes_sent:`. The counters of every socket are summed per owning
// process, into the same "name.pid" keys as the macOS tool gives.
//
// Owners count as SocketCounterSum says: a shared socket once, for the lowest pid; sockets
// without an owner (those of other users, unless run as root) are left out. Counters a kernel
// doesn't report count as 0; without `bytes_sent` (kernels before 4.19, or a socket that sent
// no data) `bytes_acked` stands in.
class SocketStatisticsParser {
public:
    static ProcessCounterMap parse(const QString& text);
};

}  // namespace zelvar
