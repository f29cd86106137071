#pragma once

#include "platform/Workspace.h"

namespace zelvar {

// NSWorkspace: the frontmost and running applications, and its did-activate notification,
// which arrives on the main thread. Main thread only.
class MacWorkspace final : public Workspace {
public:
    ~MacWorkspace() override;

    std::optional<RunningApplication> frontmostApplication() override;
    QList<RunningApplication> runningApplications() override;
    void subscribeActivations(std::function<void(const RunningApplication&)> activated) override;
    void unsubscribeActivations() override;
    QString applicationNameForIdentifier(const QString& identifier) override;

private:
    void* m_observer = nullptr;  // the notification centre's token, retained
};

}  // namespace zelvar
