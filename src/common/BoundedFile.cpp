#include "common/BoundedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <cstring>

#include "platform/FileDescriptor.h"

namespace zelvar {
namespace {

QString errnoText(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

BoundedFile::Stamp stampOf(const struct stat& info) {
#if defined(__APPLE__)
    const qint64 modified = info.st_mtimespec.tv_sec * 1'000'000'000LL + info.st_mtimespec.tv_nsec;
#else
    const qint64 modified = info.st_mtim.tv_sec * 1'000'000'000LL + info.st_mtim.tv_nsec;
#endif
    return {static_cast<qint64>(info.st_dev), static_cast<qint64>(info.st_ino),
            static_cast<qint64>(info.st_size), modified};
}

}  // namespace

BoundedFile::Result BoundedFile::readIfChanged() {
    return readFile(true);
}

BoundedFile::Result BoundedFile::read() {
    return readFile(false);
}

BoundedFile::Result BoundedFile::readOnce(const QString& path, qint64 cap) {
    return BoundedFile(path, cap).read();
}

BoundedFile::Tail BoundedFile::readTail(const QString& path, qint64 bytes) {
    const QByteArray nativePath = QFile::encodeName(path);
    FileDescriptor fd(::open(nativePath.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() < 0) {
        const int error = errno;
        return {{error == ENOENT ? Status::missing : Status::failed, {}, errnoText(error)}, 0};
    }
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0) {
        return {{Status::failed, {}, errnoText(errno)}, 0};
    }
    if (!S_ISREG(info.st_mode)) {
        return {{Status::refused, {}, QStringLiteral("not a regular file")}, 0};
    }
    const qint64 offset = std::max<qint64>(0, static_cast<qint64>(info.st_size) - bytes);
    // What was appended after fstat is left for the next read.
    QByteArray data;
    data.resize(static_cast<qsizetype>(info.st_size - offset));
    qsizetype filled = 0;
    while (filled < data.size()) {
        const ssize_t n =
            ::pread(fd.get(), data.data() + filled, data.size() - filled, offset + filled);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return {{Status::failed, {}, errnoText(errno)}, 0};
        }
        if (n == 0) {
            break;
        }
        filled += n;
    }
    data.truncate(filled);
    return {{Status::read, std::move(data), {}}, offset};
}

BoundedFile::Result BoundedFile::readFile(bool skipUnchanged) {
    const QByteArray nativePath = QFile::encodeName(m_path);
    // O_NONBLOCK: opening a FIFO for reading would otherwise wait for a writer, forever.
    FileDescriptor fd(::open(nativePath.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() < 0) {
        const int error = errno;
        m_lastRead = {};
        if (error == ENOENT) {
            return {Status::missing, {}, errnoText(error)};
        }
        return {Status::failed, {}, errnoText(error)};
    }
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0) {
        return {Status::failed, {}, errnoText(errno)};
    }
    if (!S_ISREG(info.st_mode)) {
        m_lastRead = {};
        return {Status::refused, {}, QStringLiteral("not a regular file")};
    }
    if (info.st_size > m_cap) {
        m_lastRead = {};
        return {Status::refused,
                {},
                QStringLiteral("%1 bytes, above the %2-byte limit for this file")
                    .arg(info.st_size)
                    .arg(m_cap)};
    }
    const Stamp stamp = stampOf(info);
    if (skipUnchanged && stamp == m_lastRead) {
        return {Status::unchanged, {}, {}};
    }

    // The file may grow between fstat and the reads; one byte past the cap tells.
    QByteArray data;
    data.resize(static_cast<qsizetype>(info.st_size) + 1);
    qsizetype filled = 0;
    for (;;) {
        if (filled == data.size()) {
            if (data.size() > m_cap) {
                m_lastRead = {};
                return {Status::refused, {}, QStringLiteral("grew above the limit while read")};
            }
            data.resize(std::min<qsizetype>(data.size() * 2, m_cap + 1));
        }
        const ssize_t n = ::read(fd.get(), data.data() + filled, data.size() - filled);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return {Status::failed, {}, errnoText(errno)};
        }
        if (n == 0) {
            break;
        }
        filled += n;
    }
    data.truncate(filled);
    m_lastRead = stamp;
    return {Status::read, std::move(data), {}};
}

}  // namespace zelvar
