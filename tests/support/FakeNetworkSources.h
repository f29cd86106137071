#pragma once

#include <QSet>
#include <functional>
#include <mutex>

#include "platform/InterfaceCounters.h"
#include "platform/NetworkNameSource.h"
#include "platform/ProcessNetworkSource.h"

namespace zelvar::test {

// Interface counters set by the test; no value after fail().
class FakeInterfaceCounters final : public InterfaceCounters {
public:
    void set(QList<InterfaceCounter> interfaces) {
        m_interfaces = std::move(interfaces);
        m_failing = false;
    }
    void fail() { m_failing = true; }
    // Adds to one interface's counters.
    void add(const QString& name, quint64 received, quint64 sent) {
        for (InterfaceCounter& i : m_interfaces) {
            if (i.name == name) {
                i.receivedBytes += received;
                i.sentBytes += sent;
            }
        }
    }
    // Runs before each read, with the number of reads so far.
    std::function<void(int)> beforeRead;

    std::optional<QList<InterfaceCounter>> read() override {
        if (beforeRead) {
            beforeRead(m_reads);
        }
        ++m_reads;
        if (m_failing) {
            return std::nullopt;
        }
        return m_interfaces;
    }

private:
    QList<InterfaceCounter> m_interfaces;
    bool m_failing = false;
    int m_reads = 0;
};

// Answers with a set reading; runs an optional hook first, on the caller's thread and outside
// the lock, so that a hook may wait for the test.
template <typename Port, typename Reading>
class FakeReadingSource final : public Port {
public:
    void set(Reading reading) {
        std::lock_guard lock(m_mutex);
        m_reading = std::move(reading);
    }
    void onRead(std::function<void()> hook) {
        std::lock_guard lock(m_mutex);
        m_hook = std::move(hook);
    }
    Reading read() override {
        std::unique_lock lock(m_mutex);
        if (const std::function<void()> hook = m_hook) {
            lock.unlock();
            hook();
            lock.lock();
        }
        return m_reading;
    }

private:
    std::mutex m_mutex;
    Reading m_reading;
    std::function<void()> m_hook;
};

using FakeNetworkNameSource = FakeReadingSource<NetworkNameSource, NetworkNameReading>;
using FakeProcessNetworkSource = FakeReadingSource<ProcessNetworkSource, ProcessNetworkReading>;

}  // namespace zelvar::test
