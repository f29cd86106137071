#pragma once

#include <functional>

#include "platform/ProcessTable.h"
#include "support/Guarded.h"

namespace zelvar::test {

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
        const auto table = m_table.lock();
        if (!*table) {
            return std::nullopt;
        }
        std::vector<ProcessTableEntry> entries;
        for (const Process& p : **table) {
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
        const auto table = m_table.lock();
        for (const Process& p : table->value_or(std::vector<Process>())) {
            if (p.pid == pid) {
                return p.*member;
            }
        }
        return std::nullopt;
    }

    Guarded<std::optional<std::vector<Process>>> m_table;
    std::function<void()> m_onList;
};

}  // namespace zelvar::test
