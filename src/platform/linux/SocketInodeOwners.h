#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <optional>

#include "platform/Clock.h"
#include "platform/ProcessNetworkSource.h"

namespace zelvar {

// Which processes hold each socket, from the links of `<root>/<pid>/fd/*` ("socket:[inode]"),
// kept from one sample to the next so that a sample reads only what may have changed. A sample
// whose sockets all have known holders reads only those holders; otherwise it reads the
// processes new since the last sample; the holders of the sample's sockets that have exited
// (a zombie holds nothing) and, of a shared socket, whose descriptor no longer points at it;
// and, when a socket of the sample isn't known yet, the processes not read in this sample
// (first those that hold other sockets of the sample, as a browser opening one more
// connection). A socket still unknown after that is left alone until the next full read, every
// 30 seconds, which also catches a socket passed on by its only holder. Only processes whose
// descriptors are readable count: the caller's own, unless it runs as root. The root is a
// parameter so that a fixture tree can stand in for /proc.
class SocketInodeOwners {
public:
    static constexpr double kFullReadIntervalSeconds = 30.0;

    explicit SocketInodeOwners(const Clock& clock, const QString& root = QStringLiteral("/proc"));

    // Brings the map up to date for a sample of these sockets.
    void update(const QList<quint64>& inodes);
    // The processes that hold a socket of the last update, each with its name as `ss` prints
    // it (the stat's name up to its first ')'), read once per update; empty when no readable
    // process holds it.
    QList<SocketOwner> ownersOf(quint64 inode);

private:
    struct Holder {
        qint32 pid = 0;
        int fd = 0;
    };

    // Whether each socket has known holders.
    bool allHeld(const QList<quint64>& inodes) const;
    QList<qint32> listProcesses() const;
    // Reads one process's socket links again.
    void scan(qint32 pid);
    void forget(qint32 pid);
    void dropStaleHolders(const QList<quint64>& inodes);
    bool stillHolds(const Holder& holder, quint64 inode) const;
    // Scans the processes of `pids` not read in this update while any of `missing` is unknown;
    // drops the sockets found from `missing`.
    void scanUntilFound(const QList<qint32>& pids, QSet<quint64>& missing);
    // Nothing for a process that is gone or has exited.
    std::optional<QString> nameOf(qint32 pid);
    QByteArray pathOf(qint32 pid, const char* entry) const;

    const Clock& m_clock;
    QByteArray m_root;
    std::optional<QDateTime> m_lastFullRead;
    QHash<qint32, QList<quint64>> m_processes;  // every known pid and the sockets it holds
    QHash<quint64, QList<Holder>> m_holders;    // socket inode -> its holders, in the order read
    QSet<quint64> m_unowned;                    // not found at the last complete look
    QSet<qint32> m_scanned;                     // read in this update
    QHash<qint32, std::optional<QString>> m_names;   // this update's names
    QHash<qint32, QList<SocketOwner>> m_soleOwners;  // this update's lists of one holder
};

}  // namespace zelvar
