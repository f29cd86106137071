#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QTimeZone>

#include "process/ProcessInfo.h"

using namespace zelvar;
using namespace Qt::Literals::StringLiterals;

TEST(ProcessOrigin, LabelsOfEveryKind) {
    EXPECT_EQ(ProcessOrigin::launchAgent("com.apple.Safari").shortLabel(), "Safari");
    EXPECT_EQ(ProcessOrigin::launchAgent("com.apple.Safari").fullLabel(),
              "Launch Agent: com.apple.Safari");
    EXPECT_EQ(ProcessOrigin::launchAgent("com.apple.Safari").icon(), "⚙️");
    // A one-letter last component, or no component at all, shows the whole label.
    EXPECT_EQ(ProcessOrigin::launchAgent("org.example.x").shortLabel(), "org.example.x");
    EXPECT_EQ(ProcessOrigin::launchAgent("...").shortLabel(), "...");
    EXPECT_EQ(ProcessOrigin::launchAgent("a.bc.").shortLabel(), "bc");
    // Characters as a reader counts them: one emoji, or a letter with a combining accent.
    EXPECT_EQ(ProcessOrigin::launchAgent("com.example.😀").shortLabel(), "com.example.😀");
    EXPECT_EQ(ProcessOrigin::launchAgent(u"org.e\u0301"_s).shortLabel(), u"org.e\u0301"_s);

    EXPECT_EQ(ProcessOrigin::gui("firefox").fullLabel(), "GUI App: firefox");
    EXPECT_EQ(ProcessOrigin::gui("firefox").icon(), "🖥️");
    EXPECT_EQ(ProcessOrigin::cli("zsh").fullLabel(), "CLI (zsh)");
    EXPECT_EQ(ProcessOrigin::cli("zsh").shortLabel(), "zsh");
    EXPECT_EQ(ProcessOrigin::system().shortLabel(), "system");
    for (const SystemProfile& profile : {macSystemProfile(), linuxSystemProfile()}) {
        ProcessOrigin::setSystemStyle(profile.systemOrigin);
        EXPECT_EQ(ProcessOrigin::system().icon(), profile.systemOrigin.icon);
        EXPECT_EQ(ProcessOrigin::system().fullLabel(), profile.systemOrigin.label);
    }
    EXPECT_EQ(ProcessOrigin::unknown().fullLabel(), "Unknown");
    EXPECT_TRUE(ProcessOrigin::unknown().icon().isEmpty());
    EXPECT_TRUE(ProcessOrigin::unknown().shortLabel().isEmpty());
}

TEST(ProcessOrigin, JsonFormRoundTripsAndToleratesUnknownTypes) {
    for (const ProcessOrigin& origin :
         {ProcessOrigin::launchAgent("a.b"), ProcessOrigin::gui("x"), ProcessOrigin::cli("bash"),
          ProcessOrigin::system(), ProcessOrigin::unknown()}) {
        EXPECT_EQ(ProcessOrigin::fromJson(origin.toJson()), origin);
    }
    EXPECT_FALSE(ProcessOrigin::system().toJson().contains("value"));
    EXPECT_EQ(ProcessOrigin::gui("x").toJson().value("type").toString(), "gui");
    EXPECT_EQ(ProcessOrigin::fromJson({{"type", "daemon"}, {"value", "x"}}),
              ProcessOrigin::unknown());
    // "value" is required only where the kind carries one.
    EXPECT_FALSE(ProcessOrigin::fromJson({{"type", "cli"}}).has_value());
    EXPECT_EQ(ProcessOrigin::fromJson({{"type", "system"}, {"value", 3}}), ProcessOrigin::system());
}

TEST(ProcessInfo, DisplayStrings) {
    ProcessInfo p;
    for (const auto& [memoryMB, text] : {std::pair{1024.0, "1024 MB"}, std::pair{1024.1, "1.0 GB"},
                                         std::pair{1536.0, "1.5 GB"}, std::pair{0.4, "0 MB"}}) {
        p.memoryMB = memoryMB;
        EXPECT_EQ(p.displayMemory(), text);
    }
    p.cpuPercent = 12.345;
    EXPECT_EQ(p.displayCPU(), "12.3%");
}

TEST(ProcessInfo, JsonFormHasAllEightKeysAndRoundTrips) {
    const ProcessInfo p{42,
                        1,
                        "Zelvar Helper",
                        12.5,
                        3.25,
                        QDateTime(QDate(2026, 2, 3), QTime(4, 5, 6), QTimeZone::utc()),
                        ProcessOrigin::cli("zsh"),
                        ProcessOrigin::gui("Terminal")};
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
