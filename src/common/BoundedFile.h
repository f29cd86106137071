#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

namespace zelvar {

// Reads the files that other programs (or the user) leave for us, with the guarantees that a
// monitor running for weeks needs: only regular files are opened, and without blocking, so a
// FIFO or a device at the path can't hang the caller; a file above the cap is refused rather
// than pulled into memory; and a reader that keeps the last file's identity skips a file that
// hasn't changed since its previous read.
class BoundedFile {
public:
    enum class Status {
        read,       // `data` holds the whole file
        unchanged,  // same size, modification time and inode as the previous read; no data
        missing,    // nothing at the path
        refused,    // not a regular file, or larger than the cap; `error` says which
        failed,     // could not be opened or read; `error` says why
    };

    struct Result {
        Status status = Status::missing;
        QByteArray data;
        QString error;
    };

    // What identifies a version of a file without reading it.
    struct Stamp {
        qint64 device = -1;
        qint64 inode = -1;
        qint64 size = -1;
        qint64 modifiedNanoseconds = -1;
        bool operator==(const Stamp&) const = default;
    };

    // 64 MiB: far above any file we read in normal use (the daily usage file of a year of heavy
    // use is a few megabytes), far below what would hurt the machine.
    static constexpr qint64 kDefaultCap = 64LL * 1024 * 1024;

    explicit BoundedFile(QString path, qint64 cap = kDefaultCap)
        : m_path(std::move(path)), m_cap(cap) {}

    // The whole file, or `unchanged` when it is the version this object read last.
    Result readIfChanged();
    // The whole file, whatever was read before.
    Result read();

    const QString& path() const { return m_path; }

    // One read without a memory of earlier ones.
    static Result readOnce(const QString& path, qint64 cap = kDefaultCap);

    // The last `bytes` bytes of a file (all of it when it is shorter), with the same checks,
    // and where in the file they start; for logs whose recent end is all that counts.
    struct Tail {
        Result result;
        qint64 offset = 0;
    };
    static Tail readTail(const QString& path, qint64 bytes);

private:
    Result readFile(bool skipUnchanged);

    QString m_path;
    qint64 m_cap;
    Stamp m_lastRead;
};

}  // namespace zelvar
