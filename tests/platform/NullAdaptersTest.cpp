#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QObject>
#include <cerrno>

#include "platform/null/NullActivationPolicy.h"
#include "platform/null/NullClock.h"
#include "platform/null/NullCommandRunner.h"
#include "platform/null/NullInterfaceCounters.h"
#include "platform/null/NullNetworkNameSource.h"
#include "platform/null/NullNotificationCenter.h"
#include "platform/null/NullPaths.h"
#include "platform/null/NullProcessNetworkSource.h"
#include "platform/null/NullProcessSignaller.h"
#include "platform/null/NullProcessTable.h"
#include "platform/null/NullScheduler.h"
#include "platform/null/NullServiceJobs.h"
#include "platform/null/NullSoundOutput.h"
#include "platform/null/NullVolumeSource.h"

using namespace zelvar;

// What the callers of a Null adapter rely on: nothing is available and nothing is done.
TEST(NullAdapters, AnswerNothingAndDoNothing) {
    EXPECT_EQ(NullClock().now(), NullClock().now());
    QObject context;
    NullScheduler().callAfter(0, &context, [] { ADD_FAILURE() << "a dropped callback ran"; });
    EXPECT_FALSE(NullCommandRunner().run({}).started);
    EXPECT_FALSE(NullInterfaceCounters().read());
    EXPECT_TRUE(NullNetworkNameSource().read().text.isEmpty());
    EXPECT_TRUE(NullProcessNetworkSource().read().text.isEmpty());
    EXPECT_EQ(NullProcessSignaller().send(1, 9), EPERM);
    NullProcessTable table;
    EXPECT_FALSE(table.list() || table.name(1) || table.residentBytes(1));
    EXPECT_TRUE(NullServiceJobs().runningJobListings().isEmpty());
    QString error;
    EXPECT_FALSE(NullVolumeSource().listVolumes().present);
    EXPECT_FALSE(NullVolumeSource().measure("/", &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(NullPaths("/tmp/x").stateDirectory(kZelvar2Folder), "/tmp/x/Zelvar2");
    QString silentError;
    NullSoundOutput sound;
    EXPECT_TRUE(sound.playSystemSound("Glass") && sound.playFile("/a.wav", silentError));
    NullActivationPolicy().setRegular();
    int status = -1;
    NullNotificationCenter().getAuthorizationStatus([&](int s) { status = s; });
    EXPECT_EQ(status, NotificationCenter::Denied);
    QCoreApplication::processEvents();
}
