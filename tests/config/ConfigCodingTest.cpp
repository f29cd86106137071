#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

#include "common/IsoDate.h"
#include "config/ConfigCoding.h"

using namespace zelvar;

namespace {

const QByteArray kLimit = R"({"id": "6F1E7C2A-1B2C-4D5E-8F90-A1B2C3D4E5F6",
    "process_name": "chrome", "limit_mb": 512.5, "auto_kill_enabled": true,
    "created_at": "2026-01-02T03:04:05Z"})";

}  // namespace

TEST(ConfigCoding, AbsentAndNullKeysTakeTheirDefaultsAndDuplicatesCollapse) {
    EXPECT_EQ(ConfigCoding::decode("{}").config, MonitorConfig{});
    const MonitorConfig expected{
        .limits = {ProcessLimit::create(
            "chrome", 512.5, true, *parseIsoDate("2026-01-02T03:04:05Z"),
            QUuid::fromString(QStringLiteral("6f1e7c2a-1b2c-4d5e-8f90-a1b2c3d4e5f6")))},
        .whitelistedProcesses = {"a", "b"}};
    const QByteArray json =
        R"({"whitelist": ["a", "a", "b"], "enable_sound": null, "other": 1, "limits": [)" + kLimit +
        "]}";
    EXPECT_EQ(ConfigCoding::decode(json).config, expected);
}

TEST(ConfigCoding, OneWrongValueFailsTheWholeDecodeAndNamesWhere) {
    std::vector<std::pair<QByteArray, QString>> cases = {
        {"", "JSON"},
        {"[]", "JSON"},
        {R"({"check_interval": "5"})", "check_interval"},
        {R"({"enable_sound": 1})", "enable_sound"},
        {R"({"swap_threshold": 1.5})", "swap_threshold"},
        {R"({"whitelist": ["a", 3]})", "whitelist[1]"},
        {R"({"limits": {}})", "limits"},
        {"{\"limits\": [" + QByteArray(kLimit).replace("05Z", "05.250Z") + "]}", "created_at"}};
    for (const char* key : {"id", "process_name", "limit_mb", "auto_kill_enabled", "created_at"}) {
        QJsonObject limit = QJsonDocument::fromJson(kLimit).object();
        limit.remove(QLatin1String(key));
        cases.push_back(
            {"{\"limits\": [" + QJsonDocument(limit).toJson(QJsonDocument::Compact) + "]}", key});
    }
    for (const auto& [json, where] : cases) {
        SCOPED_TRACE(json.toStdString());
        const ConfigDecodeResult result = ConfigCoding::decode(json);
        EXPECT_TRUE(!result.config && result.error.contains(where)) << result.error.toStdString();
    }
}

TEST(ConfigCoding, WritesSortedKeysWholeSecondDatesAndASortedWhitelistThatReadBack) {
    MonitorConfig config{.checkIntervalSeconds = 7.5,
                         .whitelistedProcesses = {"zsh", "Finder", "bash"}};
    config.limits = {ProcessLimit::create(
        "Slack", 800, false, QDateTime(QDate(2026, 5, 6), QTime(7, 8, 9, 999), QTimeZone::utc()),
        QUuid::fromString(QStringLiteral("{00112233-4455-6677-8899-aabbccddeeff}")))};
    const QByteArray json = ConfigCoding::encode(config);
    // Pretty-printed; without its blanks, keys in order at both levels and no last_triggered
    // without a value.
    EXPECT_TRUE(json.contains('\n'));
    EXPECT_EQ(QByteArray(json).replace(' ', "").replace('\n', ""),
              R"({"check_interval":7.5,"enable_notifications":true,"enable_sound":true,)"
              R"("launch_at_login":false,"limits":[{"auto_kill_enabled":false,)"
              R"("created_at":"2026-05-06T07:08:09Z","id":"00112233-4455-6677-8899-AABBCCDDEEFF",)"
              R"("limit_mb":800,"process_name":"Slack"}],"swap_threshold":100,)"
              R"("whitelist":["Finder","bash","zsh"]})");

    // Read back, with the milliseconds gone and a trigger date written too.
    config.limits[0].markTriggered(QDateTime(QDate(2026, 5, 7), QTime(1, 2, 3), QTimeZone::utc()));
    MonitorConfig expected = config;
    expected.limits[0].createdAt = expected.limits[0].createdAt.addMSecs(-999);
    EXPECT_EQ(ConfigCoding::decode(ConfigCoding::encode(config)).config, expected);
}
