#include "app/TerminationSignals.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <csignal>

namespace zelvar {
namespace {

int g_socketPair[2] = {-1, -1};

// Only async-signal-safe work here: one byte down the pipe.
void onSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(g_socketPair[0], &byte, 1);
}

}  // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
    // SOCK_CLOEXEC is Linux's; macOS sets close-on-exec afterwards.
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_socketPair) != 0) {
        return;
    }
    for (const int fd : g_socketPair) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
    }
    m_notifier = new QSocketNotifier(g_socketPair[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        [[maybe_unused]] const auto read = ::read(g_socketPair[1], &byte, 1);
        emit terminationRequested();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

TerminationSignals::~TerminationSignals() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    delete m_notifier;
    m_notifier = nullptr;
    for (int& fd : g_socketPair) {
        if (fd >= 0) {
            ::close(fd);
            fd = -1;
        }
    }
}

}  // namespace zelvar
