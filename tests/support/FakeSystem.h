#pragma once

#include <QHash>
#include <QList>
#include <algorithm>
#include <functional>
#include <map>
#include <vector>

#include "platform/CommandRunner.h"
#include "platform/ProcessSignaller.h"
#include "platform/ProcessTable.h"
#include "platform/ServiceJobs.h"
#include "platform/VolumeSource.h"
#include "support/Guarded.h"

namespace zelvar::test {

// Answers commands from canned output keyed by "program arg1 arg2 ..."; an unknown command
// fails to start. Records every request.
class FakeCommandRunner final : public CommandRunner {
public:
    void respond(const QString& commandLine, QByteArray standardOutput, int exitCode = 0) {
        respond(
            commandLine,
            {.started = true, .exitCode = exitCode, .standardOutput = std::move(standardOutput)});
    }
    // Any result, such as a time-out.
    void respond(const QString& commandLine, const CommandResult& result) {
        m_state.lock()->results.insert(commandLine, result);
    }
    CommandResult run(const CommandRequest& request) override {
        const auto state = m_state.lock();
        state->requests.append(request);
        return state->results.value((QStringList{request.program} + request.arguments).join(' '));
    }
    QList<CommandRequest> requests() const { return m_state.lock()->requests; }

private:
    struct State {
        QHash<QString, CommandResult> results;
        QList<CommandRequest> requests;
    };
    Guarded<State> m_state;
};

// A process table held in memory. A field left empty reads as a failure of that read; after
// failListing(), every read fails until the next setProcesses().
class FakeProcessTable final : public ProcessTable {
public:
    struct Process {
        Pid pid = 0;
        Pid parentPid = 0;
        std::optional<QString> name;
        std::optional<quint64> residentBytes;
        std::optional<quint64> cpuNanoseconds;
    };

    FakeProcessTable() { setProcesses({}); }

    void setProcesses(std::vector<Process> processes) { *m_table.lock() = std::move(processes); }
    void failListing() { m_table.lock()->reset(); }
    void setCpu(Pid pid, quint64 nanoseconds) {
        const auto table = m_table.lock();
        for (Process& p : table->value()) {
            if (p.pid == pid) {
                p.cpuNanoseconds = nanoseconds;
            }
        }
    }
    // Runs inside list(), on the caller's thread: lets a test hold a sampling cycle open.
    void onList(std::function<void()> hook) { m_onList = std::move(hook); }

    std::optional<std::vector<ProcessTableEntry>> list() override {
        if (m_onList) {
            m_onList();
        }
        const std::optional<std::vector<Process>> table = *m_table.lock();
        if (!table) {
            return std::nullopt;
        }
        std::vector<ProcessTableEntry> entries;
        for (const Process& p : *table) {
            entries.push_back({p.pid, p.parentPid});
        }
        return entries;
    }
    std::optional<QString> name(Pid pid) override { return find(pid).name; }
    std::optional<quint64> residentBytes(Pid pid) override { return find(pid).residentBytes; }
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override { return find(pid).cpuNanoseconds; }

private:
    // A process missing from the table reads as one whose every field fails.
    Process find(Pid pid) const {
        const std::vector<Process> table = m_table.lock()->value_or(std::vector<Process>());
        const auto it = std::ranges::find(table, pid, &Process::pid);
        return it == table.end() ? Process() : *it;
    }

    Guarded<std::optional<std::vector<Process>>> m_table;
    std::function<void()> m_onList;
};

// Records every signal; answers with the errno set for a (pid, signal) pair, else success.
class FakeProcessSignaller final : public ProcessSignaller {
public:
    int send(Pid pid, int signal) override {
        const auto state = m_state.lock();
        state->sent.push_back({pid, signal});
        return state->errors[{pid, signal}];
    }
    void fail(Pid pid, int signal, int error) { m_state.lock()->errors[{pid, signal}] = error; }
    std::vector<std::pair<Pid, int>> sent() const { return m_state.lock()->sent; }

private:
    struct State {
        std::map<std::pair<Pid, int>, int> errors;
        std::vector<std::pair<Pid, int>> sent;
    };
    Guarded<State> m_state;
};

// Service manager listings held in memory. Counts how often it was asked.
class FakeServiceJobs final : public ServiceJobs {
public:
    void setListings(QList<ServiceJobListing> listings) {
        m_state.lock()->listings = std::move(listings);
    }
    void setLaunchctlList(QByteArray text) {
        setListings({{ServiceJobListing::Format::LaunchctlList, std::move(text)}});
    }
    // Runs inside each listing, on the caller's thread: lets a test make the listing slow.
    void onListing(std::function<void()> hook) { m_onListing = std::move(hook); }

    QList<ServiceJobListing> runningJobListings() override {
        if (m_onListing) {
            m_onListing();
        }
        const auto state = m_state.lock();
        ++state->calls;
        return state->listings;
    }
    int calls() const { return m_state.lock()->calls; }

private:
    struct State {
        QList<ServiceJobListing> listings;
        int calls = 0;
    };
    Guarded<State> m_state;
    std::function<void()> m_onListing;
};

// Volumes from memory: a listing and a capacity per mount point; a mount point without one
// fails to answer with "no such volume".
class FakeVolumeSource final : public VolumeSource {
public:
    void setListing(VolumeListing listing) { m_state.lock()->listing = std::move(listing); }
    void setCapacity(const QString& mountPoint, qint64 totalBytes, qint64 freeBytes) {
        m_state.lock()->capacities.insert(mountPoint, VolumeCapacity{totalBytes, freeBytes});
    }
    void removeCapacity(const QString& mountPoint) {
        m_state.lock()->capacities.remove(mountPoint);
    }

    VolumeListing listVolumes() const override { return m_state.lock()->listing; }
    std::optional<VolumeCapacity> measure(const QString& mountPoint,
                                          QString* error) const override {
        const std::optional<VolumeCapacity> capacity = m_state.lock()->capacities.value(mountPoint);
        if (!capacity && error) {
            *error = QStringLiteral("no such volume");
        }
        return capacity;
    }

private:
    struct State {
        VolumeListing listing;
        QHash<QString, std::optional<VolumeCapacity>> capacities;
    };
    Guarded<State> m_state;
};

}  // namespace zelvar::test
