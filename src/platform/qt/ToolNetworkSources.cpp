#include "platform/qt/ToolNetworkSources.h"

#include <signal.h>

#include <QStringDecoder>

#include "platform/portable/WifiToolOutput.h"

namespace zelvar {
namespace {

// Standard output of a run, or nothing when the tool didn't start. The exit status isn't
// looked at: whatever the tool printed is all there is to parse.
QByteArray outputOf(CommandRunner& runner, const QString& program, const QStringList& arguments,
                    std::optional<double> timeoutSeconds = std::nullopt) {
    CommandRequest request;
    request.program = program;
    request.arguments = arguments;
    request.timeoutSeconds = timeoutSeconds;
    const CommandResult result = runner.run(request);
    return result.started ? result.standardOutput : QByteArray();
}

// UTF-8 text, or nothing when the output doesn't decode.
QString textOf(const QByteArray& output) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder.decode(output);
    return decoder.hasError() ? QString() : text;
}

// The network tools answer at once; one that hangs must not hold the sampling for long.
constexpr double kNetworkToolTimeoutSeconds = 5.0;

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

NetworkNameReading MacNetworkNameSource::read() {
    const QString networksetup = QStringLiteral("/usr/sbin/networksetup");
    const QString device = WifiToolOutput::wifiDevice(
        textOf(outputOf(m_runner, networksetup, {QStringLiteral("-listallhardwareports")},
                        kNetworkToolTimeoutSeconds)));
    if (device.isEmpty()) {
        return {NetworkNameReading::Form::AirportToolOutput, {}};
    }
    const QString ssid = WifiToolOutput::summarySsid(
        textOf(outputOf(m_runner, QStringLiteral("/usr/sbin/ipconfig"),
                        {QStringLiteral("getsummary"), device}, kNetworkToolTimeoutSeconds)));
    if (!ssid.isEmpty()) {
        return {NetworkNameReading::Form::ConnectionName, ssid};
    }
    return {NetworkNameReading::Form::AirportToolOutput,
            textOf(outputOf(m_runner, networksetup, {QStringLiteral("-getairportnetwork"), device},
                            kNetworkToolTimeoutSeconds))};
}

}  // namespace zelvar
