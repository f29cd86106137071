#pragma once

#include <QString>

#include "network/NetworkUsage.h"

namespace zelvar {

// The output of `ss -tinpH`: per TCP socket a line with its state, addresses and owners
// (`users:(("name",pid=N,fd=M),...)`), then a tab-indented line of TCP counters with
// `bytes_received:` and `bytes_sent:`. The counters of every socket are summed per owning
// process, into the same "name.pid" keys as the macOS tool gives.
//
// A socket shared by several processes (after a fork) counts once, for the owner with the
// lowest pid, so that the table never shows the same bytes twice. Sockets without an owner
// (those of other users, unless run as root) and counters a kernel doesn't report are left
// out; without `bytes_sent` (kernels before 4.19) `bytes_acked` stands in.
class SocketStatisticsParser {
public:
    static ProcessCounterMap parse(const QString& text);
};

}  // namespace zelvar
