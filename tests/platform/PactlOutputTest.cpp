#include <gtest/gtest.h>

#include "platform/portable/PactlOutput.h"
#include "support/Fixture.h"
#include "support/QtPrinters.h"

namespace zelvar {
namespace {

using test::readFixture;

QByteArray fixture(const QString& name) {
    return readFixture("audio/" + name).toUtf8();
}

TEST(PactlOutputTest, StreamsFromTextInAnyLocale) {
    // PipeWire's pulse server, cut inside the properties.
    const QList<PactlStream> spotify = PactlOutput::parseStreams(
        fixture("n-pactl-list-sink-inputs-pipewire-spotify-mon2cam74-excerpt.txt"));
    ASSERT_EQ(spotify.size(), 1);
    EXPECT_EQ(spotify[0].index, 64);
    EXPECT_EQ(spotify[0].displayName(), "spotify");

    const QList<PactlStream> speech = PactlOutput::parseStreams(
        fixture("n-pactl-list-sink-inputs-pulseaudio-speechdispatcher-blog.txt"));
    ASSERT_EQ(speech.size(), 1);
    EXPECT_EQ(speech[0].applicationName, "speech-dispatcher-dummy");
    EXPECT_EQ(speech[0].binary, "sd_dummy");
    EXPECT_EQ(speech[0].pid, 42146);
    EXPECT_FALSE(speech[0].corked);

    // Slovak headings and yes/no words; the prompt line before the first entry is no entry,
    // and the second entry is cut before its properties.
    const QList<PactlStream> slovak = PactlOutput::parseStreams(
        fixture("n-pactl-list-source-outputs-slovak-locale-easyeffects760-excerpt.txt"));
    ASSERT_GE(slovak.size(), 1);
    EXPECT_EQ(slovak[0].applicationName, "PulseEffects");
    EXPECT_EQ(slovak[0].binary, "pulseeffects");
    EXPECT_EQ(slovak[0].pid, 6218);

    const QList<PactlStream> quoted = PactlOutput::parseStreams(
        "Sink Input #3\n\tCorked: yes\n\tProperties:\n\t\tapplication.process.binary = "
        "\"a \\\"b\\\" \\\\c\"\n");
    ASSERT_EQ(quoted.size(), 1);
    EXPECT_TRUE(quoted[0].corked);
    EXPECT_EQ(quoted[0].displayName(), "a \"b\" \\c");
}

TEST(PactlOutputTest, StreamsAndDefaultsFromJson) {
    const QList<PactlStream> streams = PactlOutput::parseStreams(
        R"([{"index":12,"corked":false,"properties":{"application.name":"Tonegen",
             "application.process.id":"4711","application.process.binary":"paplay"}},
            {"index":13,"corked":true,"properties":{}}])");
    ASSERT_EQ(streams.size(), 2);
    EXPECT_EQ(streams[0].applicationName, "Tonegen");
    EXPECT_EQ(streams[0].pid, 4711);
    EXPECT_TRUE(streams[1].corked);
    EXPECT_EQ(streams[1].displayName(), "");

    const auto json = PactlOutput::parseInfo(
        R"({"server_name":"pulseaudio","default_sink_name":"out","default_source_name":"in"})");
    ASSERT_TRUE(json);
    EXPECT_EQ(json->sink, "out");
    EXPECT_EQ(json->source, "in");
    const auto text = PactlOutput::parseInfo(
        "Server Name: pulseaudio\nDefault Sink: out\nDefault Source: "
        "out.monitor\n");
    ASSERT_TRUE(text);
    EXPECT_EQ(text->source, "out.monitor");
    EXPECT_EQ(PactlOutput::parseInfo("Connection failure: Connection refused\n"), std::nullopt);
    EXPECT_FALSE(PactlOutput::isJson("Specified format \"json\" is not supported"));
}

TEST(PactlOutputTest, ShortListStatesAndSubscriptionEvents) {
    const QHash<QString, QString> states = PactlOutput::parseShortStates(
        fixture("n-pactl-list-short-sinks-pulseaudio-hdmi-analog-running-cpp-comment.txt") +
        "0\tmodule-null-sink\tsink_name=out\n"
        "5\t0\t12\tprotocol-native.c\tfloat32le 2ch 44100Hz\n");
    EXPECT_EQ(states,
              (QHash<QString, QString>{{"alsa_output.pci-0000_00_03.0.hdmi-stereo", "SUSPENDED"},
                                       {"alsa_output.pci-0000_00_1b.0.analog-stereo", "RUNNING"}}));

    EXPECT_EQ(PactlOutput::subscribedFacility("Event 'change' on sink #1"), "sink");
    EXPECT_EQ(PactlOutput::subscribedFacility("Event 'new' on sink-input #12\n"), "sink-input");
    EXPECT_EQ(PactlOutput::subscribedFacility("Event 'change' on server #4294967295"), "server");
    EXPECT_EQ(PactlOutput::subscribedFacility("Connection failure"), "");
}

}  // namespace
}  // namespace zelvar
