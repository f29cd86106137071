#pragma once

#include <QObject>
#include <functional>

namespace zelvar {

// Runs a callback once after a delay, on the thread that owns `context`. The callback is
// dropped when `context` is destroyed first. Loops that wait "period plus the time of the
// work" re-arm one of these when the work ends, instead of sleeping.
class Scheduler {
public:
    virtual ~Scheduler() = default;
    virtual void callAfter(double seconds, QObject* context, std::function<void()> callback) = 0;
};

}  // namespace zelvar
