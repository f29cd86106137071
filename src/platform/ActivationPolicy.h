#pragma once

namespace zelvar {

// Whether the application shows in the Dock with a menu bar of its own (regular) or lives in
// the status bar alone (accessory). Systems without the distinction do nothing.
class ActivationPolicy {
public:
    virtual ~ActivationPolicy() = default;

    virtual void setRegular() = 0;
    virtual void setAccessory() = 0;
};

}  // namespace zelvar
