#pragma once

#include <mutex>

namespace zelvar::test {

// A fake's state, which a monitor's worker reads while the test's thread sets it:
// `m_state.lock()->field` or `*m_state.lock()` holds the lock to the end of the statement.
template <typename State>
class Guarded {
public:
    struct Access {
        std::unique_lock<std::mutex> lock;
        State* state;
        State* operator->() const { return state; }
        State& operator*() const { return *state; }
    };
    Access lock() const { return {std::unique_lock(m_mutex), &m_state}; }

private:
    mutable std::mutex m_mutex;
    mutable State m_state{};
};

}  // namespace zelvar::test
