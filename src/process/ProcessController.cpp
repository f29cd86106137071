#include "process/ProcessController.h"

#include <QThread>
#include <cerrno>
#include <csignal>

#include "common/Log.h"
#include "platform/Clock.h"

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

bool ProcessController::killProcess(const ProcessIdentity& process) {
    const Pid pid = process.pid;
    const auto signal = [&](int number) {
        if (process.startTime != 0) {
            return m_signaller.sendToMeasured(process, number);
        }
        const int error = m_signaller.send(pid, number);
        return error == 0 ? SignalResult{} : SignalResult{SignalResult::Outcome::failed, error};
    };
    SignalResult result = signal(SIGTERM);
    // A replaced process would only be found replaced again.
    if (result.outcome == SignalResult::Outcome::failed) {
        result = signal(SIGKILL);
    }
    if (result.outcome == SignalResult::Outcome::delivered) {
        return true;
    }
    int error = result.error;
    if (result.outcome == SignalResult::Outcome::replaced) {
        logLine(QStringLiteral("Not signalling %1: it is no longer the process that was measured")
                    .arg(pid));
        error = ESRCH;  // the measured process is gone
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
