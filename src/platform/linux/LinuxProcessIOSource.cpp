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

// The value of `key` in a "key: value" file such as io or fdinfo, in the given base. Found
// without splitting the text: this runs once per process per pass.
std::optional<quint64> fieldOf(const QByteArray& text, QByteArrayView key, int base = 10) {
    qsizetype at = 0;
    while ((at = text.indexOf(key, at)) >= 0) {
        const qsizetype colon = at + key.size();
        if ((at == 0 || text[at - 1] == '\n') && colon < text.size() && text[colon] == ':') {
            qsizetype end = text.indexOf('\n', colon);
            end = end < 0 ? text.size() : end;
            bool ok = false;
            const quint64 value = QByteArrayView(text)
                                      .sliced(colon + 1, end - colon - 1)
                                      .trimmed()
                                      .toULongLong(&ok, base);
            return ok ? std::optional(value) : std::nullopt;
        }
        at = colon;
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
        // io is refused for other users' processes; it is the one file read per process.
        const QByteArray io =
            readProcFileAt(root, (QByteArray(entry->d_name) + "/io").constData(), 4096);
        const auto read = fieldOf(io, "read_bytes");
        const auto written = fieldOf(io, "write_bytes");
        if (read && written) {
            result.append({*pid, {}, *read, *written});
        }
    }
    return result;
}

QString LinuxProcessIOSource::name(qint32 pid) {
    const QByteArray base = m_procRoot + '/' + QByteArray::number(pid) + '/';
    QByteArray comm = readProcFile(base + "comm", 256);
    if (comm.endsWith('\n')) {
        comm.chop(1);
    }
    const QByteArray cmdline =
        comm.isEmpty() || comm.size() >= 15 ? readProcFile(base + "cmdline", 4096) : QByteArray();
    return QString::fromUtf8(fullProcessName(comm, cmdline));
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
