#include "platform/linux/ProcFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace zelvar {

QByteArray readProcFile(const QByteArray& path, qsizetype limit) {
    return readProcFileAt(AT_FDCWD, path.constData(), limit);
}

QByteArray readProcFileAt(int directory, const char* relativePath, qsizetype limit) {
    const int fd = ::openat(directory, relativePath, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return {};
    }
    QByteArray data;
    char buffer[4096];
    while (data.size() < limit) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break;
        }
        data.append(buffer, n);
        // The files read here are made whole at the first read: less than was asked for is
        // the end, and the empty read that would confirm it is a syscall saved per file.
        if (static_cast<size_t>(n) < sizeof buffer) {
            break;
        }
    }
    ::close(fd);
    return data;
}

}  // namespace zelvar
