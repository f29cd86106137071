#include <sys/stat.h>

#include <QRegularExpression>
#include <QTimeZone>

#include "common/IsoDate.h"
#include "config/ConfigCoding.h"
#include "config/ConfigManager.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

const QByteArray kLimit = R"({"id": "6F1E7C2A-1B2C-4D5E-8F90-A1B2C3D4E5F6",
    "process_name": "chrome", "limit_mb": 512.5, "auto_kill_enabled": true,
    "created_at": "2026-01-02T03:04:05Z"})";
const std::optional<MonitorConfig> kNothingSaved;

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
    EXPECT_TRUE(json.contains('\n'));
    EXPECT_EQ(QByteArray(json).replace(' ', "").replace('\n', ""),
              R"({"check_interval":7.5,"enable_notifications":true,"enable_sound":true,)"
              R"("launch_at_login":false,"limits":[{"auto_kill_enabled":false,)"
              R"("created_at":"2026-05-06T07:08:09Z","id":"00112233-4455-6677-8899-AABBCCDDEEFF",)"
              R"("limit_mb":800,"process_name":"Slack"}],"swap_threshold":100,)"
              R"("whitelist":["Finder","bash","zsh"]})");

    config.limits[0].markTriggered(QDateTime(QDate(2026, 5, 7), QTime(1, 2, 3), QTimeZone::utc()));
    MonitorConfig expected = config;
    expected.limits[0].createdAt = expected.limits[0].createdAt.addMSecs(-999);
    EXPECT_EQ(ConfigCoding::decode(ConfigCoding::encode(config)).config, expected);
}

namespace {

class ConfigManagerTest : public ::testing::Test {
protected:
    ConfigManagerTest() {
        QObject::connect(&m_manager, &ConfigManager::configChanged, [this] { ++m_notified; });
    }

    std::optional<MonitorConfig> saved() const {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? ConfigCoding::decode(file.readAll()).config
                                              : std::nullopt;
    }
    void forgetFile() { QFile::remove(m_path); }

    QTemporaryDir m_dir;
    QString m_path = m_dir.filePath(".zel_var_2_config.json");
    FakeClock m_clock;
    ConfigManager m_manager{m_path, m_clock};
    int m_notified = 0;
};

}  // namespace

TEST_F(ConfigManagerTest, ABrokenFileGivesDefaultsUntilTheNextSaveAndFailedSavesKeepTheChange) {
    ASSERT_TRUE(QFile(m_path).open(QIODevice::WriteOnly));  // empty
    LogCapture log;
    ConfigManager manager(m_path, m_clock);
    EXPECT_EQ(std::pair(manager.config(), saved()), std::pair(MonitorConfig{}, kNothingSaved));
    manager.save();
    EXPECT_EQ(saved(), MonitorConfig{});
    ConfigManager homeless(m_dir.filePath("no/such/home/.zel_var_2_config.json"), m_clock);
    QStringList failures;
    QObject::connect(&homeless, &ConfigManager::saveFailed,
                     [&](const QString& message) { failures.append(message); });
    homeless.addLimit("chrome", 100, false);
    EXPECT_EQ(homeless.config().limits.size(), 1);
    // The window hears of it too, in the words of the log.
    EXPECT_EQ(failures, log.lines().mid(1));
    EXPECT_EQ(log.lines().replaceInStrings(QRegularExpression(": .*"), ":"),
              (QStringList{"Error loading config:", "Error saving config:"}));
}

TEST_F(ConfigManagerTest, AddLimitReplacesEqualNamesWithANewIdentityAtTheEnd) {
    EXPECT_EQ(std::pair(m_manager.config(), saved()), std::pair(MonitorConfig{}, kNothingSaved));
    m_manager.addLimit("chrome", 100, false);
    const QUuid first = m_manager.config().limits.value(0).id;
    m_clock.advance(1);
    m_manager.addLimit(" slack\t", 200, false);
    m_manager.addLimit("CHROME", 300, true);
    const QList<ProcessLimit> limits = m_manager.config().limits;
    EXPECT_EQ(
        limits,
        (QList{ProcessLimit::create("slack", 200, false, m_clock.now(), limits.value(0).id),
               ProcessLimit::create("CHROME", 300, true, m_clock.now(), limits.value(1).id)}));
    EXPECT_NE(limits.value(1).id, first);
    EXPECT_EQ(ConfigManager(m_path, m_clock).config(), m_manager.config());  // what a restart reads
    forgetFile();
    m_manager.addLimit(" \t\n", 50, false);
    EXPECT_EQ(std::pair(m_manager.config().limits, saved()), std::pair(limits, kNothingSaved));
    EXPECT_EQ(m_notified, 3);
}

TEST_F(ConfigManagerTest, MatchingIsCaseInsensitiveContainmentInListOrder) {
    const MonitorConfig config{
        .limits = {ProcessLimit::create("   ", 1, false, m_clock.now()),
                   ProcessLimit::create("Helper", 2, false, m_clock.now()),
                   ProcessLimit::create("Chrome Helper", 3, false, m_clock.now())}};
    m_manager.setConfig(config);
    // The editors that write the whole value save it themselves.
    EXPECT_EQ(std::tuple(saved(), m_manager.snapshot(), m_notified),
              std::tuple(kNothingSaved, config, 1));
    // The blank limit matches nothing, so the next one in the list wins.
    EXPECT_EQ(m_manager.limitForProcess("google chrome helper (gpu)")->limitMB, 2);
    EXPECT_FALSE(m_manager.limitForProcess("Safari").has_value());
    // The stored name is searched as it stands: its blanks are part of it.
    EXPECT_FALSE(ConfigManager::limitMatches(ProcessLimit::create(" code", 1, false, {}), "code"));
}

TEST_F(ConfigManagerTest, ChangesByIdSaveOnlyForAKnownIdButRemovalAlwaysSaves) {
    m_manager.addLimit("chrome", 100, false);
    const QUuid id = m_manager.config().limits[0].id;
    const QUuid unknown = QUuid::createUuid();
    forgetFile();
    m_manager.updateLimit(unknown, 1, true);
    m_manager.toggleAutoKill(unknown);
    m_manager.markLimitTriggered(unknown);
    EXPECT_EQ(std::pair(saved(), m_notified), std::pair(kNothingSaved, 1));

    m_manager.updateLimit(id, 250, true);
    EXPECT_EQ(std::pair(saved().value().limits[0].limitMB, saved()->limits[0].autoKillEnabled),
              std::pair(250.0, true));
    m_manager.toggleAutoKill(id);
    EXPECT_FALSE(saved().value().limits[0].autoKillEnabled);
    m_clock.advance(60);
    m_manager.markLimitTriggered(id);
    EXPECT_EQ(saved().value().limits[0].lastTriggered, m_clock.now());
    forgetFile();
    m_manager.removeLimit(unknown);  // saves even when nothing matched
    EXPECT_TRUE(saved());
    m_manager.removeLimit(id);
    EXPECT_TRUE(saved().value().limits.isEmpty());
    EXPECT_EQ(m_notified, 6);
}

TEST_F(ConfigManagerTest, WhitelistSkipsBlankEntriesAndRemovalTakesContainedEntries) {
    m_manager.setConfig({.whitelistedProcesses = {"", "   ", "chrome", "slack", "zsh"}});
    EXPECT_TRUE(m_manager.isWhitelisted("Google Chrome Helper") &&
                !m_manager.isWhitelisted("Safari"));
    m_manager.removeFromWhitelist("Google Chrome SLACK");
    EXPECT_EQ(saved().value().whitelistedProcesses, (std::set<QString>{"", "   ", "zsh"}));

    forgetFile();
    m_manager.addToWhitelist("  ");
    EXPECT_FALSE(saved());
    m_manager.addToWhitelist(" Finder ");
    EXPECT_EQ(saved().value().whitelistedProcesses.count("Finder"), 1u);
    EXPECT_EQ(m_notified, 3);
}

TEST_F(ConfigManagerTest, AutoLimitsNeedExactNamesAndKeepIdentity) {
    m_manager.addLimit("Chrome", 100, false);
    const ProcessLimit added = m_manager.config().limits[0];
    m_manager.setAutoLimit("chrome", 400);
    EXPECT_EQ(m_manager.config().limits,
              QList{ProcessLimit::create("Chrome", 400, true, added.createdAt, added.id)});

    forgetFile();
    m_manager.removeAutoLimit("Chrom");  // only partly equal: nothing changes, nothing saved
    EXPECT_TRUE(m_manager.config().limits[0].autoKillEnabled && !saved());
    m_manager.removeAutoLimit("CHROME");
    EXPECT_FALSE(saved().value().limits[0].autoKillEnabled);
    m_manager.setAutoLimit("Slack", 900);  // not found: a new auto-kill limit
    EXPECT_TRUE(saved().value().limits.size() == 2 && saved()->limits[1].autoKillEnabled);
}

// A FIFO at the path would hang an ordinary open until a writer came, at every start.
TEST_F(ConfigManagerTest, SomethingOtherThanAFileAtThePathIsNeitherWaitedOnNorReplaced) {
    forgetFile();
    ASSERT_EQ(mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
    LogCapture log;
    ConfigManager manager(m_path, m_clock);
    manager.addLimit("chrome", 100, false);
    EXPECT_EQ(manager.config().limits.size(), 1);
    EXPECT_TRUE(QFileInfo(m_path).isFile() == false && QFileInfo(m_path).exists());
    EXPECT_EQ(log.lines().replaceInStrings(m_path, "<path>"),
              (QStringList{"Error loading config: <path>: not a regular file",
                           "Error saving config: <path>: not a regular file"}));
}
