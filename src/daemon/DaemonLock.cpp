#include "daemon/DaemonLock.h"

#include <QDir>
#include <QFileInfo>

namespace zelvar {

DaemonLock::DaemonLock(const QString& path) : m_lock(std::make_unique<QLockFile>(path)) {
    // The daemon runs for days: the lock must never count as stale by age, only by its owner
    // being gone.
    m_lock->setStaleLockTime(0);
}

bool DaemonLock::tryLock(std::optional<qint64>* holder) {
    QDir().mkpath(QFileInfo(m_lock->fileName()).absolutePath());
    if (m_lock->tryLock(0)) {
        return true;
    }
    qint64 pid = 0;
    QString host;
    QString application;
    if (m_lock->getLockInfo(&pid, &host, &application) && pid > 0) {
        *holder = pid;
    }
    return false;
}

std::optional<qint64> DaemonLock::holder(const QString& path) {
    if (!QFileInfo::exists(path)) {
        return std::nullopt;
    }
    // Taking the lock is the one test of liveness QLockFile offers; it is let go at once.
    DaemonLock probe(path);
    std::optional<qint64> pid;
    if (probe.tryLock(&pid)) {
        probe.m_lock->unlock();
        return std::nullopt;
    }
    return pid;
}

}  // namespace zelvar
