#pragma once

#include "platform/ProcessNetworkSource.h"

namespace zelvar {

// For systems without a per-process network tool: the tool never ran, so there is no text.
class NullProcessNetworkSource final : public ProcessNetworkSource {
public:
    ProcessNetworkReading read() override { return {}; }
};

}  // namespace zelvar
