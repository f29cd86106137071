#pragma once

#include <QStringList>
#include <mutex>
#include <vector>

#include "platform/ActivationPolicy.h"
#include "platform/NotificationCenter.h"
#include "platform/SoundOutput.h"

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
        std::lock_guard lock(m_mutex);
        ++m_requests;
        completion(m_grant, m_requestError);
    }
    void add(const NotificationContent& content,
             std::function<void(const QString& error)> completion) override {
        {
            std::lock_guard lock(m_mutex);
            m_delivered.push_back(content);
        }
        completion(m_addError);
    }

    std::vector<NotificationContent> delivered() const {
        std::lock_guard lock(m_mutex);
        return m_delivered;
    }
    int requests() const {
        std::lock_guard lock(m_mutex);
        return m_requests;
    }
    void grantOnRequest(bool grant, QString error = {}) {
        m_grant = grant;
        m_requestError = std::move(error);
    }
    void failDelivery(QString error) { m_addError = std::move(error); }
    QString deniedAdvice() const override { return QStringLiteral("enable it in the fake centre"); }
    QString refusedAdvice() const override { return QStringLiteral("ask the fake centre again"); }

private:
    mutable std::mutex m_mutex;
    int m_status;
    bool m_grant = true;
    QString m_requestError;
    QString m_addError;
    int m_requests = 0;
    std::vector<NotificationContent> m_delivered;
};

// Records what was played: "sound:<name>", "beep", "file:<path>".
class FakeSoundOutput final : public SoundOutput {
public:
    bool playSystemSound(const QString& name) override {
        std::lock_guard lock(m_mutex);
        if (!m_systemSounds.contains(name)) {
            return false;
        }
        m_played << QStringLiteral("sound:") + name;
        return true;
    }
    void beep() override {
        std::lock_guard lock(m_mutex);
        m_played << QStringLiteral("beep");
    }
    bool playFile(const QString& path, QString& error) override {
        std::lock_guard lock(m_mutex);
        if (!m_fileError.isEmpty()) {
            error = m_fileError;
            return false;
        }
        m_played << QStringLiteral("file:") + path;
        return true;
    }

    QStringList played() const {
        std::lock_guard lock(m_mutex);
        return m_played;
    }
    void setSystemSounds(QStringList names) { m_systemSounds = std::move(names); }
    void failFiles(QString error) { m_fileError = std::move(error); }

private:
    mutable std::mutex m_mutex;
    QStringList m_systemSounds{QStringLiteral("Glass")};
    QString m_fileError;
    QStringList m_played;
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
