#include <gtest/gtest.h>

#include <QFile>

#include "network/NetworkName.h"
#include "support/FakeNetworkSources.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

NetworkNameReading airport(const QString& text) {
    return {NetworkNameReading::Form::AirportToolOutput, text};
}

QString fixture(const char* name) {
    QFile file(QStringLiteral(ZELVAR_FIXTURES_DIR "/network/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return QString::fromUtf8(file.readAll());
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
    const QStringList runs =
        fixture("networksetup-associated-and-en1-error.txt").split("$ ", Qt::SkipEmptyParts);
    ASSERT_EQ(runs.size(), 2);
    EXPECT_EQ(NetworkName::ssid(airport(runs[0].section('\n', 1))), "MS480-5G");
    EXPECT_EQ(NetworkName::ssid(airport(runs[1].section('\n', 1))), "");
    // The first marker wins; everything behind it is the name, trimmed.
    EXPECT_EQ(NetworkName::ssid(airport(fixture("networksetup-variants.txt"))),
              QStringLiteral("lighthouse\n      -- or\n      $ networksetup -getairportnetwork "
                             "\"en0\"\n      You are not associated with an AirPort network.\n"
                             "      Wi-Fi power is currently off.\n\n      $ networksetup "
                             "-getairportnetwork \"en6\"\n      en6 is not a Wi-Fi interface.\n"
                             "      ** Error: Error obtaining wireless information."));
    EXPECT_EQ(NetworkName::ssid(airport("Current Wi-Fi Network:   My  Home Net \n")),
              "My  Home Net");
    EXPECT_EQ(NetworkName::ssid(airport(fixture("networksetup-not-associated-sequoia.txt"))), "");
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
