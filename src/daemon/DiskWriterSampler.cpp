#include "daemon/DiskWriterSampler.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <algorithm>

#include "daemon/JsonlFile.h"
#include "platform/Clock.h"

namespace zelvar {

namespace {

constexpr double kBytesPerMB = 1048576.0;

double megabytes(quint64 bytes) {
    return static_cast<double>(bytes) / kBytesPerMB;
}

// The `count` largest entries by value, largest first, ties by key so the order is stable.
template <typename Key>
QList<std::pair<Key, quint64>> largest(const QHash<Key, quint64>& totals, int count) {
    QList<std::pair<Key, quint64>> entries;
    for (auto it = totals.begin(); it != totals.end(); ++it) {
        if (it.value() > 0) {
            entries.append({it.key(), it.value()});
        }
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        return a.second != b.second ? a.second > b.second : a.first < b.first;
    });
    entries.resize(std::min<qsizetype>(entries.size(), count));
    return entries;
}

// A counter that went back (a pid reused, a counter reset) counts 0.
quint64 growth(quint64 now, quint64 before) {
    return now >= before ? now - before : 0;
}

QString parentOf(const QString& path) {
    return QFileInfo(path).path();
}

}  // namespace

DiskWriterSampler::DiskWriterSampler(ProcessIOSource& source, double burstThresholdMB)
    : m_source(source),
      m_burstThresholdBytes(static_cast<quint64>(burstThresholdMB * kBytesPerMB)) {}

QList<DiskIOBurst> DiskWriterSampler::sample(const QDateTime& now) {
    Pass pass{now, {}, {}};
    QHash<qint32, ProcessIOCounters> current;
    QList<std::pair<qint32, quint64>> writers;
    for (const ProcessIOCounters& counters : m_source.readAll()) {
        current.insert(counters.pid, counters);
        // The first pass only sets the baseline; a process seen later for the first time
        // started since the previous pass, so everything it counted is new.
        if (!m_primed) {
            continue;
        }
        const auto before = m_previous.constFind(counters.pid);
        const bool seen = before != m_previous.constEnd();
        ProcessDelta delta{
            {},
            seen ? growth(counters.writeBytes, before->writeBytes) : counters.writeBytes,
            seen ? growth(counters.readBytes, before->readBytes) : counters.readBytes};
        if (delta.written == 0 && delta.read == 0) {
            continue;
        }
        delta.name = nameOf(counters.pid);
        if (delta.written > 0) {
            writers.append({counters.pid, delta.written});
        }
        pass.processes.insert(counters.pid, std::move(delta));
    }
    // Names of processes that ended go with them: a later process with the same pid reads
    // its own.
    for (auto it = m_names.begin(); it != m_names.end();) {
        it = current.contains(it.key()) ? std::next(it) : m_names.erase(it);
    }
    m_previous = std::move(current);
    m_primed = true;

    std::sort(writers.begin(), writers.end(),
              [](const auto& a, const auto& b) { return a.second > b.second; });
    writers.resize(std::min<qsizetype>(writers.size(), kTopCount));
    pass.files = measureFiles(writers);

    m_passes.push_back(std::move(pass));
    while (!m_passes.empty() && secondsBetween(m_passes.front().at, now) > kHistorySeconds) {
        m_passes.pop_front();
    }
    return findBursts(now);
}

QString DiskWriterSampler::nameOf(qint32 pid) {
    auto name = m_names.find(pid);
    if (name == m_names.end()) {
        name = m_names.insert(pid, m_source.name(pid));
    }
    return *name;
}

QHash<QString, quint64> DiskWriterSampler::measureFiles(
    const QList<std::pair<qint32, quint64>>& topWriters) {
    QHash<QString, quint64> grown;
    QHash<QString, qint64> sizes;
    for (const auto& [pid, written] : topWriters) {
        for (const OpenWriteFile& file : m_source.openWriteFiles(pid)) {
            if (sizes.contains(file.path)) {
                continue;
            }
            sizes.insert(file.path, file.sizeBytes);
            const auto before = m_fileSizes.constFind(file.path);
            // A file not measured before grew by at most what its writer wrote in this pass.
            const quint64 delta =
                before != m_fileSizes.constEnd()
                    ? growth(quint64(std::max<qint64>(file.sizeBytes, 0)), quint64(*before))
                    : std::min<quint64>(quint64(std::max<qint64>(file.sizeBytes, 0)), written);
            if (delta > 0) {
                grown.insert(file.path, delta);
            }
        }
    }
    // Files that no top writer holds any more are forgotten; so they don't keep their size.
    m_fileSizes = std::move(sizes);
    return grown;
}

DiskIOSummary DiskWriterSampler::summary(const QDateTime& now, double rusageIntervalS,
                                         double rusageOverheadPct) const {
    DiskIOSummary result;
    result.timestamp = now;
    result.rusageIntervalS = rusageIntervalS;
    result.rusageOverheadPct = rusageOverheadPct;
    for (const auto& [name, seconds] :
         {std::pair(QStringLiteral("1m"), 60.0), std::pair(QStringLiteral("5m"), 300.0),
          std::pair(QStringLiteral("30m"), 1800.0)}) {
        QHash<qint32, quint64> written;
        QHash<qint32, quint64> read;
        QHash<qint32, QString> names;
        QHash<QString, quint64> files;
        QHash<QString, quint64> directories;
        for (const Pass& pass : m_passes) {
            if (secondsBetween(pass.at, now) >= seconds) {
                continue;
            }
            for (auto it = pass.processes.begin(); it != pass.processes.end(); ++it) {
                written[it.key()] += it->written;
                read[it.key()] += it->read;
                names.insert(it.key(), it->name);
            }
            for (auto it = pass.files.begin(); it != pass.files.end(); ++it) {
                files[it.key()] += it.value();
                directories[parentOf(it.key())] += it.value();
            }
        }
        WindowData window;
        window.window = name;
        for (const auto& [pid, bytes] : largest(written, kTopCount)) {
            WriterEntry entry;
            entry.pid = pid;
            entry.name = names.value(pid);
            entry.writtenMB = megabytes(bytes);
            entry.readMB = megabytes(read.value(pid));
            window.topWriters.append(entry);
        }
        for (const auto& [path, bytes] : largest(directories, kTopCount)) {
            window.topDirectories.append({{}, path, megabytes(bytes)});
        }
        for (const auto& [path, bytes] : largest(files, kTopCount)) {
            window.topFiles.append({{}, path, megabytes(bytes)});
        }
        result.windows.append(window);
    }
    return result;
}

QList<DiskIOBurst> DiskWriterSampler::findBursts(const QDateTime& now) {
    struct Total {
        DiskIOBurst::BurstSource source;
        QString label;
        std::optional<qint64> pid;
        quint64 bytes = 0;
    };
    QHash<QString, Total> totals;
    for (const Pass& pass : m_passes) {
        if (secondsBetween(pass.at, now) >= kBurstWindowSeconds) {
            continue;
        }
        for (auto it = pass.processes.begin(); it != pass.processes.end(); ++it) {
            Total& total = totals[QStringLiteral("process:%1:%2").arg(it.key()).arg(it->name)];
            total = {DiskIOBurst::BurstSource::Process, it->name, it.key(),
                     total.bytes + it->written};
        }
        for (auto it = pass.files.begin(); it != pass.files.end(); ++it) {
            Total& file = totals[QStringLiteral("file:") + it.key()];
            file = {DiskIOBurst::BurstSource::File, it.key(), {}, file.bytes + it.value()};
            const QString directory = parentOf(it.key());
            Total& parent = totals[QStringLiteral("directory:") + directory];
            parent = {
                DiskIOBurst::BurstSource::Directory, directory, {}, parent.bytes + it.value()};
        }
    }
    QList<DiskIOBurst> bursts;
    QSet<QString> active;
    for (auto it = totals.begin(); it != totals.end(); ++it) {
        if (it->bytes <= m_burstThresholdBytes) {
            continue;
        }
        active.insert(it.key());
        // The same burst is reported once while it goes on.
        if (m_activeBursts.contains(it.key())) {
            continue;
        }
        DiskIOBurst burst;
        burst.timestamp = now;
        burst.source = it->source;
        burst.label = it->label;
        burst.pid = it->pid;
        burst.writtenMB = megabytes(it->bytes);
        burst.windowS = static_cast<qint64>(kBurstWindowSeconds);
        bursts.append(burst);
    }
    m_activeBursts = std::move(active);
    std::sort(bursts.begin(), bursts.end(), [](const DiskIOBurst& a, const DiskIOBurst& b) {
        return a.source != b.source ? a.source < b.source : a.label < b.label;
    });
    return bursts;
}

void DiskWriterSampler::sampleInto(JsonlFile& log, const QDateTime& now, bool withSummary,
                                   double rusageIntervalS, double rusageOverheadPct) {
    for (const DiskIOBurst& burst : sample(now)) {
        log.append(QJsonDocument(burst.toJson()).toJson(QJsonDocument::Compact));
    }
    if (withSummary) {
        log.append(QJsonDocument(summary(now, rusageIntervalS, rusageOverheadPct).toJson())
                       .toJson(QJsonDocument::Compact));
    }
}

}  // namespace zelvar
