#pragma once

#include <QByteArray>
#include <QDBusConnection>

namespace zelvar {

// The running services of one systemd manager and their main pids, asked over D-Bus instead of
// through `systemctl show`, so that a refresh starts no process. The answer is written in the
// form `systemctl show --state=running --property=Id,MainPID '*.service'` prints, one block a
// unit, so that both ways are read by the same parser.
class SystemdBusUnits {
public:
    struct Answer {
        enum class Status {
            // No bus, no manager on it, or a manager that refuses the question: worth asking
            // systemctl instead.
            Unreachable,
            // The manager didn't answer in time; systemctl would hang on it as well.
            TimedOut,
            Answered,
        };
        Status status = Status::Unreachable;
        QByteArray showText;
    };

    // Lists the units in state "running", then reads MainPID of each ".service" among them
    // with calls sent all at once. Everything is over by `timeoutMs`. Blocks the caller; may be
    // called on any thread.
    static Answer runningServices(const QDBusConnection& bus, int timeoutMs);
};

}  // namespace zelvar
