#include "platform/linux/LinuxProcessIOSource.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "platform/linux/ProcFile.h"
#include "platform/linux/ProcStat.h"

namespace zelvar {

namespace {

struct DirCloser {
    void operator()(DIR* dir) const { closedir(dir); }
};

std::optional<qint32> numberFromName(const char* name) {
    bool ok = false;
    const qint32 value = QByteArray(name).toInt(&ok);
    return ok && value > 0 ? std::optional(value) : std::nullopt;
}

// The value of `key` in a "key: value" file such as io or fdinfo, in the given base.
std::optional<quint64> fieldOf(const QByteArray& text, QByteArrayView key, int base = 10) {
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith(key) && line.size() > key.size() && line[key.size()] == ':') {
            bool ok = false;
            const quint64 value = line.mid(key.size() + 1).trimmed().toULongLong(&ok, base);
            return ok ? std::optional(value) : std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace

LinuxProcessIOSource::LinuxProcessIOSource(const QString& procRoot)
    : m_procRoot(procRoot.toLocal8Bit()) {}

QList<ProcessIOCounters> LinuxProcessIOSource::readAll() {
    QList<ProcessIOCounters> result;
    std::unique_ptr<DIR, DirCloser> dir(opendir(m_procRoot.constData()));
    if (!dir) {
        return result;
    }
    const int root = dirfd(dir.get());
    while (const dirent* entry = readdir(dir.get())) {
        const auto pid = numberFromName(entry->d_name);
        if (!pid) {
            continue;
        }
        // io is refused for other users' processes, so it is read first and the name only
        // for the processes that count.
        const QByteArray base = QByteArray(entry->d_name) + '/';
        const QByteArray io = readProcFileAt(root, (base + "io").constData(), 4096);
        const auto read = fieldOf(io, "read_bytes");
        const auto written = fieldOf(io, "write_bytes");
        if (!read || !written) {
            continue;
        }
        QByteArray comm = readProcFileAt(root, (base + "comm").constData(), 256);
        if (comm.endsWith('\n')) {
            comm.chop(1);
        }
        const QByteArray cmdline = comm.isEmpty() || comm.size() >= 15
                                       ? readProcFileAt(root, (base + "cmdline").constData(), 4096)
                                       : QByteArray();
        result.append({*pid, QString::fromUtf8(fullProcessName(comm, cmdline)), *read, *written});
    }
    return result;
}

QList<OpenWriteFile> LinuxProcessIOSource::openWriteFiles(qint32 pid) {
    QList<OpenWriteFile> result;
    const QByteArray processDir = m_procRoot + '/' + QByteArray::number(pid);
    std::unique_ptr<DIR, DirCloser> dir(opendir((processDir + "/fd").constData()));
    if (!dir) {
        return result;
    }
    while (const dirent* entry = readdir(dir.get())) {
        if (!numberFromName(entry->d_name) && QByteArrayView(entry->d_name) != "0") {
            continue;
        }
        const auto flags =
            fieldOf(readProcFile(processDir + "/fdinfo/" + entry->d_name, 4096), "flags", 8);
        if (!flags || (*flags & O_ACCMODE) == O_RDONLY) {
            continue;
        }
        char target[4096];
        const QByteArray link = processDir + "/fd/" + entry->d_name;
        const ssize_t length = ::readlink(link.constData(), target, sizeof target - 1);
        if (length <= 0 || target[0] != '/') {
            continue;  // pipes, sockets, anonymous inodes
        }
        struct stat status {};
        if (::stat(link.constData(), &status) != 0 || !S_ISREG(status.st_mode)) {
            continue;
        }
        QString path = QString::fromLocal8Bit(target, length);
        if (path.endsWith(QStringLiteral(" (deleted)"))) {
            continue;
        }
        result.append({std::move(path), static_cast<qint64>(status.st_size)});
    }
    return result;
}

}  // namespace zelvar
