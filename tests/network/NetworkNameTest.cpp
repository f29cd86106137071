#include <gtest/gtest.h>

#include "network/NetworkName.h"
#include "support/FakePorts.h"
#include "support/Fixture.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

NetworkNameReading airport(const QString& text) {
    return {NetworkNameReading::Form::AirportToolOutput, text};
}

}  // namespace

TEST(NetworkNameTest, NameIsWhatFollowsTheAirportToolsMarkerOrTheConnectionNameTrimmed) {
    // The capture holds two runs, each after its prompt line; the first is for en0.
    const QStringList runs = readFixture("network/networksetup-associated-and-en1-error.txt")
                                 .split("$ ", Qt::SkipEmptyParts);
    ASSERT_EQ(runs.size(), 2);
    const std::pair<NetworkNameReading, const char*> cases[] = {
        {airport(runs[0].section('\n', 1)), "MS480-5G"},
        {airport(runs[1].section('\n', 1)), ""},
        {airport(readFixture("network/networksetup-not-associated-sequoia.txt")), ""},
        // The first marker wins; everything behind it is the name, trimmed.
        {airport("x\nCurrent Wi-Fi Network: a\nCurrent Wi-Fi Network: b\n"),
         "a\nCurrent Wi-Fi Network: b"},
        {airport("Current Wi-Fi Network:   My  Home Net \n"), "My  Home Net"},
        // No marker is looked for in a connection's name.
        {{NetworkNameReading::Form::ConnectionName, " Wired connection 1 "}, "Wired connection 1"},
    };
    for (const auto& [reading, expected] : cases) {
        EXPECT_EQ(NetworkName::ssid(reading).toStdString(), expected);
    }
}

TEST(NetworkNameTest, FallsBackOnWhetherAWifiLikeInterfaceExists) {
    const InterfaceMap wifi{{"en0", {"en0", 0, 0, true}}, {"utun3", {"utun3", 5, 5, false}}};
    const InterfaceMap other{{"utun3", {"utun3", 5, 5, false}}};
    FakeNetworkNameSource source;
    source.set(airport("You are not associated with an AirPort network."));
    EXPECT_EQ(NetworkName::read(source, wifi), "Wi-Fi");
    EXPECT_EQ(NetworkName::read(source, other), "Network");
    EXPECT_EQ(NetworkName::read(source, {}), "Network");
    source.set(airport("Current Wi-Fi Network:"));  // an empty name falls back too
    EXPECT_EQ(NetworkName::read(source, wifi), "Wi-Fi");
    source.set(airport("Current Wi-Fi Network: Office"));
    EXPECT_EQ(NetworkName::read(source, {}), "Office");
}
