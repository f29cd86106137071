#pragma once

#include <QString>

#include "alerts/AlertManager.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "support/FakePorts.h"

namespace zelvar::test {

// An alert manager on a fake desktop: every notification and sound it gives is recorded.
// The helper's permission answer arrives with the next processed events.
struct RecordingAlerts {
    RecordingAlerts(const Clock& clock, Scheduler& scheduler, const QString& soundsDirectory)
        : player(sound, scheduler, soundsDirectory), manager(helper, player, clock, scheduler) {}

    FakeNotificationCenter center;
    FakeSoundOutput sound;
    NotificationHelper helper{center};
    SoundPlayer player;
    AlertManager manager;
};

}  // namespace zelvar::test
