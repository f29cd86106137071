#include "platform/qt/ToolNetworkSources.h"

#include <signal.h>

#include <QStringDecoder>

namespace zelvar {
namespace {

// Standard output of a run, or nothing when the tool didn't start. The exit status isn't
// looked at: whatever the tool printed is all there is to parse.
QByteArray outputOf(CommandRunner& runner, const QString& program, const QStringList& arguments) {
    CommandRequest request;
    request.program = program;
    request.arguments = arguments;
    const CommandResult result = runner.run(request);
    return result.started ? result.standardOutput : QByteArray();
}

}  // namespace

ProcessNetworkReading NettopProcessNetworkSource::read() {
    return {
        ProcessNetworkReading::Grammar::Nettop,
        outputOf(m_runner, QStringLiteral("/usr/bin/nettop"),
                 {QStringLiteral("-P"), QStringLiteral("-x"), QStringLiteral("-J"),
                  QStringLiteral("bytes_in,bytes_out"), QStringLiteral("-l"), QStringLiteral("1")}),
        {},
        {}};
}

ProcessNetworkReading SocketStatisticsProcessNetworkSource::read() {
    return {ProcessNetworkReading::Grammar::SocketStatistics,
            outputOf(m_runner, QStringLiteral("/bin/ss"), {QStringLiteral("-tinpH")}),
            {},
            {}};
}

NetworkNameReading AirportNetworkNameSource::read() {
    const QByteArray output =
        outputOf(m_runner, QStringLiteral("/usr/sbin/networksetup"),
                 {QStringLiteral("-getairportnetwork"), QStringLiteral("en0")});
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder.decode(output);
    if (decoder.hasError()) {
        text.clear();  // undecodable output says nothing
    }
    return {NetworkNameReading::Form::AirportToolOutput, text};
}

}  // namespace zelvar
