#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "config/ConfigCoding.h"
#include "config/ConfigManager.h"
#include "support/FakeClock.h"
#include "support/LogCapture.h"

using namespace zelvar;
using zelvar::test::FakeClock;
using zelvar::test::LogCapture;

namespace {

class ConfigManagerTest : public ::testing::Test {
protected:
    QString path() const { return m_dir.filePath(".zel_var_2_config.json"); }

    void writeFile(const QByteArray& contents) {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    QByteArray readFile() const {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    MonitorConfig fileConfig() const { return *ConfigCoding::decode(readFile()).config; }
    // Removes the file so that a later check sees whether an operation saved.
    void forgetFile() { QFile::remove(path()); }
    bool saved() const { return QFileInfo::exists(path()); }

    QTemporaryDir m_dir;
    FakeClock m_clock;
};

}  // namespace

TEST_F(ConfigManagerTest, MissingFileKeepsDefaultsAndWritesNothingUntilSaved) {
    ConfigManager manager(path(), m_clock);
    EXPECT_EQ(manager.config(), MonitorConfig{});
    EXPECT_FALSE(saved());
    manager.save();
    EXPECT_EQ(fileConfig(), MonitorConfig{});
}

TEST_F(ConfigManagerTest, BrokenFileGivesDefaultsAMessageAndStaysUntilTheNextSave) {
    writeFile("");
    LogCapture log;
    ConfigManager manager(path(), m_clock);
    EXPECT_EQ(manager.config(), MonitorConfig{});
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().first().startsWith("Error loading config: "));
    EXPECT_EQ(readFile(), "");
    manager.save();
    EXPECT_EQ(fileConfig(), MonitorConfig{});
}

TEST_F(ConfigManagerTest, UnwritableLocationReportsAndKeepsMemory) {
    LogCapture log;
    ConfigManager manager(m_dir.filePath("no/such/home/.zel_var_2_config.json"), m_clock);
    manager.addLimit("chrome", 100, false);  // saves, and fails
    EXPECT_EQ(manager.config().limits.size(), 1);
    ASSERT_FALSE(log.lines().isEmpty());
    EXPECT_TRUE(log.lines().last().startsWith("Error saving config: "));
}

TEST_F(ConfigManagerTest, AddLimitReplacesEqualNamesWithANewIdentityAtTheEnd) {
    ConfigManager manager(path(), m_clock);
    manager.addLimit(" chrome\t", 100, false);
    EXPECT_EQ(manager.config().limits[0].processName, "chrome");
    EXPECT_EQ(manager.config().limits[0].createdAt, m_clock.now());
    const QUuid oldId = manager.config().limits[0].id;
    m_clock.advance(1);
    manager.addLimit("slack", 200, false);
    manager.addLimit("CHROME", 300, true);
    ASSERT_EQ(manager.config().limits.size(), 2);
    EXPECT_EQ(manager.config().limits[0].processName, "slack");
    const ProcessLimit& replaced = manager.config().limits[1];
    EXPECT_EQ(replaced.processName, "CHROME");
    EXPECT_NE(replaced.id, oldId);
    EXPECT_EQ(replaced.createdAt, m_clock.now());
    EXPECT_EQ(ConfigManager(path(), m_clock).config(), manager.config());  // what a restart reads

    forgetFile();
    manager.addLimit(" \t\n", 50, false);
    EXPECT_EQ(manager.config().limits.size(), 2);
    EXPECT_FALSE(saved());
}

TEST_F(ConfigManagerTest, MatchingIsCaseInsensitiveContainmentInListOrder) {
    ConfigManager manager(path(), m_clock);
    MonitorConfig config;
    config.limits = {ProcessLimit::create("   ", 1, false, m_clock.now()),
                     ProcessLimit::create("Helper", 2, false, m_clock.now()),
                     ProcessLimit::create("Chrome Helper", 3, false, m_clock.now())};
    manager.setConfig(config);
    // The blank limit matches nothing, so the next one in the list wins.
    EXPECT_EQ(manager.limitForProcess("Google Chrome Helper")->limitMB, 2);
    EXPECT_FALSE(manager.limitForProcess("Safari").has_value());
    EXPECT_TRUE(ConfigManager::limitMatches(config.limits[2], "google chrome helper (gpu)"));
    // The stored name is searched as it stands: its blanks are part of it.
    EXPECT_FALSE(ConfigManager::limitMatches(ProcessLimit::create(" code", 1, false, {}), "code"));
}

TEST_F(ConfigManagerTest, UpdateToggleAndMarkSaveOnlyForAKnownId) {
    ConfigManager manager(path(), m_clock);
    manager.addLimit("chrome", 100, false);
    const QUuid id = manager.config().limits[0].id;

    forgetFile();
    const QUuid unknown = QUuid::createUuid();
    manager.updateLimit(unknown, 1, true);
    manager.toggleAutoKill(unknown);
    manager.markLimitTriggered(unknown);
    EXPECT_FALSE(saved());

    manager.updateLimit(id, 250, true);
    EXPECT_EQ(fileConfig().limits[0].limitMB, 250);
    EXPECT_TRUE(fileConfig().limits[0].autoKillEnabled);
    manager.toggleAutoKill(id);
    EXPECT_FALSE(fileConfig().limits[0].autoKillEnabled);
    m_clock.advance(60);
    manager.markLimitTriggered(id);
    EXPECT_EQ(fileConfig().limits[0].lastTriggered, m_clock.now());

    forgetFile();
    manager.removeLimit(unknown);  // saves even when nothing matched
    EXPECT_TRUE(saved());
    manager.removeLimit(id);
    EXPECT_TRUE(fileConfig().limits.isEmpty());
}

TEST_F(ConfigManagerTest, WhitelistSkipsBlankEntriesAndRemovalTakesContainedEntries) {
    ConfigManager manager(path(), m_clock);
    MonitorConfig config;
    config.whitelistedProcesses = {"", "   ", "chrome", "slack"};
    manager.setConfig(config);
    EXPECT_TRUE(manager.isWhitelisted("Google Chrome Helper"));
    EXPECT_FALSE(manager.isWhitelisted("Safari"));

    manager.removeFromWhitelist("Google Chrome");
    EXPECT_EQ(fileConfig().whitelistedProcesses, (std::set<QString>{"", "   ", "slack"}));
    manager.removeFromWhitelist("SLACK");
    EXPECT_EQ(fileConfig().whitelistedProcesses, (std::set<QString>{"", "   "}));

    forgetFile();
    manager.addToWhitelist("  ");
    EXPECT_FALSE(saved());
    manager.addToWhitelist(" Finder ");
    EXPECT_EQ(fileConfig().whitelistedProcesses.count("Finder"), 1u);
}

TEST_F(ConfigManagerTest, AutoLimitsNeedExactNamesAndKeepIdentity) {
    ConfigManager manager(path(), m_clock);
    manager.addLimit("Chrome", 100, false);
    const ProcessLimit before = manager.config().limits[0];

    manager.setAutoLimit("chrome", 400);
    ASSERT_EQ(manager.config().limits.size(), 1);
    EXPECT_EQ(manager.config().limits[0].id, before.id);
    EXPECT_TRUE(manager.config().limits[0].autoKillEnabled);
    EXPECT_EQ(manager.config().limits[0].limitMB, 400);

    forgetFile();
    manager.removeAutoLimit("Chrom");  // only partly equal: nothing changes, nothing saved
    EXPECT_TRUE(manager.config().limits[0].autoKillEnabled);
    EXPECT_FALSE(saved());
    manager.removeAutoLimit("CHROME");
    EXPECT_FALSE(fileConfig().limits[0].autoKillEnabled);
    EXPECT_EQ(fileConfig().limits.size(), 1);

    manager.setAutoLimit("Slack", 900);  // not found: a new auto-kill limit
    ASSERT_EQ(fileConfig().limits.size(), 2);
    EXPECT_TRUE(fileConfig().limits[1].autoKillEnabled);
}

TEST_F(ConfigManagerTest, EveryChangeNotifiesAndAWholeValueWriteDoesNotSave) {
    ConfigManager manager(path(), m_clock);
    int notified = 0;
    QObject::connect(&manager, &ConfigManager::configChanged, [&] { ++notified; });
    manager.addLimit("a", 1, false);
    manager.addToWhitelist("b");
    MonitorConfig changed = manager.snapshot();
    changed.checkIntervalSeconds = 9;
    forgetFile();
    manager.setConfig(changed);
    EXPECT_FALSE(saved());  // the editors that write the whole value save it themselves
    EXPECT_EQ(notified, 3);
    EXPECT_EQ(manager.snapshot().checkIntervalSeconds, 9);
}
