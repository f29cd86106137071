#include "network/SocketCounterSum.h"

#include <QHash>

namespace zelvar {
namespace {

// The lowest pid is usually the process that opened the socket before a fork.
const SocketOwner* countingOwner(const QList<SocketOwner>& owners) {
    const SocketOwner* owner = nullptr;
    for (const SocketOwner& candidate : owners) {
        if (!candidate.name.isEmpty() && (owner == nullptr || candidate.pid < owner->pid)) {
            owner = &candidate;
        }
    }
    return owner;
}

ProcessCounter& entryOf(const SocketOwner& owner, ProcessCounterMap& counters) {
    const QString key = ProcessCounter::key(owner.name, owner.pid);
    auto it = counters.find(key);
    if (it == counters.end()) {
        it = counters.insert(key, ProcessCounter{owner.name, owner.pid, 0, 0});
    }
    return *it;
}

void addTo(ProcessCounter& entry, quint64 receivedBytes, quint64 sentBytes) {
    entry.inBytes = saturatingAdd(entry.inBytes, receivedBytes);
    entry.outBytes = saturatingAdd(entry.outBytes, sentBytes);
}

}  // namespace

void SocketCounterSum::add(const QList<SocketOwner>& owners, quint64 receivedBytes,
                           quint64 sentBytes, ProcessCounterMap& counters) {
    if (const SocketOwner* owner = countingOwner(owners)) {
        addTo(entryOf(*owner, counters), receivedBytes, sentBytes);
    }
}

ProcessCounterMap SocketCounterSum::sum(const QList<SocketRecord>& sockets) {
    ProcessCounterMap counters;
    // A process holds many sockets; its entry is looked up by pid rather than by building its
    // key again for each. Entries of a QMap stay where they are while others are inserted.
    QHash<qint32, ProcessCounter*> entries;
    for (const SocketRecord& socket : sockets) {
        const SocketOwner* owner = countingOwner(socket.owners);
        if (owner == nullptr) {
            continue;
        }
        ProcessCounter*& entry = entries[owner->pid];
        if (entry == nullptr || entry->name != owner->name) {
            entry = &entryOf(*owner, counters);
        }
        addTo(*entry, socket.receivedBytes, socket.sentBytes);
    }
    return counters;
}

ProcessCounterMap SocketCounterSum::perSocket(const QList<SocketRecord>& sockets) {
    ProcessCounterMap counters;
    for (const SocketRecord& socket : sockets) {
        const SocketOwner* owner = countingOwner(socket.owners);
        if (owner == nullptr) {
            continue;
        }
        if (socket.inode == 0) {
            addTo(entryOf(*owner, counters), socket.receivedBytes, socket.sentBytes);
            continue;
        }
        counters.insert(
            ProcessCounter::key(owner->name, owner->pid) + QLatin1Char('#') +
                QString::number(socket.inode),
            ProcessCounter{owner->name, owner->pid, socket.receivedBytes, socket.sentBytes});
    }
    return counters;
}

}  // namespace zelvar
