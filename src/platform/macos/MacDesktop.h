#pragma once

#include "platform/ActivationPolicy.h"
#include "platform/NotificationCenter.h"
#include "platform/SoundOutput.h"

namespace zelvar {

// UNUserNotificationCenter.current. Needs a signed application bundle.
class MacNotificationCenter final : public NotificationCenter {
public:
    void getAuthorizationStatus(std::function<void(int status)> completion) override;
    void requestAuthorization(
        std::function<void(bool granted, const QString& error)> completion) override;
    void add(const NotificationContent& content,
             std::function<void(const QString& error)> completion) override;
    QString deniedAdvice() const override {
        return QStringLiteral("user must enable in System Preferences > Notifications");
    }
    QString refusedAdvice() const override {
        return QStringLiteral("enable in System Preferences > Notifications > Zelvar+");
    }
};

// NSSound for system sounds and the beep; AVAudioPlayer for files, kept while it plays.
class MacSoundOutput final : public SoundOutput {
public:
    ~MacSoundOutput() override;
    bool playSystemSound(const QString& name) override;
    void beep() override;
    bool playFile(const QString& path, QString& error) override;

private:
    void* m_player = nullptr;  // retained AVAudioPlayer
};

// NSApplication's activation policy.
class MacActivationPolicy final : public ActivationPolicy {
public:
    void setRegular() override;
    void setAccessory() override;
};

}  // namespace zelvar
