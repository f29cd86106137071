#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

#include "app/report/ReportKind.h"
#include "focus/FocusEvent.h"

namespace zelvar {

// `zelvar2 report focus [--seconds S]`: the focus monitor for S seconds. The text prints the
// application that holds the focus, then each change of it as it happens, then how many
// changes there were and whether the last one gave back a stolen focus; --json prints the
// whole run at its end.
class FocusReport {
public:
    static ReportKind kind();

    struct Snapshot {
        QString startApp;  // the frontmost application when the run began
        QString currentApp;
        QList<FocusEvent> events;  // oldest first
        std::optional<QString> lastStolenBy;
        double seconds = 0.0;
    };

    // Runs the focus monitor for `seconds`, handing each change to `changed` as it comes.
    static Snapshot sample(Monitors& monitors, double seconds,
                           const std::function<void(const QString& startApp)>& started,
                           const std::function<void(const FocusEvent&)>& changed);

    static QString formatStart(const QString& startApp);
    // One change: its time, the application, where the focus came from and how long it was
    // there.
    static QString formatEvent(const FocusEvent& event);
    static QString formatEnd(const Snapshot& snapshot);
    static QByteArray formatJson(const Snapshot& snapshot);
};

}  // namespace zelvar
