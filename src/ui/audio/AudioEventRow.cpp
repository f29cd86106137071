#include "ui/audio/AudioEventRow.h"

#include "ui/Palette.h"
#include "ui/TextFormat.h"

namespace zelvar {

EventRowContent AudioEventRow::content(const AudioAppEvent& event) {
    const bool output = event.deviceType == AudioDeviceType::Output;
    return {output ? QStringLiteral("speaker.wave.2.fill") : QStringLiteral("mic.fill"),
            namedColor(output ? NamedColor::Orange : NamedColor::Blue),
            event.appName,
            caption(event),
            {localTimeText(event.timestamp)}};
}

QString AudioEventRow::caption(const AudioAppEvent& event) {
    QStringList parts{rawValue(event.deviceType), event.source};
    if (event.bundleID) {
        parts << *event.bundleID;
    }
    return parts.join(QStringLiteral(" · "));
}

}  // namespace zelvar
