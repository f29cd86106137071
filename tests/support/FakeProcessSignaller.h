#pragma once

#include <map>
#include <mutex>
#include <vector>

#include "platform/ProcessSignaller.h"

namespace zelvar::test {

// Records every signal; answers with the errno set for a (pid, signal) pair, else success.
class FakeProcessSignaller final : public ProcessSignaller {
public:
    int send(Pid pid, int signal) override {
        std::lock_guard lock(m_mutex);
        m_sent.push_back({pid, signal});
        const auto it = m_errors.find({pid, signal});
        return it == m_errors.end() ? 0 : it->second;
    }
    void fail(Pid pid, int signal, int error) {
        std::lock_guard lock(m_mutex);
        m_errors[{pid, signal}] = error;
    }
    std::vector<std::pair<Pid, int>> sent() const {
        std::lock_guard lock(m_mutex);
        return m_sent;
    }

private:
    mutable std::mutex m_mutex;
    std::map<std::pair<Pid, int>, int> m_errors;
    std::vector<std::pair<Pid, int>> m_sent;
};

}  // namespace zelvar::test
