#pragma once

#include "platform/Workspace.h"

namespace zelvar {

// No desktop: nothing is running, nothing has the focus, nothing is ever activated.
class NullWorkspace final : public Workspace {
public:
    std::optional<RunningApplication> frontmostApplication() override { return std::nullopt; }
    QList<RunningApplication> runningApplications() override { return {}; }
    void subscribeActivations(std::function<void(const RunningApplication&)>) override {}
    void unsubscribeActivations() override {}
    QString applicationNameForIdentifier(const QString&) override { return {}; }
};

}  // namespace zelvar
