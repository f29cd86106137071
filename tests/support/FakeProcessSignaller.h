#pragma once

#include <map>
#include <vector>

#include "platform/ProcessSignaller.h"
#include "support/Guarded.h"

namespace zelvar::test {

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

}  // namespace zelvar::test
