#pragma once

#include <functional>

#include "platform/InterfaceCounters.h"
#include "platform/NetworkNameSource.h"
#include "platform/ProcessNetworkSource.h"
#include "support/Guarded.h"

namespace zelvar::test {

// Interface counters set by the test; no value after fail().
class FakeInterfaceCounters final : public InterfaceCounters {
public:
    void set(QList<InterfaceCounter> interfaces) { m_interfaces = std::move(interfaces); }
    void fail() { m_interfaces.reset(); }
    void add(const QString& name, quint64 received, quint64 sent) {
        for (InterfaceCounter& i : m_interfaces.value()) {
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
        return m_interfaces;
    }

private:
    std::optional<QList<InterfaceCounter>> m_interfaces = QList<InterfaceCounter>();
    int m_reads = 0;
};

// Answers with a set reading; runs an optional hook first, on the caller's thread and outside
// the lock, so that a hook may wait for the test.
template <typename Port, typename Reading>
class FakeReadingSource final : public Port {
public:
    void set(Reading reading) { m_state.lock()->reading = std::move(reading); }
    void onRead(std::function<void()> hook) { m_state.lock()->hook = std::move(hook); }
    Reading read() override {
        if (const std::function<void()> hook = m_state.lock()->hook) {
            hook();
        }
        return m_state.lock()->reading;
    }

private:
    struct State {
        Reading reading;
        std::function<void()> hook;
    };
    Guarded<State> m_state;
};

using FakeNetworkNameSource = FakeReadingSource<NetworkNameSource, NetworkNameReading>;
using FakeProcessNetworkSource = FakeReadingSource<ProcessNetworkSource, ProcessNetworkReading>;

}  // namespace zelvar::test
