#include "platform/linux/ProcFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace zelvar {

QByteArray readProcFile(const QByteArray& path, qsizetype limit) {
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
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
    }
    ::close(fd);
    return data;
}

}  // namespace zelvar
