#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "config/ConfigCoding.h"
#include "config/ConfigManager.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"

using namespace zelvar;
using zelvar::test::FakeClock;
using zelvar::test::LogCapture;

namespace {

class ConfigManagerTest : public ::testing::Test {
protected:
    ConfigManagerTest() {
        QObject::connect(&m_manager, &ConfigManager::configChanged, [this] { ++m_notified; });
    }
    // What the file holds; no value when it is missing or unreadable.
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
    EXPECT_EQ(manager.config(), MonitorConfig{});
    EXPECT_FALSE(saved());
    manager.save();
    EXPECT_EQ(saved(), MonitorConfig{});
    ConfigManager homeless(m_dir.filePath("no/such/home/.zel_var_2_config.json"), m_clock);
    homeless.addLimit("chrome", 100, false);
    EXPECT_EQ(homeless.config().limits.size(), 1);
    EXPECT_EQ(log.lines().replaceInStrings(QRegularExpression(": .*"), ":"),
              (QStringList{"Error loading config:", "Error saving config:"}));
}

TEST_F(ConfigManagerTest, AddLimitReplacesEqualNamesWithANewIdentityAtTheEnd) {
    EXPECT_EQ(m_manager.config(), MonitorConfig{});  // no file: defaults, and nothing written
    EXPECT_FALSE(saved());
    m_manager.addLimit("chrome", 100, false);
    const QUuid first = m_manager.config().limits.value(0).id;
    m_clock.advance(1);
    m_manager.addLimit(" slack\t", 200, false);
    m_manager.addLimit("CHROME", 300, true);
    const QList<ProcessLimit> limits = m_manager.config().limits;
    ASSERT_EQ(limits.size(), 2);
    EXPECT_EQ(limits,
              (QList{ProcessLimit::create("slack", 200, false, m_clock.now(), limits[0].id),
                     ProcessLimit::create("CHROME", 300, true, m_clock.now(), limits[1].id)}));
    EXPECT_NE(limits[1].id, first);
    EXPECT_EQ(ConfigManager(m_path, m_clock).config(), m_manager.config());  // what a restart reads
    forgetFile();
    m_manager.addLimit(" \t\n", 50, false);
    EXPECT_EQ(m_manager.config().limits, limits);
    EXPECT_FALSE(saved());
    EXPECT_EQ(m_notified, 3);
}

TEST_F(ConfigManagerTest, MatchingIsCaseInsensitiveContainmentInListOrder) {
    const MonitorConfig config{
        .limits = {ProcessLimit::create("   ", 1, false, m_clock.now()),
                   ProcessLimit::create("Helper", 2, false, m_clock.now()),
                   ProcessLimit::create("Chrome Helper", 3, false, m_clock.now())}};
    m_manager.setConfig(config);
    EXPECT_FALSE(saved());  // the editors that write the whole value save it themselves
    EXPECT_EQ(m_manager.snapshot(), config);
    EXPECT_EQ(m_notified, 1);
    // The blank limit matches nothing, so the next one in the list wins.
    EXPECT_EQ(m_manager.limitForProcess("Google Chrome Helper")->limitMB, 2);
    EXPECT_FALSE(m_manager.limitForProcess("Safari").has_value());
    EXPECT_TRUE(ConfigManager::limitMatches(config.limits[2], "google chrome helper (gpu)"));
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
    EXPECT_FALSE(saved());
    EXPECT_EQ(m_notified, 1);

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
    m_manager.setConfig({.whitelistedProcesses = {"", "   ", "chrome", "slack"}});
    EXPECT_TRUE(m_manager.isWhitelisted("Google Chrome Helper") &&
                !m_manager.isWhitelisted("Safari"));
    m_manager.removeFromWhitelist("Google Chrome");
    EXPECT_EQ(saved().value().whitelistedProcesses, (std::set<QString>{"", "   ", "slack"}));
    m_manager.removeFromWhitelist("SLACK");
    EXPECT_EQ(saved().value().whitelistedProcesses, (std::set<QString>{"", "   "}));

    forgetFile();
    m_manager.addToWhitelist("  ");
    EXPECT_FALSE(saved());
    m_manager.addToWhitelist(" Finder ");
    EXPECT_EQ(saved().value().whitelistedProcesses.count("Finder"), 1u);
    EXPECT_EQ(m_notified, 4);
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
