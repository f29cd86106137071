#include <QCoreApplication>
#include <cerrno>

#include "platform/null/NullNotificationCenter.h"
#include "platform/null/NullPaths.h"
#include "platform/null/NullProcessSignaller.h"
#include "platform/null/NullScheduler.h"
#include "platform/null/NullSoundOutput.h"
#include "platform/null/NullVolumeSource.h"
#include "support/Testing.h"

// The Null adapters that decide something rather than merely answer nothing.
TEST(NullAdapters, RefuseDropOrPretend) {
    QObject context;
    NullScheduler().callAfter(0, &context, [] { ADD_FAILURE() << "a dropped callback ran"; });
    EXPECT_EQ(NullProcessSignaller().send(1, 9), EPERM);
    EXPECT_EQ(NullProcessSignaller().sendToMeasured({1, 5, "init"}, 9),
              (SignalResult{SignalResult::Outcome::failed, EPERM}));
    QString error;
    EXPECT_FALSE(NullVolumeSource().measure("/", &error) || error.isEmpty());
    EXPECT_EQ(NullPaths("/tmp/x").stateDirectory(kZelvar2Folder), "/tmp/x/Zelvar2");
    NullSoundOutput sound;
    EXPECT_TRUE(sound.playSystemSound("Glass") && sound.playFile("/a.wav", error));
    int status = -1;
    NullNotificationCenter().getAuthorizationStatus([&](int s) { status = s; });
    EXPECT_EQ(status, NotificationCenter::Denied);
    QCoreApplication::processEvents();
}
