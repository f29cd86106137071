#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

namespace zelvar {

// One process's storage counters as the kernel keeps them: bytes that reached (or would reach)
// the block layer, not the bytes passed to read() and write().
struct ProcessIOCounters {
    qint32 pid = 0;
    QString name;  // empty from readAll(): names are read only for the processes that count
    quint64 readBytes = 0;
    quint64 writeBytes = 0;
    friend bool operator==(const ProcessIOCounters&, const ProcessIOCounters&) = default;
};

// A regular file that a process holds open for writing, with its current size.
struct OpenWriteFile {
    QString path;
    qint64 sizeBytes = 0;
    friend bool operator==(const OpenWriteFile&, const OpenWriteFile&) = default;
};

// The storage counters of every process this user may read, and the files a process writes.
// Raw figures only; the windows and rankings are worked out above. Blocks briefly (small
// files per process); call it off any user interface thread.
class ProcessIOSource {
public:
    virtual ~ProcessIOSource() = default;
    // Processes whose counters can't be read (another user's, or gone) are left out.
    virtual QList<ProcessIOCounters> readAll() = 0;
    // The full name; empty when the process has gone.
    virtual QString name(qint32 pid) = 0;
    // Empty when the process has gone or its descriptors can't be listed.
    virtual QList<OpenWriteFile> openWriteFiles(qint32 pid) = 0;
};

}  // namespace zelvar
