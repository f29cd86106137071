#pragma once

#include <QList>
#include <QSet>
#include <functional>

#include "process/ProcessNode.h"

namespace zelvar {

// Opens the chain from the kernel to the user's own service manager once, so that the process
// tree doesn't first appear collapsed to a single line. Until both anchors are found the rule
// stays pending and is tried again on the next change of the roots.
class DefaultExpansion {
public:
    // How the two anchors are recognised on a system.
    struct Anchors {
        std::function<bool(const ProcessInfo&)> isKernel;
        std::function<bool(const ProcessInfo&)> isServiceManager;
    };
    // macOS: "kernel_task" and "launchd", by name.
    static Anchors macAnchors();
    // Linux: pid 1, and a "systemd" other than pid 1 that `ownedByUser` says is the user's
    // (systemd --user).
    static Anchors linuxAnchors(std::function<bool(Pid)> ownedByUser);

    explicit DefaultExpansion(Anchors anchors) : m_anchors(std::move(anchors)) {}

    // The kernel node, first in depth-first order, and the service manager: the first among
    // the kernel's descendants, else the first in the whole forest. Empty unless both exist.
    static QSet<Pid> defaultExpandedProcessIDs(const QList<ProcessNode>& roots,
                                               const Anchors& anchors);

    // Adds the default expansion to `expanded` if it hasn't been applied yet and can be now;
    // true when it was applied by this call.
    bool apply(const QList<ProcessNode>& roots, QSet<Pid>& expanded);
    bool didApplyDefaultExpansion() const { return m_didApply; }

private:
    Anchors m_anchors;
    bool m_didApply = false;
};

}  // namespace zelvar
