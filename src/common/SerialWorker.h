#pragma once

#include <QMetaObject>
#include <QObject>
#include <QString>
#include <QThread>
#include <utility>

namespace zelvar {

// One named thread that runs posted work in the order it was posted, one piece at a time.
// A monitor hands its blocking reads here and receives the results back with queued calls
// to itself, so that its own state is only ever written on the main thread.
//
// Stopping quits the thread's event loop and waits for it: a piece of work that is running
// finishes, and work still waiting is dropped. Posts after the stop do nothing.
class SerialWorker final {
public:
    explicit SerialWorker(const QString& threadName);
    ~SerialWorker();
    SerialWorker(const SerialWorker&) = delete;
    SerialWorker& operator=(const SerialWorker&) = delete;

    // Runs `work` on the worker thread after everything posted before it.
    template <typename Work>
    void post(Work&& work) {
        if (m_context != nullptr) {
            QMetaObject::invokeMethod(m_context, std::forward<Work>(work), Qt::QueuedConnection);
        }
    }

    // An object that lives on the worker thread, as the context of QMetaObject::invokeMethod
    // or of a connection; null once stopped.
    QObject* context() const { return m_context; }

    // Quits and joins the thread. Idempotent.
    void stop();

private:
    QThread m_thread;
    QObject* m_context = nullptr;  // lives on m_thread, deleted when it finishes
};

}  // namespace zelvar
