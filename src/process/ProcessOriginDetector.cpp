#include "process/ProcessOriginDetector.h"

#include <QStringDecoder>
#include <optional>
#include <vector>

#include "platform/Clock.h"
#include "platform/ServiceJobs.h"
#include "process/ServiceJobParsers.h"

namespace zelvar {
namespace {

const QSet<QString> kShellNames = {"zsh", "bash", "fish", "sh", "dash", "tcsh", "csh", "login"};

}  // namespace

ProcessOriginDetector::ProcessOriginDetector(ServiceJobs& jobs, const Clock& clock,
                                             OriginNames names)
    : m_jobs(jobs), m_clock(clock), m_names(std::move(names)) {}

void ProcessOriginDetector::refresh() {
    if (m_lastLaunchctlRefresh.isValid() &&
        secondsBetween(m_lastLaunchctlRefresh, m_clock.now()) < kLaunchctlCacheTTL) {
        return;
    }
    m_launchctlMap = buildLaunchctlMap();
    // Taken after the listing, so a slow tool doesn't shorten the cache's life.
    m_lastLaunchctlRefresh = m_clock.now();
}

QHash<Pid, QString> ProcessOriginDetector::buildLaunchctlMap() {
    QHash<Pid, QString> map;
    for (const ServiceJobListing& listing : m_jobs.runningJobListings()) {
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(listing.text);
        if (decoder.hasError()) {
            continue;  // undecodable output counts as no output
        }
        const QHash<Pid, QString> jobs = listing.format == ServiceJobListing::Format::SystemdShow
                                             ? parseSystemdShow(text)
                                             : parseLaunchctlList(text);
        for (auto it = jobs.constBegin(); it != jobs.constEnd(); ++it) {
            map.insert(it.key(), it.value());
        }
    }
    return map;
}

std::optional<ProcessOrigin> ProcessOriginDetector::classifyAncestor(
    const ProcessInfo& ancestor) const {
    if (kShellNames.contains(ancestor.name)) {
        return ProcessOrigin::cli(ancestor.name);
    }
    if (m_names.knownGUIApps.contains(ancestor.name)) {
        return ProcessOrigin::gui(ancestor.name);
    }
    if (const auto job = m_launchctlMap.constFind(ancestor.id); job != m_launchctlMap.constEnd()) {
        return ProcessOrigin::launchAgent(*job);
    }
    if (ancestor.id == 1) {
        return ProcessOrigin::system();
    }
    return std::nullopt;
}

ProcessOriginDetector::Origins ProcessOriginDetector::origins(
    const ProcessInfo& process, const QHash<Pid, ProcessInfo>& allProcesses) const {
    // The parent (for the kernel-thread rule) and at most twenty steps beyond it are all the
    // walk can reach.
    QList<ProcessInfo> chain{process};
    QSet<Pid> seen{process.id};
    for (Pid current = process.ppid; chain.size() <= kMaxAncestorSteps + 1;) {
        const auto ancestor = allProcesses.constFind(current);
        if (ancestor == allProcesses.constEnd() || seen.contains(ancestor->id)) {
            break;
        }
        seen.insert(ancestor->id);
        chain.append(*ancestor);
        current = ancestor->ppid;
    }
    assignOrigins(chain);
    return {chain.first().immediateOrigin, chain.first().rootOrigin};
}

void ProcessOriginDetector::assignOrigins(QList<ProcessInfo>& processes) const {
    const auto count = static_cast<int>(processes.size());
    // The same lookup as a dictionary by pid: a repeated pid resolves to its last record.
    QHash<Pid, int> indexOf;
    indexOf.reserve(count);
    for (int i = 0; i < count; ++i) {
        indexOf.insert(processes[i].id, i);
    }
    std::vector<int> parent(count);
    std::vector<std::optional<ProcessOrigin>> asAncestor(count);
    for (int i = 0; i < count; ++i) {
        parent[i] = indexOf.value(processes[i].ppid, -1);
        asAncestor[i] = classifyAncestor(processes[i]);
    }

    std::vector<int> visitedBy(count, -1);  // which walk last passed each record
    std::vector<Origins> results(count);
    for (int i = 0; i < count; ++i) {
        const ProcessInfo& process = processes[i];
        const int up = parent[i];
        const bool kernelThread = !m_names.kernelThreadParent.isEmpty() && up >= 0 &&
                                  processes[up].id != process.id &&
                                  processes[up].name == m_names.kernelThreadParent;
        if (m_names.systemProcessNames.contains(process.name) || process.id < 2 || kernelThread) {
            results[i] = {ProcessOrigin::system(), ProcessOrigin::system()};
            continue;
        }
        if (const auto job = m_launchctlMap.constFind(process.id);
            job != m_launchctlMap.constEnd()) {
            const ProcessOrigin origin = ProcessOrigin::launchAgent(*job);
            results[i] = {origin, origin};
            continue;
        }
        visitedBy[indexOf.value(process.id)] = i;
        const std::optional<ProcessOrigin>* immediate = nullptr;
        const std::optional<ProcessOrigin>* root = nullptr;
        int steps = 0;
        for (int current = up; current >= 0 && visitedBy[current] != i; current = parent[current]) {
            visitedBy[current] = i;
            if (asAncestor[current]) {
                if (!immediate) {
                    immediate = &asAncestor[current];
                }
                root = &asAncestor[current];
            }
            if (processes[current].id == 1 || ++steps == kMaxAncestorSteps) {
                break;
            }
        }
        results[i] = {immediate ? **immediate : ProcessOrigin::unknown(),
                      root ? **root : ProcessOrigin::unknown()};
    }
    for (int i = 0; i < count; ++i) {
        processes[i].immediateOrigin = std::move(results[i].immediate);
        processes[i].rootOrigin = std::move(results[i].root);
    }
}

}  // namespace zelvar
