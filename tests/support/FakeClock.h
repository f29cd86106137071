#pragma once

#include <QPointer>
#include <QTimeZone>
#include <cmath>
#include <map>

#include "platform/Clock.h"
#include "platform/Scheduler.h"
#include "support/Guarded.h"

namespace zelvar::test {

// A clock that moves only when told, and a scheduler on the same time line: advancing the
// clock runs the callbacks that fell due, in order of their due time. Safe to read from any
// thread; advance from the test's thread.
class FakeClock final : public Clock, public Scheduler {
public:
    explicit FakeClock(QDateTime start = QDateTime(QDate(2026, 1, 15), QTime(12, 0),
                                                   QTimeZone::utc()))
        : m_start(start) {
        m_state.lock()->now = start;
    }

    QDateTime now() const override { return m_state.lock()->now; }
    void callAfter(double seconds, QObject* context, std::function<void()> callback) override {
        const auto state = m_state.lock();
        const qint64 due =
            state->now.toMSecsSinceEpoch() + std::llround(std::max(0.0, seconds) * 1e3);
        state->pending.emplace(due, std::pair(QPointer(context), std::move(callback)));
    }
    void setNow(const QDateTime& instant) { m_state.lock()->now = instant; }
    // Moves time forward step by step, running each callback at its due time.
    void advance(double seconds) {
        const qint64 target = now().toMSecsSinceEpoch() + std::llround(seconds * 1e3);
        while (const std::function<void()> callback = takeDue(target)) {
            callback();
        }
        setNow(QDateTime::fromMSecsSinceEpoch(target, QTimeZone::utc()));
    }
    double elapsed() const { return secondsBetween(m_start, now()); }
    std::size_t pendingCallbacks() const { return m_state.lock()->pending.size(); }

private:
    // The first callback due by `target`, with the clock moved to its due time; one that does
    // nothing if its context is gone; none when nothing is due.
    std::function<void()> takeDue(qint64 target) {
        const auto state = m_state.lock();
        const auto next = state->pending.begin();
        if (next == state->pending.end() || next->first > target) {
            return {};
        }
        state->now = QDateTime::fromMSecsSinceEpoch(next->first, QTimeZone::utc());
        auto [context, callback] = std::move(next->second);
        state->pending.erase(next);
        return context ? std::move(callback) : [] {};
    }

    struct State {
        QDateTime now;
        std::multimap<qint64, std::pair<QPointer<QObject>, std::function<void()>>> pending;
    };
    const QDateTime m_start;
    Guarded<State> m_state;
};

}  // namespace zelvar::test
