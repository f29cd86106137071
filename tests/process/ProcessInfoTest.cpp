#include <QTimeZone>

#include "process/ProcessInfo.h"
#include "support/Testing.h"

using namespace Qt::Literals::StringLiterals;

namespace {

QString describe(const ProcessOrigin& origin) {
    return origin.icon() + '|' + origin.shortLabel() + '|' + origin.fullLabel();
}

}  // namespace

TEST(ProcessOrigin, LabelsOfEveryKind) {
    EXPECT_EQ(describe(ProcessOrigin::launchAgent("com.apple.Safari")),
              "⚙️|Safari|Launch Agent: com.apple.Safari");
    EXPECT_EQ(describe(ProcessOrigin::gui("firefox")), "🖥️|firefox|GUI App: firefox");
    EXPECT_EQ(describe(ProcessOrigin::cli("zsh")), "💻|zsh|CLI (zsh)");
    EXPECT_EQ(describe(ProcessOrigin::unknown()), "||Unknown");
    for (const SystemProfile& profile : {macSystemProfile(), linuxSystemProfile()}) {
        ProcessOrigin::setSystemStyle(profile.systemOrigin);
        EXPECT_EQ(describe(ProcessOrigin::system()),
                  profile.systemOrigin.icon + "|system|" + profile.systemOrigin.label);
    }
    // A one-letter last component, or none at all, shows the whole label. Characters count as a
    // reader counts them: one emoji, or a letter with a combining accent.
    for (const QString& whole :
         {u"org.example.x"_s, u"..."_s, u"com.example.😀"_s, u"org.e\u0301"_s}) {
        EXPECT_EQ(ProcessOrigin::launchAgent(whole).shortLabel(), whole);
    }
    EXPECT_EQ(ProcessOrigin::launchAgent("a.bc.").shortLabel(), "bc");
}

TEST(ProcessOrigin, JsonFormRoundTripsAndToleratesUnknownTypes) {
    for (const ProcessOrigin& origin :
         {ProcessOrigin::launchAgent("a.b"), ProcessOrigin::gui("x"), ProcessOrigin::cli("bash"),
          ProcessOrigin::system(), ProcessOrigin::unknown()}) {
        EXPECT_EQ(ProcessOrigin::fromJson(origin.toJson()), origin);
    }
    EXPECT_EQ(ProcessOrigin::system().toJson(), (QJsonObject{{"type", "system"}}));
    EXPECT_EQ(ProcessOrigin::gui("x").toJson(), (QJsonObject{{"type", "gui"}, {"value", "x"}}));
    EXPECT_EQ(ProcessOrigin::fromJson({{"type", "daemon"}, {"value", "x"}}),
              ProcessOrigin::unknown());
    // "value" is required only where the kind carries one.
    EXPECT_FALSE(ProcessOrigin::fromJson({{"type", "cli"}}).has_value());
    EXPECT_EQ(ProcessOrigin::fromJson({{"type", "system"}, {"value", 3}}), ProcessOrigin::system());
}

TEST(ProcessInfo, DisplayStrings) {
    ProcessInfo p{.memoryMB = 1024.0, .cpuPercent = 12.345};
    EXPECT_EQ(p.displayMemory() + ' ' + p.displayCPU(), "1024 MB 12.3%");
    p.memoryMB = 1536.0;
    EXPECT_EQ(p.displayMemory(), "1.5 GB");
}

TEST(ProcessInfo, JsonFormHasAllEightKeysAndRoundTrips) {
    const QDateTime sampled(QDate(2026, 2, 3), QTime(4, 5, 6), QTimeZone::utc());
    const ProcessInfo p{42,   1,       "Zelvar Helper",           12.5,
                        3.25, sampled, ProcessOrigin::cli("zsh"), ProcessOrigin::gui("Terminal")};
    const QJsonObject json = p.toJson();
    EXPECT_EQ(json.keys(), (QStringList{"cpu_percent", "id", "immediateOrigin", "memory_mb", "name",
                                        "ppid", "rootOrigin", "timestamp"}));
    EXPECT_EQ(ProcessInfo::fromJson(json), p);
    for (const QString& key : json.keys()) {
        QJsonObject missing = json;
        missing.remove(key);
        EXPECT_FALSE(ProcessInfo::fromJson(missing).has_value()) << key.toStdString();
    }
}
