#pragma once

#include "platform/CommandRunner.h"

namespace zelvar {

// For systems without the tools and runs that must not start any: no command ever starts.
class NullCommandRunner final : public CommandRunner {
public:
    CommandResult run(const CommandRequest&) override { return {}; }
};

}  // namespace zelvar
