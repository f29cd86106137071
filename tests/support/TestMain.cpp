#include <gmock/gmock.h>

#include <QCoreApplication>

#include "common/ProcessOrigin.h"

// Tests run with a Qt application so that queued calls, timers and threads behave as in the
// product, and with the system origin styled as the app's start-up styles it.
int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    QCoreApplication app(argc, argv);
    zelvar::ProcessOrigin::setSystemStyle(zelvar::linuxSystemProfile().systemOrigin);
    return RUN_ALL_TESTS();
}
