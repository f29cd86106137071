#include <gtest/gtest.h>

#include "platform/linux/LinuxPaths.h"

using namespace zelvar;

TEST(LinuxPaths, XdgDirectoriesWithDefaultsAndTheConfigInHome) {
    const LinuxPaths defaults("/home/ada");
    EXPECT_EQ(defaults.configFile(), "/home/ada/.zel_var_2_config.json");
    EXPECT_EQ(defaults.diskIOLogFile(), "/home/ada/.local/state/zelvar2/diskio.jsonl");
    EXPECT_EQ(defaults.usageByDateFile(), "/home/ada/.local/share/zelvar2/usage-by-date.json");
    EXPECT_EQ(defaults.correlationSamplesFile(),
              "/home/ada/.local/share/wattlog/correlation/samples.jsonl");

    const LinuxPaths custom("/home/ada", "/data", "relative/ignored");
    EXPECT_EQ(custom.diskEventsFile(), "/data/zelvar2/disk-events.jsonl");
    EXPECT_EQ(custom.logsDirectory(), "/home/ada/.local/state/zelvar2");
    EXPECT_EQ(custom.configFile(), "/home/ada/.zel_var_2_config.json");
}
