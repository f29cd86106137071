#pragma once

#include "platform/ActivationPolicy.h"

namespace zelvar {

// For systems where a tray application has no activation policy, such as Linux desktops.
class NullActivationPolicy final : public ActivationPolicy {
public:
    void setRegular() override {}
    void setAccessory() override {}
};

}  // namespace zelvar
