#pragma once

#include "audio/AudioAppEvent.h"
#include "ui/widgets/EventRowDelegate.h"

namespace zelvar {

// One attributed use of a device in a history: an orange speaker for the output, a blue
// microphone for the input; the application, below it the device, the strategy that found
// the application and, from the log, its bundle identifier; the time on the right.
class AudioEventRow final {
public:
    AudioEventRow() = delete;

    static EventRowContent content(const AudioAppEvent& event);
    // "Speaker · CoreAudio log · com.spotify.client".
    static QString caption(const AudioAppEvent& event);
};

}  // namespace zelvar
