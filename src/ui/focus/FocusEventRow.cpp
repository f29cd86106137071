#include "ui/focus/FocusEventRow.h"

#include "ui/TextFormat.h"

namespace zelvar {

EventRowContent FocusEventRow::content(const FocusEvent& event, const QColor& accent) {
    EventRowContent content{
        QStringLiteral("arrow.right.circle.fill"), accent, event.appName, {}, {}};
    if (event.previousApp) {
        content.caption = QStringLiteral("from ") + *event.previousApp;
    }
    // The duration is the previous application's: how long it kept the focus.
    if (event.duration) {
        content.trailing << FocusEvent::durationText(*event.duration);
    }
    content.trailing << localTimeText(event.timestamp);
    return content;
}

}  // namespace zelvar
