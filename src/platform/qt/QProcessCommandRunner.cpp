#include "platform/qt/QProcessCommandRunner.h"

#include <QElapsedTimer>
#include <QProcess>
#include <algorithm>
#include <cmath>

namespace zelvar {
namespace {

int toMilliseconds(double seconds) {
    return static_cast<int>(std::clamp(std::llround(seconds * 1000.0), 1LL, 24LL * 3600 * 1000));
}

}  // namespace

CommandResult QProcessCommandRunner::run(const CommandRequest& request) {
    CommandResult result;
    QProcess process;
    process.setProgram(request.program);
    process.setArguments(request.arguments);
    switch (request.stderrMode) {
        case CommandRequest::Stderr::Separate:
            process.setProcessChannelMode(QProcess::SeparateChannels);
            break;
        case CommandRequest::Stderr::Merged:
            process.setProcessChannelMode(QProcess::MergedChannels);
            break;
        case CommandRequest::Stderr::Discarded:
            process.setStandardErrorFile(QProcess::nullDevice());
            break;
    }
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted(-1)) {
        return result;
    }
    result.started = true;

    QElapsedTimer elapsed;
    elapsed.start();
    const int stepMs = toMilliseconds(request.pollStepSeconds);
    while (process.state() != QProcess::NotRunning) {
        int waitMs = stepMs;
        if (request.timeoutSeconds) {
            const qint64 remaining =
                static_cast<qint64>(*request.timeoutSeconds * 1000.0) - elapsed.elapsed();
            if (remaining <= 0) {
                result.timedOut = true;
                process.terminate();
                if (!process.waitForFinished(toMilliseconds(request.killGraceSeconds))) {
                    process.kill();
                    process.waitForFinished(-1);
                }
                break;
            }
            waitMs = static_cast<int>(std::min<qint64>(waitMs, remaining));
        }
        // Waiting drains both pipes into QProcess's buffers as data arrives.
        process.waitForFinished(waitMs);
    }

    result.standardOutput = process.readAllStandardOutput();
    if (request.stderrMode == CommandRequest::Stderr::Separate) {
        result.standardError = process.readAllStandardError();
    }
    result.crashed = process.exitStatus() == QProcess::CrashExit;
    result.exitCode = process.exitCode();
    return result;
}

}  // namespace zelvar
