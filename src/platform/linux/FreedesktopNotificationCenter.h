#pragma once

#include <QDBusConnection>
#include <QObject>
#include <optional>

#include "platform/NotificationCenter.h"

class QDBusMessage;

namespace zelvar {

// Notifications through the org.freedesktop.Notifications service on a D-Bus session bus.
// There is no permission to grant on these desktops: notifications are "authorized" when a
// notification server answers, and "not determined" when none does, so that a later request
// looks again. The category and thread identifiers travel as hints ("category" and
// "x-zelvar2-thread-id"); sound is asked for with "sound-name" and refused with
// "suppress-sound". Calls may come from any thread; the bus is used from this object's thread.
class FreedesktopNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT

public:
    static constexpr const char* kThreadHint = "x-zelvar2-thread-id";
    static constexpr const char* kSoundName = "message-new-instant";

    // On the session bus, connected at the first use, so that a process that never notifies
    // never starts a bus.
    explicit FreedesktopNotificationCenter(QObject* parent = nullptr);
    explicit FreedesktopNotificationCenter(QDBusConnection connection, QObject* parent = nullptr);

    void getAuthorizationStatus(std::function<void(int status)> completion) override;
    void requestAuthorization(
        std::function<void(bool granted, const QString& error)> completion) override;
    void add(const NotificationContent& content,
             std::function<void(const QString& error)> completion) override;
    // No permission to grant: what is missing is a notification server.
    QString deniedAdvice() const override;
    QString refusedAdvice() const override { return deniedAdvice(); }

private:
    // Calls `method` on the notification service and hands the reply, or the error text, on.
    void call(const QString& method, const QVariantList& arguments,
              std::function<void(const QDBusMessage& reply, const QString& error)> done);

    QDBusConnection& connection();

    std::optional<QDBusConnection> m_connection;
};

}  // namespace zelvar
