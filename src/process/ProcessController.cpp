#include "process/ProcessController.h"

#include <QThread>
#include <cerrno>
#include <csignal>

#include "common/Log.h"
#include "platform/Clock.h"
#include "platform/ProcessSignaller.h"

namespace zelvar {

ProcessController::ProcessError ProcessController::errorFor(int errnoValue) {
    switch (errnoValue) {
        case EPERM:
            return ProcessError::accessDenied;
        case ESRCH:
            return ProcessError::processNotFound;
        default:
            return ProcessError::unknownError;
    }
}

bool ProcessController::killProcess(Pid pid) {
    if (m_signaller.send(pid, SIGTERM) == 0) {
        return true;
    }
    const int error = m_signaller.send(pid, SIGKILL);
    if (error == 0) {
        return true;
    }
    switch (errorFor(error)) {
        case ProcessError::accessDenied:
            logLine(QStringLiteral("Permission denied to kill process: %1").arg(pid));
            break;
        case ProcessError::processNotFound:
            logLine(QStringLiteral("Process not found: %1").arg(pid));
            break;
        case ProcessError::unknownError:
            logLine(QStringLiteral("Unknown error killing process: %1 (errno: %2)")
                        .arg(pid)
                        .arg(error));
            break;
    }
    return false;
}

bool ProcessController::killProcessGracefully(Pid pid, double timeoutSeconds) {
    if (m_signaller.send(pid, SIGTERM) != 0) {
        return false;
    }
    const QDateTime deadline = m_clock.now().addMSecs(static_cast<qint64>(timeoutSeconds * 1000.0));
    while (m_clock.now() < deadline) {
        if (m_signaller.send(pid, 0) == ESRCH) {
            return true;
        }
        QThread::usleep(100000);
    }
    return m_signaller.send(pid, SIGKILL) == 0;
}

}  // namespace zelvar
