#include "config/ConfigManager.h"
#include "disk/DiskChangeTracker.h"
#include "disk/DiskIOReader.h"
#include "network/UsageCache.h"
#include "platform/linux/LinuxPaths.h"
#include "platform/macos/MacPaths.h"
#include "support/Testing.h"

// Each system's files where the README's table puts them; MacPaths is header-only.
TEST(LinuxPaths, EachFileResolvesToItsSystemsFolder) {
    const auto files = [](const Paths& paths) {
        return QStringList{
            ConfigManager::defaultFile(paths),     DiskIOReader::defaultFile(paths),
            UsageCache::defaultFile(paths),        DiskChangeTracker::defaultEventLogFile(paths),
            paths.dataDirectory(kWattlogFolder),   paths.configDirectory(kZelvar2Folder),
            paths.runtimeDirectory(kZelvar2Folder)};
    };
    const QString config = "/home/ada/.zel_var_2_config.json", local = "/home/ada/.local/";
    EXPECT_EQ(files(LinuxPaths("/home/ada")),
              (QStringList{config, local + "state/zelvar2/diskio.jsonl",
                           local + "share/zelvar2/usage-by-date.json",
                           local + "share/zelvar2/disk-events.jsonl", local + "share/wattlog",
                           "/home/ada/.config/zelvar2", local + "state/zelvar2"}));
    EXPECT_EQ(
        files(LinuxPaths("/home/ada", {"/data", "relative/ignored", "/conf", "/run/user/1000"})),
        (QStringList{config, local + "state/zelvar2/diskio.jsonl",
                     "/data/zelvar2/usage-by-date.json", "/data/zelvar2/disk-events.jsonl",
                     "/data/wattlog", "/conf/zelvar2", "/run/user/1000/zelvar2"}));
    const QString library = "/Users/ada/Library/", support = library + "Application Support/";
    EXPECT_EQ(
        files(MacPaths("/Users/ada", "/var/folders/xy/T")),
        (QStringList{"/Users/ada/.zel_var_2_config.json", library + "Logs/Zelvar2/diskio.jsonl",
                     support + "Zelvar2/usage-by-date.json", support + "Zelvar2/disk-events.jsonl",
                     support + "Wattlog", library + "Preferences/Zelvar2",
                     "/var/folders/xy/T/Zelvar2"}));
}
