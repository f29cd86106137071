#include "support/FakeClock.h"

#include <cmath>

namespace zelvar::test {

FakeClock::FakeClock(QDateTime start) : m_start(start), m_now(std::move(start)) {}

QDateTime FakeClock::now() const {
    std::lock_guard lock(m_mutex);
    return m_now;
}

void FakeClock::callAfter(double seconds, QObject* context, std::function<void()> callback) {
    std::lock_guard lock(m_mutex);
    const qint64 due = m_now.toMSecsSinceEpoch() + std::llround(std::max(0.0, seconds) * 1000.0);
    m_pending.emplace(due, Pending{context, std::move(callback)});
}

void FakeClock::setNow(const QDateTime& instant) {
    std::lock_guard lock(m_mutex);
    m_now = instant;
}

void FakeClock::advance(double seconds) {
    const qint64 target = now().toMSecsSinceEpoch() + std::llround(seconds * 1000.0);
    for (;;) {
        Pending next;
        {
            std::lock_guard lock(m_mutex);
            auto it = m_pending.begin();
            if (it == m_pending.end() || it->first > target) {
                break;
            }
            m_now = QDateTime::fromMSecsSinceEpoch(it->first, QTimeZone::utc());
            next = std::move(it->second);
            m_pending.erase(it);
        }
        if (next.context) {
            next.callback();
        }
    }
    setNow(QDateTime::fromMSecsSinceEpoch(target, QTimeZone::utc()));
}

double FakeClock::elapsed() const {
    return secondsBetween(m_start, now());
}

std::size_t FakeClock::pendingCallbacks() const {
    std::lock_guard lock(m_mutex);
    return m_pending.size();
}

}  // namespace zelvar::test
