#include <gmock/gmock.h>

#include <QGuiApplication>

// The menu bar tests draw images, which needs a GUI application (offscreen in the tests).
int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
