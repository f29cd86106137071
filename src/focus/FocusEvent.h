#pragma once

#include <QDateTime>
#include <QString>
#include <QUuid>
#include <optional>

namespace zelvar {

// One change of the frontmost application. `duration` is how long `previousApp` held the
// focus, so it belongs to the application that lost it, not to `appName`.
struct FocusEvent {
    FocusEvent() = default;
    FocusEvent(QDateTime timestamp, QString appName, std::optional<QString> previousApp,
               std::optional<double> duration)
        : id(QUuid::createUuid()),
          timestamp(std::move(timestamp)),
          appName(std::move(appName)),
          previousApp(std::move(previousApp)),
          duration(duration) {}

    QUuid id;
    QDateTime timestamp;  // when appName took the focus
    QString appName;
    std::optional<QString> previousApp;
    std::optional<double> duration;  // seconds

    bool operator==(const FocusEvent&) const = default;

    // A duration as a history row shows it: milliseconds below a second, seconds below a
    // minute, then minutes.
    static QString durationText(double seconds);
};

}  // namespace zelvar
