#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

#include "common/IsoDate.h"
#include "config/ConfigCoding.h"

using namespace zelvar;

namespace {

MonitorConfig decodeOk(const QByteArray& json) {
    const auto result = ConfigCoding::decode(json);
    EXPECT_TRUE(result.config.has_value()) << result.error.toStdString();
    return result.config.value_or(MonitorConfig{});
}

QString decodeError(const QByteArray& json) {
    const auto result = ConfigCoding::decode(json);
    EXPECT_FALSE(result.config.has_value()) << json.toStdString();
    return result.error;
}

const QByteArray kLimit = R"({"id": "6F1E7C2A-1B2C-4D5E-8F90-A1B2C3D4E5F6",
    "process_name": "chrome", "limit_mb": 512.5, "auto_kill_enabled": true,
    "created_at": "2026-01-02T03:04:05Z"})";

}  // namespace

TEST(ConfigCoding, AbsentKeysTakeTheirDefaults) {
    EXPECT_EQ(decodeOk("{}"), MonitorConfig{});
    const MonitorConfig onlyLimits = decodeOk("{\"limits\": [" + kLimit + "]}");
    EXPECT_EQ(onlyLimits.checkIntervalSeconds, 5.0);
    EXPECT_TRUE(onlyLimits.enableSoundAlerts);
    EXPECT_TRUE(onlyLimits.enableNotifications);
    EXPECT_FALSE(onlyLimits.launchAtLogin);
    EXPECT_EQ(onlyLimits.swapThresholdMB, 100);
    EXPECT_TRUE(onlyLimits.whitelistedProcesses.empty());
    ASSERT_EQ(onlyLimits.limits.size(), 1);
    const ProcessLimit& limit = onlyLimits.limits.first();
    EXPECT_EQ(limit.id, QUuid::fromString(QStringLiteral("6f1e7c2a-1b2c-4d5e-8f90-a1b2c3d4e5f6")));
    EXPECT_EQ(limit.processName, "chrome");
    EXPECT_EQ(limit.limitMB, 512.5);
    EXPECT_TRUE(limit.autoKillEnabled);
    EXPECT_EQ(limit.createdAt, *parseIsoDate("2026-01-02T03:04:05Z"));
    EXPECT_FALSE(limit.lastTriggered.has_value());
}

TEST(ConfigCoding, OneWrongValueFailsTheWholeDecode) {
    EXPECT_FALSE(decodeError("").isEmpty());
    EXPECT_FALSE(decodeError("[]").isEmpty());
    EXPECT_TRUE(decodeError(R"({"check_interval": "5"})").contains("check_interval"));
    EXPECT_TRUE(decodeError(R"({"enable_sound": 1})").contains("enable_sound"));
    EXPECT_TRUE(decodeError(R"({"swap_threshold": 1.5})").contains("swap_threshold"));
    EXPECT_TRUE(decodeError(R"({"whitelist": ["a", 3]})").contains("whitelist[1]"));
    EXPECT_TRUE(decodeError(R"({"limits": {}})").contains("limits"));
    // Each of the five required keys of a limit.
    for (const char* key : {"id", "process_name", "limit_mb", "auto_kill_enabled", "created_at"}) {
        QJsonObject limit = QJsonDocument::fromJson(kLimit).object();
        limit.remove(QLatin1String(key));
        const QByteArray json =
            "{\"limits\": [" + QJsonDocument(limit).toJson(QJsonDocument::Compact) + "]}";
        EXPECT_TRUE(decodeError(json).contains(key)) << key;
    }
    QByteArray fractional = kLimit;
    fractional.replace("03:04:05Z", "03:04:05.250Z");
    EXPECT_TRUE(decodeError("{\"limits\": [" + fractional + "]}").contains("created_at"));
}

TEST(ConfigCoding, WritesSortedKeysWholeSecondDatesAndASortedWhitelist) {
    MonitorConfig config;
    config.checkIntervalSeconds = 7.5;
    config.whitelistedProcesses = {"zsh", "Finder", "bash"};
    ProcessLimit limit = ProcessLimit::create(
        "Slack", 800, false, QDateTime(QDate(2026, 5, 6), QTime(7, 8, 9, 999), QTimeZone::utc()),
        QUuid::fromString(QStringLiteral("{00112233-4455-6677-8899-aabbccddeeff}")));
    config.limits = {limit};
    const QByteArray json = ConfigCoding::encode(config);

    // Keys in alphabetical order at both levels, no last_triggered without a value.
    const QList<QByteArray> topKeys = {
        "check_interval", "enable_notifications", "enable_sound", "launch_at_login",
        "limits",         "swap_threshold",       "whitelist"};
    qsizetype previous = -1;
    for (const QByteArray& key : topKeys) {
        const qsizetype at = json.indexOf("\"" + key + "\"");
        ASSERT_GT(at, previous) << key.toStdString();
        previous = at;
    }
    EXPECT_LT(json.indexOf("\"auto_kill_enabled\""), json.indexOf("\"created_at\""));
    EXPECT_LT(json.indexOf("\"limit_mb\""), json.indexOf("\"process_name\""));
    EXPECT_FALSE(json.contains("last_triggered"));
    EXPECT_TRUE(json.contains("\"2026-05-06T07:08:09Z\""));
    EXPECT_TRUE(json.contains("\"00112233-4455-6677-8899-AABBCCDDEEFF\""));
    EXPECT_LT(json.indexOf("\"Finder\""), json.indexOf("\"bash\""));
    EXPECT_LT(json.indexOf("\"bash\""), json.indexOf("\"zsh\""));
    EXPECT_TRUE(json.contains('\n'));  // pretty-printed

    // Round trip, with the milliseconds gone and a trigger date written back.
    limit.markTriggered(QDateTime(QDate(2026, 5, 7), QTime(1, 2, 3), QTimeZone::utc()));
    config.limits = {limit};
    const MonitorConfig back = decodeOk(ConfigCoding::encode(config));
    ASSERT_EQ(back.limits.size(), 1);
    EXPECT_EQ(back.limits[0].lastTriggered, limit.lastTriggered);
    EXPECT_EQ(back.limits[0].createdAt, *parseIsoDate("2026-05-06T07:08:09Z"));
    EXPECT_EQ(back.whitelistedProcesses, config.whitelistedProcesses);
    EXPECT_EQ(back.checkIntervalSeconds, 7.5);
}

TEST(ConfigCoding, DuplicateWhitelistEntriesCollapseAndNullsMeanDefault) {
    const MonitorConfig config =
        decodeOk(R"({"whitelist": ["a", "a", "b"], "enable_sound": null, "unknown_key": 1})");
    EXPECT_EQ(config.whitelistedProcesses, (std::set<QString>{"a", "b"}));
    EXPECT_TRUE(config.enableSoundAlerts);
}
