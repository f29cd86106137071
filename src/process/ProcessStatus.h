#pragma once

namespace zelvar {

// A process's standing towards the limits, for views to name it. Enforcement works on the
// limits and samples directly and does not produce it.
struct ProcessStatus {
    enum class Kind { monitored, overLimit, normal, whitelisted };

    Kind kind = Kind::normal;
    double limitMB = 0.0;    // monitored and overLimit
    double currentMB = 0.0;  // overLimit

    static ProcessStatus monitored(double limitMB) { return {Kind::monitored, limitMB, 0.0}; }
    static ProcessStatus overLimit(double limitMB, double currentMB) {
        return {Kind::overLimit, limitMB, currentMB};
    }
    static ProcessStatus normal() { return {}; }
    static ProcessStatus whitelisted() { return {Kind::whitelisted, 0.0, 0.0}; }

    bool operator==(const ProcessStatus&) const = default;
};

}  // namespace zelvar
