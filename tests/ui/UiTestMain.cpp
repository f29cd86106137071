#include <gmock/gmock.h>

#include <QApplication>

#include "common/ProcessOrigin.h"
#include "ui/Symbols.h"

// The dashboard's tests build real widgets: a QApplication, offscreen unless told otherwise,
// with the symbol theme installed as the application installs it.
int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    zelvar::ProcessOrigin::setSystemStyle(zelvar::linuxSystemProfile().systemOrigin);
    zelvar::installSymbolTheme();
    return RUN_ALL_TESTS();
}
