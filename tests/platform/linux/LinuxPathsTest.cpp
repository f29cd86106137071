#include <gtest/gtest.h>

#include "config/ConfigManager.h"
#include "disk/DiskChangeTracker.h"
#include "disk/DiskIOReader.h"
#include "network/UsageCache.h"
#include "platform/linux/LinuxPaths.h"
#include "platform/macos/MacPaths.h"

using namespace zelvar;

// Each system's files where the README's table puts them. MacPaths is header-only, so it is
// checked here too.
TEST(LinuxPaths, EachFileResolvesToItsSystemsFolder) {
    const LinuxPaths defaults("/home/ada");
    const LinuxPaths xdg("/home/ada", {"/data", "relative/ignored", "/conf", "/run/user/1000"});
    const MacPaths mac("/Users/ada", "/var/folders/xy/T");
    struct Case {
        const Paths& paths;
        QStringList expected;  // config, disk I/O log, daily usage, disk events, power data
    };
    const Case cases[] = {
        {defaults,
         {"/home/ada/.zel_var_2_config.json", "/home/ada/.local/state/zelvar2/diskio.jsonl",
          "/home/ada/.local/share/zelvar2/usage-by-date.json",
          "/home/ada/.local/share/zelvar2/disk-events.jsonl", "/home/ada/.local/share/wattlog"}},
        {xdg,
         {"/home/ada/.zel_var_2_config.json", "/home/ada/.local/state/zelvar2/diskio.jsonl",
          "/data/zelvar2/usage-by-date.json", "/data/zelvar2/disk-events.jsonl", "/data/wattlog"}},
        {mac,
         {"/Users/ada/.zel_var_2_config.json", "/Users/ada/Library/Logs/Zelvar2/diskio.jsonl",
          "/Users/ada/Library/Application Support/Zelvar2/usage-by-date.json",
          "/Users/ada/Library/Application Support/Zelvar2/disk-events.jsonl",
          "/Users/ada/Library/Application Support/Wattlog"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ((QStringList{ConfigManager::defaultFile(c.paths),
                               DiskIOReader::defaultFile(c.paths), UsageCache::defaultFile(c.paths),
                               DiskChangeTracker::defaultEventLogFile(c.paths),
                               c.paths.dataDirectory(kWattlogFolder)}),
                  c.expected);
    }
    EXPECT_EQ(defaults.configDirectory(kZelvar2Folder), "/home/ada/.config/zelvar2");
    EXPECT_EQ(defaults.runtimeDirectory(kZelvar2Folder), "/home/ada/.local/state/zelvar2");
    EXPECT_EQ(xdg.configDirectory(kZelvar2Folder), "/conf/zelvar2");
    EXPECT_EQ(xdg.runtimeDirectory(kZelvar2Folder), "/run/user/1000/zelvar2");
    EXPECT_EQ(mac.runtimeDirectory(kZelvar2Folder), "/var/folders/xy/T/Zelvar2");
}
