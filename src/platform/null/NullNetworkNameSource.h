#pragma once

#include "platform/NetworkNameSource.h"

namespace zelvar {

// For systems that can't name their network: the name is always unknown.
class NullNetworkNameSource final : public NetworkNameSource {
public:
    NetworkNameReading read() override { return {}; }
};

}  // namespace zelvar
