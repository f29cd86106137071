#pragma once

#include "platform/CommandRunner.h"

namespace zelvar {

// Runs commands with QProcess. Qt reads both pipes into its own buffers while we wait, so a
// chatty child never blocks on a full pipe.
class QProcessCommandRunner final : public CommandRunner {
public:
    CommandResult run(const CommandRequest& request) override;
};

}  // namespace zelvar
