#include <QDir>

#include "platform/PlatformServices.h"
#include "platform/macos/MacDesktop.h"
#include "platform/macos/MacPaths.h"
#include "platform/macos/MacProcessTable.h"

namespace zelvar {

std::unique_ptr<ProcessTable> makeProcessTable() {
    return std::make_unique<MacProcessTable>();
}

std::unique_ptr<Paths> makePaths() {
    return std::make_unique<MacPaths>(QDir::homePath());
}

std::unique_ptr<NotificationCenter> makeNotificationCenter() {
    return std::make_unique<MacNotificationCenter>();
}

std::unique_ptr<SoundOutput> makeSoundOutput() {
    return std::make_unique<MacSoundOutput>();
}

std::unique_ptr<ActivationPolicy> makeActivationPolicy() {
    return std::make_unique<MacActivationPolicy>();
}

}  // namespace zelvar
