#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "platform/qt/QProcessCommandRunner.h"

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

TEST(QProcessCommandRunnerLive, SeparatesOrMergesStandardErrorAndReportsAMissingProgram) {
    const CommandResult separate = sh("echo out; echo err >&2; exit 3");
    EXPECT_TRUE(separate.started);
    EXPECT_EQ(separate.exitCode, 3);
    EXPECT_FALSE(separate.succeeded());
    EXPECT_EQ(separate.standardOutput, "out\n");
    EXPECT_EQ(separate.standardError, "err\n");
    const CommandResult merged =
        sh("echo out; sleep 0.05; echo err >&2", std::nullopt, CommandRequest::Stderr::Merged);
    EXPECT_EQ(merged.standardOutput, "out\nerr\n");
    EXPECT_TRUE(merged.succeeded());

    CommandRequest missing;
    missing.program = QStringLiteral("/nonexistent/tool");
    EXPECT_FALSE(QProcessCommandRunner().run(missing).started);
}

TEST(QProcessCommandRunnerLive, LargeOutputNeverStallsTheChild) {
    // Far more than a pipe holds, on both channels at once.
    const CommandResult result =
        sh("head -c 8000000 /dev/zero; head -c 3000000 /dev/zero >&2", 20.0);
    EXPECT_TRUE(result.succeeded());
    EXPECT_EQ(result.standardOutput.size(), 8000000);
    EXPECT_EQ(result.standardError.size(), 3000000);
}

TEST(QProcessCommandRunnerLive, TimeOutTerminatesThenKillsAndKeepsPartialOutput) {
    QElapsedTimer timer;
    timer.start();
    // The shell ignores SIGTERM, so only the kill after the grace ends it.
    const CommandResult result =
        sh("trap '' TERM; echo partial; while :; do sleep 0.05; done", 0.3);
    EXPECT_TRUE(result.timedOut);
    EXPECT_FALSE(result.succeeded());
    EXPECT_EQ(result.standardOutput, "partial\n");
    EXPECT_LT(timer.elapsed(), 5000);
}
