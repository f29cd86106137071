#pragma once

#include <QHash>
#include <functional>
#include <mutex>

#include "platform/ProcessTable.h"

namespace zelvar::test {

// A process table held in memory. A field left empty reads as a failure of that read.
class FakeProcessTable final : public ProcessTable {
public:
    struct Process {
        Pid pid = 0;
        Pid parentPid = 0;
        std::optional<QString> name;
        std::optional<quint64> residentBytes;
        std::optional<quint64> cpuNanoseconds;
    };

    void setProcesses(std::vector<Process> processes) {
        std::lock_guard lock(m_mutex);
        m_processes = std::move(processes);
        m_listFails = false;
    }
    void failListing() {
        std::lock_guard lock(m_mutex);
        m_listFails = true;
    }
    void setCpu(Pid pid, quint64 nanoseconds) {
        std::lock_guard lock(m_mutex);
        for (auto& p : m_processes) {
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
        std::lock_guard lock(m_mutex);
        if (m_listFails) {
            return std::nullopt;
        }
        std::vector<ProcessTableEntry> entries;
        for (const auto& p : m_processes) {
            entries.push_back({p.pid, p.parentPid});
        }
        return entries;
    }
    std::optional<QString> name(Pid pid) override { return field(pid, &Process::name); }
    std::optional<quint64> residentBytes(Pid pid) override {
        return field(pid, &Process::residentBytes);
    }
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override {
        return field(pid, &Process::cpuNanoseconds);
    }

private:
    template <typename T>
    std::optional<T> field(Pid pid, std::optional<T> Process::*member) {
        std::lock_guard lock(m_mutex);
        for (const auto& p : m_processes) {
            if (p.pid == pid) {
                return p.*member;
            }
        }
        return std::nullopt;
    }

    std::mutex m_mutex;
    std::vector<Process> m_processes;
    bool m_listFails = false;
    std::function<void()> m_onList;
};

}  // namespace zelvar::test
