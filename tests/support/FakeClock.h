#pragma once

#include <QPointer>
#include <QTimeZone>
#include <map>
#include <mutex>

#include "platform/Clock.h"
#include "platform/Scheduler.h"

namespace zelvar::test {

// A clock that moves only when told, and a scheduler on the same time line: advancing the
// clock runs the callbacks that fell due, in order of their due time. Safe to read from any
// thread; advance from the test's thread.
class FakeClock final : public Clock, public Scheduler {
public:
    explicit FakeClock(QDateTime start = QDateTime(QDate(2026, 1, 15), QTime(12, 0),
                                                   QTimeZone::utc()));

    QDateTime now() const override;
    void callAfter(double seconds, QObject* context, std::function<void()> callback) override;

    void setNow(const QDateTime& instant);
    // Moves time forward step by step, running each callback at its due time.
    void advance(double seconds);
    // Seconds since the clock's start.
    double elapsed() const;
    std::size_t pendingCallbacks() const;

private:
    struct Pending {
        QPointer<QObject> context;
        std::function<void()> callback;
    };

    mutable std::mutex m_mutex;
    QDateTime m_start;
    QDateTime m_now;
    std::multimap<qint64, Pending> m_pending;  // by due time in ms since the epoch
};

}  // namespace zelvar::test
