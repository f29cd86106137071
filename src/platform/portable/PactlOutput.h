#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <optional>

namespace zelvar {

// One stream of the pulse server: a sink input (playback) or a source output (recording).
struct PactlStream {
    int index = -1;
    QString applicationName;  // application.name, empty when the client gave none
    QString binary;           // application.process.binary
    qint64 pid = 0;           // application.process.id, 0 when absent
    // Paused by its client. Known from JSON, or from text in the C locale only.
    bool corked = false;

    // The name to show for the client: its own, else its binary's.
    QString displayName() const { return applicationName.isEmpty() ? binary : applicationName; }
};

// The server's default devices by name.
struct PactlDefaults {
    QString sink;
    QString source;
};

// Parsers of pactl's output, in text (any locale where a Part says so) and in its JSON form
// (--format=json). They never throw; what they can't read they leave out.
class PactlOutput final {
public:
    PactlOutput() = delete;

    // `pactl list sink-inputs` or `pactl list source-outputs`, text or JSON. The text's
    // headings and labels are translated, so an entry starts at any unindented line with a
    // "#<index>" in it, and only the untranslated properties (key = "value") are read.
    static QList<PactlStream> parseStreams(const QByteArray& output);
    // `pactl info`: JSON (default_sink_name, default_source_name) or the C locale's text
    // ("Default Sink: ", "Default Source: "). No value when neither name is found.
    static std::optional<PactlDefaults> parseInfo(const QByteArray& output);
    // `pactl list short` or `pactl list short sinks`/`sources`: each device's name with its
    // state (RUNNING, IDLE, SUSPENDED), from the tab-separated lines of five or more columns
    // whose last column is a state word. Those words are never translated.
    static QHash<QString, QString> parseShortStates(const QByteArray& output);
    // A line of `pactl subscribe` in the C locale ("Event 'change' on sink #1"): the facility
    // ("sink", "server", "sink-input"...), or empty for anything else.
    static QString subscribedFacility(const QString& line);
    // Whether `output` is pactl's JSON (an object or array), meaning --format=json is known.
    static bool isJson(const QByteArray& output);
};

}  // namespace zelvar
