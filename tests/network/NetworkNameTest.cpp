#include <gtest/gtest.h>

#include "network/NetworkName.h"
#include "support/FakeNetworkSources.h"
#include "support/Fixture.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

NetworkNameReading airport(const QString& text) {
    return {NetworkNameReading::Form::AirportToolOutput, text};
}

InterfaceMap interfaces(std::initializer_list<InterfaceUsage> list) {
    InterfaceMap map;
    for (const InterfaceUsage& i : list) {
        map.insert(i.name, i);
    }
    return map;
}

}  // namespace

TEST(NetworkNameTest, AirportToolNamesTheNetworkBehindItsMarker) {
    // The capture holds two runs, each after its prompt line; the first is for en0.
    const QStringList runs = readFixture("network/networksetup-associated-and-en1-error.txt")
                                 .split("$ ", Qt::SkipEmptyParts);
    ASSERT_EQ(runs.size(), 2);
    EXPECT_EQ(NetworkName::ssid(airport(runs[0].section('\n', 1))), "MS480-5G");
    EXPECT_EQ(NetworkName::ssid(airport(runs[1].section('\n', 1))), "");
    // The first marker wins; everything behind it is the name, trimmed.
    EXPECT_EQ(NetworkName::ssid(airport("x\nCurrent Wi-Fi Network: a\nCurrent Wi-Fi Network: b\n")),
              "a\nCurrent Wi-Fi Network: b");
    EXPECT_EQ(NetworkName::ssid(airport("Current Wi-Fi Network:   My  Home Net \n")),
              "My  Home Net");
    EXPECT_EQ(
        NetworkName::ssid(airport(readFixture("network/networksetup-not-associated-sequoia.txt"))),
        "");
    EXPECT_EQ(NetworkName::ssid(airport("Current Wi-Fi Network: \n")), "");
}

TEST(NetworkNameTest, ConnectionNamesAreTakenAsTheyAre) {
    EXPECT_EQ(NetworkName::ssid({NetworkNameReading::Form::ConnectionName, " Wired connection 1 "}),
              "Wired connection 1");
    // No marker is looked for in a connection's name.
    EXPECT_EQ(NetworkName::ssid({NetworkNameReading::Form::ConnectionName, "Cafe"}), "Cafe");
}

TEST(NetworkNameTest, FallsBackOnWhetherAWifiLikeInterfaceExists) {
    FakeNetworkNameSource source;
    source.set(airport("You are not associated with an AirPort network."));
    EXPECT_EQ(NetworkName::read(source, interfaces({{"en0", 0, 0, true}, {"utun3", 5, 5, false}})),
              "Wi-Fi");
    EXPECT_EQ(NetworkName::read(source, interfaces({{"utun3", 5, 5, false}})), "Network");
    EXPECT_EQ(NetworkName::read(source, {}), "Network");
    source.set(airport("Current Wi-Fi Network:"));  // an empty name falls back too
    EXPECT_EQ(NetworkName::read(source, interfaces({{"eth0", 0, 0, true}})), "Wi-Fi");
    source.set(airport("Current Wi-Fi Network: Office"));
    EXPECT_EQ(NetworkName::read(source, {}), "Office");
}
