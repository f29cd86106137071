#include "platform/linux/SocketInodeOwners.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>

namespace zelvar {
namespace {

constexpr std::string_view kSocketPrefix = "socket:[";

// The inode of a descriptor's link text "socket:[<inode>]", or nothing for other links.
std::optional<quint64> socketInode(std::string_view link) {
    if (!link.starts_with(kSocketPrefix) || !link.ends_with(']')) {
        return std::nullopt;
    }
    const char* first = link.data() + kSocketPrefix.size();
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

bool SocketInodeOwners::allHeld(const QList<quint64>& inodes) const {
    return std::all_of(inodes.begin(), inodes.end(),
                       [this](quint64 inode) { return m_holders.contains(inode); });
}

void SocketInodeOwners::update(const QList<quint64>& inodes) {
    m_names.clear();
    m_soleOwners.clear();
    m_scanned.clear();
    const QDateTime now = m_clock.now();
    const double sinceFullRead =
        m_lastFullRead ? secondsBetween(*m_lastFullRead, now) : kFullReadIntervalSeconds;
    const bool fullReadDue = sinceFullRead >= kFullReadIntervalSeconds || sinceFullRead < 0;
    // The usual sample: every socket has known holders, and each is still there. Before the
    // next full read nothing else can change whom such a socket counts for but a process that
    // took over a shared socket with a lower pid than its holders, which only a wrapped pid
    // counter allows; so /proc isn't listed, which on a quiet machine is most of the cost. A
    // socket without a readable holder (another user's) keeps the look at new processes.
    if (!fullReadDue && allHeld(inodes)) {
        dropStaleHolders(inodes);
        if (allHeld(inodes)) {
            return;
        }
    }
    const QList<qint32> pids = listProcesses();
    if (fullReadDue) {
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
    dropStaleHolders(inodes);

    QSet<quint64> missing;
    for (const quint64 inode : inodes) {
        if (!m_holders.contains(inode) && !m_unowned.contains(inode)) {
            missing.insert(inode);
        }
    }
    if (!missing.isEmpty()) {
        QList<qint32> holding;
        for (const quint64 inode : inodes) {
            for (const Holder& holder : m_holders.value(inode)) {
                holding.append(holder.pid);
            }
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
    const bool sole = holders->size() == 1;
    if (sole) {
        const auto shared = m_soleOwners.constFind(holders->front().pid);
        if (shared != m_soleOwners.constEnd()) {
            return *shared;
        }
    }
    QList<SocketOwner> owners;
    for (const Holder& holder : *holders) {
        if (const std::optional<QString> name = nameOf(holder.pid)) {
            owners.append({holder.pid, *name});
        }
    }
    if (sole) {
        m_soleOwners.insert(holders->front().pid, owners);
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
    DIR* dir = ::opendir(pathOf(pid, "fd").constData());
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
        QList<Holder>& holders = m_holders[*inode];
        // One holder for a duplicated descriptor.
        if (holders.isEmpty() || holders.last().pid != pid) {
            holders.append({pid, static_cast<int>(std::strtol(entry->d_name, nullptr, 10))});
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
            holders->removeIf([pid](const Holder& holder) { return holder.pid == pid; });
            if (holders->isEmpty()) {
                m_holders.erase(holders);
            }
        }
    }
    m_processes.erase(process);
}

void SocketInodeOwners::dropStaleHolders(const QList<quint64>& inodes) {
    QList<qint32> exited;
    QList<qint32> changed;
    for (const quint64 inode : inodes) {
        const auto holders = m_holders.constFind(inode);
        if (holders == m_holders.constEnd()) {
            continue;
        }
        for (const Holder& holder : *holders) {
            if (!nameOf(holder.pid)) {
                exited.append(holder.pid);
            } else if (holders->size() > 1 && !m_scanned.contains(holder.pid) &&
                       !stillHolds(holder, inode)) {
                changed.append(holder.pid);  // the lowest pid counts, so each one must be right
            }
        }
    }
    for (const qint32 pid : exited) {
        // Known, holding nothing: its descriptors went when it exited.
        forget(pid);
        m_processes.insert(pid, {});
        m_scanned.insert(pid);
    }
    for (const qint32 pid : changed) {
        if (!m_scanned.contains(pid)) {
            scan(pid);
        }
    }
}

bool SocketInodeOwners::stillHolds(const Holder& holder, quint64 inode) const {
    char link[64];
    const QByteArray path = pathOf(holder.pid, "fd/") + QByteArray::number(holder.fd);
    const ssize_t length = ::readlink(path.constData(), link, sizeof link);
    return length > 0 &&
           socketInode(std::string_view(link, static_cast<std::size_t>(length))) == inode;
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
    // that holds one; the state follows the last.
    std::optional<QString> name;
    const int fd = ::open(pathOf(pid, "stat").constData(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        char text[128];
        const ssize_t length = ::read(fd, text, sizeof text);
        ::close(fd);
        const std::string_view stat(text, length > 0 ? static_cast<std::size_t>(length) : 0);
        const std::size_t open = stat.find('(');
        const std::size_t close = stat.rfind(')');
        const bool parsed = open != std::string_view::npos && close != std::string_view::npos &&
                            open < close && close + 2 < stat.size();
        if (parsed && stat[close + 2] != 'Z' && stat[close + 2] != 'X' && stat[close + 2] != 'x') {
            const std::string_view rest = stat.substr(open + 1);
            const std::string_view comm = rest.substr(0, rest.find(')'));
            name = QString::fromUtf8(comm.data(), static_cast<qsizetype>(comm.size()));
        }
    }
    m_names.insert(pid, name);
    return name;
}

QByteArray SocketInodeOwners::pathOf(qint32 pid, const char* entry) const {
    return m_root + '/' + QByteArray::number(pid) + '/' + entry;
}

}  // namespace zelvar
