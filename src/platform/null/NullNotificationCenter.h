#pragma once

#include "platform/NotificationCenter.h"

namespace zelvar {

// For systems without a notification service and for runs that must never notify, such as
// the headless reports: permission is denied and nothing is shown.
class NullNotificationCenter final : public NotificationCenter {
public:
    void getAuthorizationStatus(std::function<void(int status)> completion) override {
        completion(Denied);
    }
    void requestAuthorization(
        std::function<void(bool granted, const QString& error)> completion) override {
        completion(false, QString());
    }
    void add(const NotificationContent&, std::function<void(const QString&)> completion) override {
        completion(QString());
    }
    QString deniedAdvice() const override { return QStringLiteral("notifications are off here"); }
    QString refusedAdvice() const override { return deniedAdvice(); }
};

}  // namespace zelvar
