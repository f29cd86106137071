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

// Answers with a fixed reading; runs an optional hook first, on the caller's thread.
class FakeNetworkNameSource final : public NetworkNameSource {
public:
    void set(NetworkNameReading reading) {
        std::lock_guard lock(m_mutex);
        m_reading = std::move(reading);
    }
    void onRead(std::function<void()> hook) {
        std::lock_guard lock(m_mutex);
        m_hook = std::move(hook);
    }
    NetworkNameReading read() override {
        std::function<void()> hook;
        {
            std::lock_guard lock(m_mutex);
            hook = m_hook;
        }
        if (hook) {
            hook();
        }
        std::lock_guard lock(m_mutex);
        return m_reading;
    }

private:
    std::mutex m_mutex;
    NetworkNameReading m_reading;
    std::function<void()> m_hook;
};

class FakeProcessNetworkSource final : public ProcessNetworkSource {
public:
    void set(ProcessNetworkReading reading) {
        std::lock_guard lock(m_mutex);
        m_reading = std::move(reading);
    }
    ProcessNetworkReading read() override {
        std::lock_guard lock(m_mutex);
        return m_reading;
    }

private:
    std::mutex m_mutex;
    ProcessNetworkReading m_reading;
};

}  // namespace zelvar::test
