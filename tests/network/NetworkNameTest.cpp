#include "network/NetworkName.h"
#include "support/FakePorts.h"
#include "support/Fixture.h"
#include "support/Testing.h"

namespace {

NetworkNameReading airport(const QString& text) {
    return {NetworkNameReading::Form::AirportToolOutput, text};
}

}  // namespace

TEST(NetworkNameTest, NameIsWhatFollowsTheAirportToolsMarkerOrTheConnectionNameTrimmed) {
    // The capture holds two runs, each after its prompt line; the first is for en0.
    const QStringList runs = readFixture("network/networksetup-associated-and-en1-error.txt")
                                 .split("$ ", Qt::SkipEmptyParts);
    const std::pair<NetworkNameReading, const char*> cases[] = {
        {airport(runs.value(0).section('\n', 1)), "MS480-5G"},
        {airport(runs.value(1).section('\n', 1)), ""},
        // macOS 15 answers so while connected, which is why the tool is now the last resort.
        {airport(readFixture("network/networksetup-sequoia-not-associated.txt")), ""},
        // The first marker wins; everything behind it is the name, trimmed.
        {airport("x\nCurrent Wi-Fi Network:  a\nCurrent Wi-Fi Network: b\n"),
         "a\nCurrent Wi-Fi Network: b"},
        {{NetworkNameReading::Form::ConnectionName, " Wired connection 1 "}, "Wired connection 1"},
    };
    for (const auto& [reading, expected] : cases) {
        EXPECT_EQ(NetworkName::ssid(reading).toStdString(), expected);
    }
}

TEST(NetworkNameTest, FallsBackOnWhetherAWifiLikeInterfaceExists) {
    const InterfaceMap wifi{{"en0", {"en0", 0, 0, true}}, {"utun3", {"utun3", 5, 5, false}}};
    FakeNetworkNameSource source;
    source.set(airport("You are not associated with an AirPort network."));
    EXPECT_EQ(NetworkName::read(source, wifi), "Wi-Fi");
    EXPECT_EQ(NetworkName::read(source, {{"utun3", {"utun3", 5, 5, false}}}), "Network");
    source.set(airport("Current Wi-Fi Network: Office"));
    EXPECT_EQ(NetworkName::read(source, {}), "Office");
}
