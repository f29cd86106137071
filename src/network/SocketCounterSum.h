#pragma once

#include <QList>

#include "network/NetworkUsage.h"
#include "platform/ProcessNetworkSource.h"

namespace zelvar {

// Sums per-socket TCP counters per owning process, into "name.pid" keys. A socket shared by
// several processes (after a fork) counts once, for the named owner with the lowest pid, so
// that the table never shows the same bytes twice; owners without a name don't count, and a
// socket without any named owner (another user's, unless run as root) is left out. Sums stick
// at the largest value.
class SocketCounterSum {
public:
    static void add(const QList<SocketOwner>& owners, quint64 receivedBytes, quint64 sentBytes,
                    ProcessCounterMap& counters);
    static ProcessCounterMap sum(const QList<SocketRecord>& sockets);
    // The same owners' counters, but one entry per socket that has an inode, keyed by the
    // owner's key, "#" and the inode: the growth of one socket between two readings then
    // doesn't hide behind another that closed. Sockets without an inode are summed per process
    // under the plain key.
    static ProcessCounterMap perSocket(const QList<SocketRecord>& sockets);
};

}  // namespace zelvar
