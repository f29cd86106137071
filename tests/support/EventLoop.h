#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>
#include <functional>

namespace zelvar::test {

// Runs the event loop until `done` holds or `timeoutMs` has passed; returns whether it held.
inline bool processEventsUntil(const std::function<bool()>& done, int timeoutMs = 5000) {
    for (const QDeadlineTimer deadline(timeoutMs); !done(); QThread::usleep(200)) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

}  // namespace zelvar::test
