#pragma once

#include <QLockFile>
#include <QString>
#include <memory>
#include <optional>

namespace zelvar {

// One daemon per user: a lock file holding the owner's pid. A lock whose process has gone is
// stale and taken over, so a daemon that was killed doesn't block the next one.
class DaemonLock {
public:
    explicit DaemonLock(const QString& path);

    // False when another live process holds the lock; its pid in `holder` when known.
    bool tryLock(std::optional<qint64>* holder);
    // The pid of the live process holding the lock at `path`, if any. Never takes it.
    static std::optional<qint64> holder(const QString& path);

private:
    std::unique_ptr<QLockFile> m_lock;
};

}  // namespace zelvar
