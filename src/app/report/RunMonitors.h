#pragma once

#include <QElapsedTimer>
#include <QEventLoop>

#include "compose/Monitors.h"

namespace zelvar {

// How long a report runs its monitors: until a monitor's end-of-sample signal has fired
// `samples` times and `seconds` have passed since the start, so that a run of S seconds ends
// with the sample under way when they pass.
struct RunLength {
    int samples = 1;
    double seconds = 0.0;
};

// What a run took.
struct RunTaken {
    int samples = 0;
    double seconds = 0.0;  // from the start to the end of the last sample
};

// Starts `monitors`, runs the event loop until `finished` of `monitor` has fired as `length`
// says, and stops them from that last signal, before anything else reaches the main thread.
template <typename Monitor>
RunTaken runMonitors(Monitors& monitors, const Monitor& monitor, void (Monitor::*finished)(),
                     RunLength length) {
    QEventLoop loop;
    QElapsedTimer timer;
    RunTaken taken;
    QObject::connect(&monitor, finished, &loop, [&] {
        ++taken.samples;
        if (taken.samples >= length.samples &&
            static_cast<double>(timer.elapsed()) / 1000.0 >= length.seconds) {
            monitors.stop();
            loop.quit();
        }
    });
    timer.start();
    monitors.start();
    loop.exec();
    taken.seconds = static_cast<double>(timer.elapsed()) / 1000.0;
    return taken;
}

}  // namespace zelvar
