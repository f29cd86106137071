#include "network/SocketCounterSum.h"

namespace zelvar {

void SocketCounterSum::add(const QList<SocketOwner>& owners, quint64 receivedBytes,
                           quint64 sentBytes, ProcessCounterMap& counters) {
    // The lowest pid is usually the process that opened the socket before a fork.
    const SocketOwner* owner = nullptr;
    for (const SocketOwner& candidate : owners) {
        if (!candidate.name.isEmpty() && (owner == nullptr || candidate.pid < owner->pid)) {
            owner = &candidate;
        }
    }
    if (owner == nullptr) {
        return;
    }
    const QString key = ProcessCounter::key(owner->name, owner->pid);
    auto it = counters.find(key);
    if (it == counters.end()) {
        it = counters.insert(key, ProcessCounter{owner->name, owner->pid, 0, 0});
    }
    it->inBytes = saturatingAdd(it->inBytes, receivedBytes);
    it->outBytes = saturatingAdd(it->outBytes, sentBytes);
}

ProcessCounterMap SocketCounterSum::sum(const QList<SocketRecord>& sockets) {
    ProcessCounterMap counters;
    for (const SocketRecord& socket : sockets) {
        add(socket.owners, socket.receivedBytes, socket.sentBytes, counters);
    }
    return counters;
}

}  // namespace zelvar
