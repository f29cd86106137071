#pragma once

#include <QString>
#include <functional>

namespace zelvar {

// What the user sees of one notification. The category and thread identifiers let the
// notification centre group alerts (by kind, and by process).
struct NotificationContent {
    QString identifier;  // unique per request
    QString title;
    QString subtitle;
    QString body;
    QString categoryIdentifier;
    QString threadIdentifier;
    bool playSound = false;  // the centre's default notification sound
};

// The desktop's notification service. Completions may run on any thread.
class NotificationCenter {
public:
    // Authorization states, numbered as the platforms number them.
    enum Status { NotDetermined = 0, Denied = 1, Authorized = 2, Provisional = 3, Ephemeral = 4 };

    virtual ~NotificationCenter() = default;

    virtual void getAuthorizationStatus(std::function<void(int status)> completion) = 0;
    // Asks for permission to show alerts with sound. `error` is empty unless the request failed.
    virtual void requestAuthorization(
        std::function<void(bool granted, const QString& error)> completion) = 0;
    // Delivers at once. `error` is empty on success.
    virtual void add(const NotificationContent& content,
                     std::function<void(const QString& error)> completion) = 0;

    // What the user can do about missing permission, in this desktop's own terms, for the log
    // line of a refusal: one the centre already knew of (status Denied), and one given to a
    // request.
    virtual QString deniedAdvice() const = 0;
    virtual QString refusedAdvice() const = 0;
};

}  // namespace zelvar
