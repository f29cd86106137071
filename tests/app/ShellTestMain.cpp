#include <gmock/gmock.h>

#include <QApplication>

// The shell's tests need widgets and the menu bar's draw: a QApplication, offscreen unless told
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
