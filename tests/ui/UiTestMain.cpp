#include <gmock/gmock.h>

#include <QApplication>

// The dashboard's tests build widgets: a QApplication, offscreen unless told otherwise.
int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
