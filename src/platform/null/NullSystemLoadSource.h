#pragma once

#include "platform/SystemLoadSource.h"

namespace zelvar {

// Every figure absent.
class NullSystemLoadSource final : public SystemLoadSource {
public:
    SystemLoadReading read() override { return {}; }
};

}  // namespace zelvar
