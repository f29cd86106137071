#include "daemon/NetworkUsageSampler.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "network/BandwidthMonitor.h"
#include "network/SocketCounterSum.h"
#include "platform/Clock.h"
#include "platform/ProcessNetworkSource.h"

namespace zelvar {

namespace {

quint64 growth(quint64 now, quint64 before) {
    return now >= before ? now - before : 0;
}

}  // namespace

NetworkUsageSampler::NetworkUsageSampler(ProcessNetworkSource& source, QString file, QTimeZone zone)
    : m_source(source), m_file(std::move(file)), m_zone(std::move(zone)) {}

QString NetworkUsageSampler::load() {
    // The first save writes the file even before anything was counted, so that readers find
    // it from the start.
    m_dirty = true;
    QFile file(m_file);
    if (!file.exists()) {
        return {};
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return file.errorString();
    }
    m_days = UsageCache::allDays(file.read(64 * 1024 * 1024));
    return {};
}

void NetworkUsageSampler::sample(const QDateTime& now) {
    const ProcessNetworkReading reading = m_source.read();
    // Socket by socket where the source tells them apart, so that a socket closing between two
    // passes doesn't take the growth of the process's other sockets with it.
    count(reading.grammar == ProcessNetworkReading::Grammar::SocketRecords
              ? SocketCounterSum::perSocket(reading.sockets)
              : BandwidthMonitor::processCounters(reading),
          now);
}

void NetworkUsageSampler::count(const ProcessCounterMap& counters, const QDateTime& now) {
    if (!m_previous) {
        m_previous = counters;
        return;
    }
    const QString day = UsageCache::calendarDate(now, 0, m_zone);
    QList<CachedAppUsage>& apps = m_days[day];
    for (auto entry = counters.cbegin(); entry != counters.cend(); ++entry) {
        const ProcessCounter& counter = entry.value();
        const auto before = m_previous->constFind(entry.key());
        const quint64 in = before == m_previous->constEnd()
                               ? counter.inBytes
                               : growth(counter.inBytes, before->inBytes);
        const quint64 out = before == m_previous->constEnd()
                                ? counter.outBytes
                                : growth(counter.outBytes, before->outBytes);
        const QString name = counter.name.trimmed();
        if ((in == 0 && out == 0) || name.isEmpty()) {
            continue;
        }
        auto app = std::find_if(apps.begin(), apps.end(),
                                [&name](const CachedAppUsage& u) { return u.name == name; });
        if (app == apps.end()) {
            apps.append({name, 0, 0});
            app = apps.end() - 1;
        }
        app->receivedBytes = saturatingAdd(app->receivedBytes, in);
        app->sentBytes = saturatingAdd(app->sentBytes, out);
        m_dirty = true;
    }
    if (apps.isEmpty()) {
        m_days.remove(day);
    }
    const QString oldest = UsageCache::calendarDate(now, -kKeptDays, m_zone);
    while (!m_days.isEmpty() && m_days.firstKey() < oldest) {
        m_days.erase(m_days.begin());
        m_dirty = true;
    }
    m_previous = counters;
}

QString NetworkUsageSampler::flush() {
    if (!m_dirty) {
        return {};
    }
    QDir().mkpath(QFileInfo(m_file).absolutePath());
    QSaveFile file(m_file);
    const QByteArray content = UsageCache::encode(m_days);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() ||
        !file.commit()) {
        return file.errorString();
    }
    m_dirty = false;
    return {};
}

QString NetworkUsageSampler::saveIfDue(const QDateTime& now) {
    if (m_lastSave && secondsBetween(*m_lastSave, now) < kSaveIntervalSeconds) {
        return {};
    }
    m_lastSave = now;
    return flush();
}

}  // namespace zelvar
