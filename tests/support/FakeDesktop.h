#pragma once

#include <QStringList>
#include <vector>

#include "platform/ActivationPolicy.h"
#include "platform/NotificationCenter.h"
#include "platform/SoundOutput.h"
#include "support/Guarded.h"

namespace zelvar::test {

// A notification centre that answers at once with a set status and keeps what it was given.
class FakeNotificationCenter final : public NotificationCenter {
public:
    explicit FakeNotificationCenter(int status = Authorized) : m_status(status) {}

    void getAuthorizationStatus(std::function<void(int status)> completion) override {
        completion(m_status);
    }
    void requestAuthorization(
        std::function<void(bool granted, const QString& error)> completion) override {
        ++m_state.lock()->requests;
        completion(m_grant, m_requestError);
    }
    void add(const NotificationContent& content,
             std::function<void(const QString& error)> completion) override {
        m_state.lock()->delivered.push_back(content);
        completion(m_addError);
    }
    QString deniedAdvice() const override { return QStringLiteral("enable it in the fake centre"); }
    QString refusedAdvice() const override { return QStringLiteral("ask the fake centre again"); }

    std::vector<NotificationContent> delivered() const { return m_state.lock()->delivered; }
    int requests() const { return m_state.lock()->requests; }
    void grantOnRequest(bool grant, QString error = {}) {
        m_grant = grant;
        m_requestError = std::move(error);
    }
    void failDelivery(QString error) { m_addError = std::move(error); }

private:
    struct State {
        int requests = 0;
        std::vector<NotificationContent> delivered;
    };
    Guarded<State> m_state;
    int m_status;
    bool m_grant = true;
    QString m_requestError;
    QString m_addError;
};

// Records what was played: "sound:<name>", "beep", "file:<path>".
class FakeSoundOutput final : public SoundOutput {
public:
    bool playSystemSound(const QString& name) override {
        return m_systemSounds.contains(name) && record(QStringLiteral("sound:") + name);
    }
    void beep() override { record(QStringLiteral("beep")); }
    bool playFile(const QString& path, QString& error) override {
        error = m_fileError;
        return error.isEmpty() && record(QStringLiteral("file:") + path);
    }

    QStringList played() const { return *m_played.lock(); }
    void setSystemSounds(QStringList names) { m_systemSounds = std::move(names); }
    void failFiles(QString error) { m_fileError = std::move(error); }

private:
    bool record(const QString& sound) {
        *m_played.lock() << sound;
        return true;
    }

    Guarded<QStringList> m_played;
    QStringList m_systemSounds{QStringLiteral("Glass")};
    QString m_fileError;
};

// Records each switch of the activation policy.
class FakeActivationPolicy final : public ActivationPolicy {
public:
    void setRegular() override { m_changes << QStringLiteral("regular"); }
    void setAccessory() override { m_changes << QStringLiteral("accessory"); }
    QStringList changes() const { return m_changes; }

private:
    QStringList m_changes;
};

}  // namespace zelvar::test
