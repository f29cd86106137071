#pragma once

#include <QList>
#include <QString>
#include <functional>
#include <optional>

namespace zelvar {

// An application as the desktop knows it: one process that owns windows (Linux: a client of
// the window manager's list; macOS: an NSRunningApplication).
struct RunningApplication {
    qint64 pid = 0;         // 0 when the desktop doesn't tell
    QString localizedName;  // empty when unknown
    bool isActive = false;  // holds the keyboard focus
};

// The desktop's applications and which of them has the focus. Linux answers from the X
// server's EWMH properties (_NET_ACTIVE_WINDOW, _NET_CLIENT_LIST, _NET_WM_PID, WM_CLASS);
// macOS from NSWorkspace. Without a desktop (no display) every answer is empty and no
// activation ever arrives.
class Workspace {
public:
    virtual ~Workspace() = default;

    // The application that holds the focus now.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;
    // Every running application, in the desktop's order.
    virtual QList<RunningApplication> runningApplications() = 0;
    // From now on, `activated` is called on the main thread with each application that takes
    // the focus, until unsubscribeActivations(). A second subscribe replaces the first.
    virtual void subscribeActivations(std::function<void(const RunningApplication&)> activated) = 0;
    virtual void unsubscribeActivations() = 0;
    // The display name of the application with this bundle identifier (macOS), or of the
    // desktop entry with this id (Linux); empty when none is found.
    virtual QString applicationNameForIdentifier(const QString& identifier) = 0;
};

}  // namespace zelvar
