#include "platform/posix/PosixDaemonLauncher.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <cstring>
#include <vector>

namespace zelvar {

bool PosixDaemonLauncher::startDetached(const QString& program, const QStringList& arguments,
                                        const QString& standardOutputFile,
                                        const QString& standardErrorFile, QString* error) {
    // Everything the child needs is prepared before fork: after it, only async-signal-safe
    // calls are allowed in a threaded process.
    const QByteArray path = QFile::encodeName(program);
    const QByteArray out = QFile::encodeName(standardOutputFile);
    const QByteArray err = QFile::encodeName(standardErrorFile);
    std::vector<QByteArray> encoded{path};
    for (const QString& argument : arguments) {
        encoded.push_back(argument.toLocal8Bit());
    }
    std::vector<char*> argv;
    for (QByteArray& argument : encoded) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0) {
        *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    const pid_t child = ::fork();
    if (child < 0) {
        *error = QString::fromLocal8Bit(std::strerror(errno));
        ::close(report[0]);
        ::close(report[1]);
        return false;
    }
    if (child == 0) {
        ::setsid();
        if (::fork() != 0) {
            ::_exit(0);
        }
        const int in = ::open("/dev/null", O_RDONLY);
        const int outFd = ::open(out.constData(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        const int errFd = ::open(err.constData(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        if (in < 0 || outFd < 0 || errFd < 0) {
            const int code = errno;
            (void)!::write(report[1], &code, sizeof code);
            ::_exit(127);
        }
        ::dup2(in, 0);
        ::dup2(outFd, 1);
        ::dup2(errFd, 2);
        ::execv(path.constData(), argv.data());
        const int code = errno;
        (void)!::write(report[1], &code, sizeof code);
        ::_exit(127);
    }
    ::close(report[1]);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    // The pipe closes on a successful exec (close-on-exec); an errno arrives otherwise.
    int code = 0;
    ssize_t n = 0;
    do {
        n = ::read(report[0], &code, sizeof code);
    } while (n < 0 && errno == EINTR);
    ::close(report[0]);
    if (n == sizeof code) {
        *error = QString::fromLocal8Bit(std::strerror(code));
        return false;
    }
    return true;
}

}  // namespace zelvar
