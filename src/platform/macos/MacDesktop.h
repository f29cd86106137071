#pragma once

#include "platform/ActivationPolicy.h"
#include "platform/NotificationCenter.h"
#include "platform/SoundOutput.h"

namespace zelvar {

// UNUserNotificationCenter's current centre, which exists only inside an application bundle
// (hasBundleIdentifier() says whether this process runs in one). Create it on the main
// thread: it sets itself a delegate that shows banners while the dashboard is frontmost.
// Requests may come from any thread and go to the centre from the main thread.
class MacNotificationCenter final : public NotificationCenter {
public:
    MacNotificationCenter();
    ~MacNotificationCenter() override;
    MacNotificationCenter(const MacNotificationCenter&) = delete;
    MacNotificationCenter& operator=(const MacNotificationCenter&) = delete;

    static bool hasBundleIdentifier();

    void getAuthorizationStatus(std::function<void(int status)> completion) override;
    void requestAuthorization(
        std::function<void(bool granted, const QString& error)> completion) override;
    void add(const NotificationContent& content,
             std::function<void(const QString& error)> completion) override;
    QString deniedAdvice() const override {
        return QStringLiteral("user must enable in System Settings > Notifications");
    }
    QString refusedAdvice() const override {
        return QStringLiteral("enable in System Settings > Notifications > Zelvar+");
    }

private:
    void* m_delegate = nullptr;  // retained; the centre holds its delegate weakly
};

// NSSound for system sounds and the beep; AVAudioPlayer for files, kept while it plays. Called
// from any thread; the sounds play from the main thread.
class MacSoundOutput final : public SoundOutput {
public:
    MacSoundOutput() = default;
    ~MacSoundOutput() override;
    MacSoundOutput(const MacSoundOutput&) = delete;
    MacSoundOutput& operator=(const MacSoundOutput&) = delete;

    bool playSystemSound(const QString& name) override;
    void beep() override;
    bool playFile(const QString& path, QString& error) override;

private:
    void* m_player = nullptr;  // retained AVAudioPlayer
};

// NSApplication's activation policy, set from the main thread.
class MacActivationPolicy final : public ActivationPolicy {
public:
    void setRegular() override;
    void setAccessory() override;
};

}  // namespace zelvar
