#include "platform/linux/SocketInodeOwners.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace zelvar {
namespace {

// The inode of a descriptor's link text "socket:[<inode>]", or nothing for other links.
std::optional<quint64> socketInode(std::string_view link) {
    constexpr std::string_view prefix = "socket:[";
    if (!link.starts_with(prefix) || !link.ends_with(']')) {
        return std::nullopt;
    }
    const char* first = link.data() + prefix.size();
    const char* last = link.data() + link.size() - 1;
    quint64 inode = 0;
    const auto [end, failure] = std::from_chars(first, last, inode);
    return failure == std::errc() && end == last ? std::optional(inode) : std::nullopt;
}

bool isPid(const char* name) {
    for (const char* c = name; *c != '\0'; ++c) {
        if (*c < '0' || *c > '9') {
            return false;
        }
    }
    return *name != '\0';
}

}  // namespace

SocketInodeOwners::SocketInodeOwners(const Clock& clock, const QString& root)
    : m_clock(clock), m_root(root.toLocal8Bit()) {}

void SocketInodeOwners::update(const QList<quint64>& inodes) {
    m_names.clear();
    m_soleOwners.clear();
    m_scanned.clear();
    const QList<qint32> pids = listProcesses();
    const QDateTime now = m_clock.now();
    const double sinceFullRead =
        m_lastFullRead ? secondsBetween(*m_lastFullRead, now) : kFullReadIntervalSeconds;
    if (sinceFullRead >= kFullReadIntervalSeconds || sinceFullRead < 0) {
        m_processes.clear();
        m_holders.clear();
        m_unowned.clear();
        m_lastFullRead = now;
    } else {
        const QSet<qint32> present(pids.begin(), pids.end());
        const QList<qint32> known = m_processes.keys();
        for (const qint32 pid : known) {
            if (!present.contains(pid)) {
                forget(pid);
            }
        }
    }
    for (const qint32 pid : pids) {
        if (!m_processes.contains(pid)) {
            scan(pid);
        }
    }

    QSet<quint64> missing;
    for (const quint64 inode : inodes) {
        if (!m_holders.contains(inode) && !m_unowned.contains(inode)) {
            missing.insert(inode);
        }
    }
    if (!missing.isEmpty()) {
        QList<qint32> holding;
        for (const quint64 inode : inodes) {
            holding += m_holders.value(inode);
        }
        scanUntilFound(holding, missing);
        scanUntilFound(pids, missing);
    }
    // Every socket of the sample without a holder now has had a look at every process.
    m_unowned.clear();
    for (const quint64 inode : inodes) {
        if (!m_holders.contains(inode)) {
            m_unowned.insert(inode);
        }
    }
}

QList<SocketOwner> SocketInodeOwners::ownersOf(quint64 inode) {
    const auto holders = m_holders.constFind(inode);
    if (holders == m_holders.constEnd()) {
        return {};
    }
    // Most sockets have one holder, and most holders many sockets: they share one list.
    if (holders->size() == 1) {
        const qint32 pid = holders->front();
        const auto shared = m_soleOwners.constFind(pid);
        if (shared != m_soleOwners.constEnd()) {
            return *shared;
        }
    }
    QList<SocketOwner> owners;
    for (const qint32 pid : *holders) {
        if (const std::optional<QString> name = nameOf(pid)) {
            owners.append({pid, *name});
        }
    }
    if (holders->size() == 1) {
        m_soleOwners.insert(holders->front(), owners);
    }
    return owners;
}

QList<qint32> SocketInodeOwners::listProcesses() const {
    QList<qint32> pids;
    DIR* dir = ::opendir(m_root.constData());
    if (dir == nullptr) {
        return pids;
    }
    while (const dirent* entry = ::readdir(dir)) {
        if (isPid(entry->d_name)) {
            pids.append(static_cast<qint32>(std::strtol(entry->d_name, nullptr, 10)));
        }
    }
    ::closedir(dir);
    return pids;
}

void SocketInodeOwners::scan(qint32 pid) {
    forget(pid);
    m_scanned.insert(pid);
    QList<quint64>& sockets = m_processes[pid];
    DIR* dir = ::opendir((m_root + '/' + QByteArray::number(pid) + "/fd").constData());
    if (dir == nullptr) {
        return;  // gone, or another user's
    }
    char link[64];
    while (const dirent* entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.') {
            continue;
        }
        const ssize_t length = ::readlinkat(::dirfd(dir), entry->d_name, link, sizeof link);
        if (length <= 0) {
            continue;
        }
        const std::optional<quint64> inode =
            socketInode(std::string_view(link, static_cast<std::size_t>(length)));
        if (!inode) {
            continue;
        }
        QList<qint32>& holders = m_holders[*inode];
        if (holders.isEmpty() || holders.last() != pid) {  // one entry for a duplicated descriptor
            holders.append(pid);
            sockets.append(*inode);
        }
    }
    ::closedir(dir);
}

void SocketInodeOwners::forget(qint32 pid) {
    const auto process = m_processes.constFind(pid);
    if (process == m_processes.constEnd()) {
        return;
    }
    for (const quint64 inode : *process) {
        const auto holders = m_holders.find(inode);
        if (holders != m_holders.end()) {
            holders->removeAll(pid);
            if (holders->isEmpty()) {
                m_holders.erase(holders);
            }
        }
    }
    m_processes.erase(process);
}

void SocketInodeOwners::scanUntilFound(const QList<qint32>& pids, QSet<quint64>& missing) {
    for (const qint32 pid : pids) {
        if (missing.isEmpty()) {
            return;
        }
        if (m_scanned.contains(pid)) {
            continue;
        }
        scan(pid);
        for (const quint64 inode : m_processes.value(pid)) {
            missing.remove(inode);
        }
    }
}

std::optional<QString> SocketInodeOwners::nameOf(qint32 pid) {
    const auto known = m_names.constFind(pid);
    if (known != m_names.constEnd()) {
        return *known;
    }
    // "<pid> (<comm>) <state> ...": ss takes the name up to the first ')', which cuts a name
    // that holds one.
    std::optional<QString> name;
    const int fd = ::open((m_root + '/' + QByteArray::number(pid) + "/stat").constData(),
                          O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        char text[128];
        const ssize_t length = ::read(fd, text, sizeof text);
        ::close(fd);
        const std::string_view stat(text, length > 0 ? static_cast<std::size_t>(length) : 0);
        const std::size_t open = stat.find('(');
        if (open != std::string_view::npos) {
            const std::string_view rest = stat.substr(open + 1);
            const std::string_view comm = rest.substr(0, rest.find(')'));
            name = QString::fromUtf8(comm.data(), static_cast<qsizetype>(comm.size()));
        }
    }
    m_names.insert(pid, name);
    return name;
}

}  // namespace zelvar
