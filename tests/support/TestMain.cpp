#include <gmock/gmock.h>

#include <QCoreApplication>

// Tests run with a Qt application so that queued calls, timers and threads behave as in the
// product.
int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
