#include <gmock/gmock.h>

#include <QApplication>

// The shell's tests need widgets: a QApplication, on the offscreen platform unless told
// otherwise, so that they run without a display and without a system tray.
int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
