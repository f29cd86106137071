#pragma once

#include "platform/SoundOutput.h"

namespace zelvar {

// For systems without a sound service and for runs that must stay silent, such as the
// headless reports: every sound "plays" and nothing is heard.
class NullSoundOutput final : public SoundOutput {
public:
    bool playSystemSound(const QString&) override { return true; }
    void beep() override {}
    bool playFile(const QString&, QString&) override { return true; }
};

}  // namespace zelvar
