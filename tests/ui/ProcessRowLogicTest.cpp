#include "config/ConfigManager.h"
#include "support/FakePorts.h"
#include "support/Testing.h"
#include "ui/DefaultExpansion.h"
#include "ui/OriginChips.h"
#include "ui/ProcessLimitStatus.h"

namespace {

ProcessNode node(Pid pid, const QString& name, QList<ProcessNode> children = {}) {
    ProcessInfo info;
    info.id = pid;
    info.name = name;
    ProcessNode result(info);
    result.children = std::move(children);
    return result;
}

// The user owns pids from 1000 up.
const DefaultExpansion::Anchors kLinux =
    DefaultExpansion::linuxAnchors([](Pid pid) { return pid >= 1000; });

TEST(DefaultExpansion, OpensPidOneAndTheUsersOwnServiceManager) {
    // Another user's manager (gdm's) comes first below pid 1 and is passed over.
    const QList<ProcessNode> tree{
        node(1, "systemd",
             {node(700, "systemd", {node(701, "gnome-shell")}),
              node(900, "login", {node(1200, "systemd", {node(1300, "pipewire")})})}),
        node(2, "kthreadd")};
    EXPECT_EQ(DefaultExpansion::defaultExpandedProcessIDs(tree, kLinux), QSet<Pid>({1, 1200}));

    // A manager outside pid 1's subtree is found by the search of the whole forest.
    const QList<ProcessNode> apart{node(2, "kthreadd", {node(1500, "systemd")}), node(1, "init")};
    EXPECT_EQ(DefaultExpansion::defaultExpandedProcessIDs(apart, kLinux), QSet<Pid>({1, 1500}));

    const QList<ProcessNode> mac{node(0, "kernel_task", {node(1, "launchd", {node(50, "x")})})};
    EXPECT_EQ(DefaultExpansion::defaultExpandedProcessIDs(mac, DefaultExpansion::macAnchors()),
              QSet<Pid>({0, 1}));
    EXPECT_TRUE(DefaultExpansion::defaultExpandedProcessIDs(mac, kLinux).isEmpty());
}

TEST(DefaultExpansion, WithoutTheManagerNothingOpensAndTheNextChangeTriesAgain) {
    DefaultExpansion expansion(kLinux);
    QSet<Pid> expanded{42};
    EXPECT_FALSE(expansion.apply({node(1, "systemd", {node(700, "systemd")})}, expanded));
    EXPECT_FALSE(expansion.didApplyDefaultExpansion());
    EXPECT_EQ(expanded, QSet<Pid>({42}));

    EXPECT_TRUE(expansion.apply({node(1, "systemd", {node(1100, "systemd")})}, expanded));
    EXPECT_EQ(expanded, QSet<Pid>({42, 1, 1100}));
    // Once applied, what the user collapses stays collapsed.
    expanded.clear();
    EXPECT_FALSE(expansion.apply({node(1, "systemd", {node(1100, "systemd")})}, expanded));
    EXPECT_TRUE(expanded.isEmpty());
}

TEST(ProcessLimitStatus, AtTheLimitIsWithinItAndTheWhitelistWins) {
    FakeClock clock;
    QTemporaryDir home;
    ConfigManager config(home.filePath("config.json"), clock);
    config.addLimit("chrome", 1500.7, false);
    config.addLimit("slack", 200, true);
    config.addToWhitelist("slack");

    ProcessInfo chrome;
    chrome.name = "Google chrome";  // limits match by containment, ignoring case
    chrome.memoryMB = 1500.7;
    const ProcessLimitStatus atLimit = ProcessLimitStatus::of(config, chrome);
    EXPECT_EQ(atLimit.kind, ProcessLimitStatus::Kind::WithinLimit);
    EXPECT_EQ(atLimit.text(), "1500MB");

    chrome.memoryMB = 1500.8;
    EXPECT_EQ(ProcessLimitStatus::of(config, chrome).text(), "Over Limit");

    ProcessInfo slack;
    slack.name = "slack";
    slack.memoryMB = 5000;
    EXPECT_EQ(ProcessLimitStatus::of(config, slack).text(), "Whitelisted");

    ProcessInfo other;
    other.name = "vim";
    EXPECT_EQ(ProcessLimitStatus::of(config, other).kind, ProcessLimitStatus::Kind::None);
    EXPECT_EQ(ProcessLimitStatus::of(config, other).text(), "");
}

TEST(OriginChips, UnknownImmediateWithASystemRootShowsOnlyTheLesserRootChip) {
    const auto chips = OriginChips::chips(ProcessOrigin::unknown(), ProcessOrigin::system());
    ASSERT_EQ(chips.size(), 1);
    EXPECT_EQ(chips[0].origin, ProcessOrigin::system());
    EXPECT_TRUE(chips[0].lesser);
    EXPECT_EQ(OriginChips::toolTip(ProcessOrigin::unknown(), ProcessOrigin::system()),
              "Immediate: Unknown\nRoot: " + ProcessOrigin::system().fullLabel());

    const auto same = OriginChips::chips(ProcessOrigin::cli("bash"), ProcessOrigin::cli("bash"));
    ASSERT_EQ(same.size(), 1);
    EXPECT_FALSE(same[0].lesser);
    EXPECT_EQ(same[0].text(), "💻 bash");
    EXPECT_EQ(OriginChips::toolTip(ProcessOrigin::cli("bash"), ProcessOrigin::cli("bash")),
              "CLI (bash)");
    EXPECT_TRUE(OriginChips::chips(ProcessOrigin::unknown(), ProcessOrigin::unknown()).isEmpty());
}

}  // namespace
