#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "platform/qt/QProcessCommandRunner.h"
#include "support/QtPrinters.h"

using namespace zelvar;

namespace {

CommandResult sh(const QString& script, std::optional<double> timeout = std::nullopt,
                 CommandRequest::Stderr mode = CommandRequest::Stderr::Separate) {
    CommandRequest request;
    request.program = QStringLiteral("/bin/sh");
    request.arguments = {QStringLiteral("-c"), script};
    request.timeoutSeconds = timeout;
    request.stderrMode = mode;
    request.killGraceSeconds = 0.5;
    return QProcessCommandRunner().run(request);
}

}  // namespace

TEST(QProcessCommandRunnerLive, SeparatesOrMergesStderrDrainsBothAndKillsOnTimeOut) {
    const CommandResult separate = sh("echo out; echo err >&2; exit 3");
    EXPECT_EQ(std::tuple(separate.started, separate.exitCode, separate.succeeded(),
                         separate.standardOutput, separate.standardError),
              std::tuple(true, 3, false, "out\n", "err\n"));
    const CommandResult merged =
        sh("echo out; sleep 0.05; echo err >&2", std::nullopt, CommandRequest::Stderr::Merged);
    EXPECT_EQ(std::tuple(merged.succeeded(), merged.standardOutput),
              std::tuple(true, "out\nerr\n"));
    EXPECT_FALSE(QProcessCommandRunner().run({.program = "/nonexistent/tool"}).started);
    // Far more than a pipe holds, on both channels at once.
    const CommandResult large =
        sh("head -c 8000000 /dev/zero; head -c 3000000 /dev/zero >&2", 20.0);
    EXPECT_EQ(
        std::tuple(large.succeeded(), large.standardOutput.size(), large.standardError.size()),
        std::tuple(true, 8000000, 3000000));
    // The shell ignores SIGTERM, so only the kill after the grace ends it.
    QElapsedTimer timer;
    timer.start();
    const CommandResult hung = sh("trap '' TERM; echo partial; while :; do sleep 0.05; done", 0.3);
    EXPECT_EQ(std::tuple(hung.timedOut, hung.succeeded(), hung.standardOutput),
              std::tuple(true, false, "partial\n"));
    EXPECT_LT(timer.elapsed(), 5000);
}
