#include "common/SerialWorker.h"

namespace zelvar {

SerialWorker::SerialWorker(const QString& threadName) {
    m_thread.setObjectName(threadName);
    m_context = new QObject;
    m_context->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_context, &QObject::deleteLater);
    m_thread.start();
}

SerialWorker::~SerialWorker() {
    stop();
}

void SerialWorker::stop() {
    m_thread.quit();
    m_thread.wait();
    // Deleted by the thread as it finished, together with whatever was still queued to it.
    m_context = nullptr;
}

}  // namespace zelvar
