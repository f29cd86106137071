#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace zelvar {

// A process holding a socket: its pid and its command name as `ss` prints it.
struct SocketOwner {
    qint32 pid = 0;
    QString name;

    friend bool operator==(const SocketOwner&, const SocketOwner&) = default;
};

// One TCP socket's byte counters and every process holding it.
struct SocketRecord {
    QList<SocketOwner> owners;
    quint64 receivedBytes = 0;
    quint64 sentBytes = 0;
    // The socket's inode, which tells it from the process's other sockets between two readings;
    // 0 when the source doesn't know it.
    quint64 inode = 0;

    friend bool operator==(const SocketRecord&, const SocketRecord&) = default;
};

// The per-process network counters in one of three forms: the output of the system's
// per-process tool, `nettop -P -x -J bytes_in,bytes_out -l 1` on macOS or `ss -tinpH` on Linux,
// or socket records read from the kernel directly.
struct ProcessNetworkReading {
    enum class Grammar { Nettop, SocketStatistics, SocketRecords };
    Grammar grammar = Grammar::Nettop;
    QByteArray text;              // the tool's output; empty when the tool couldn't be run
    QList<SocketRecord> sockets;  // the SocketRecords form
    // A line for the log when the source changes the way it reads, such as falling back to the
    // tool; given once.
    QString note;
};

// Reads the counters once and waits for them, so callers keep it off the main thread.
class ProcessNetworkSource {
public:
    virtual ~ProcessNetworkSource() = default;
    virtual ProcessNetworkReading read() = 0;
};

}  // namespace zelvar
