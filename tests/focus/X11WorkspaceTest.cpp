#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "focus/FocusMonitor.h"
#include "platform/linux/X11Workspace.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

// Started and waited for.
QProcess& start(std::list<QProcess>& processes, const QString& program, const QStringList& args) {
    processes.emplace_back().start(program, args);
    processes.back().waitForStarted();
    return processes.back();
}

// What a window manager does, done by hand on its own connection: windows with a pid or a
// class only, the client list, the active window.
struct WindowManager {
    explicit WindowManager(const QByteArray& display) {
        xcb_connection_t* c = xcb_connect(display.constData(), &screen);
        xcb_ewmh_init_atoms_replies(&ewmh, xcb_ewmh_init_atoms(c, &ewmh), nullptr);
    }
    ~WindowManager() {
        xcb_connection_t* c = ewmh.connection;
        xcb_ewmh_connection_wipe(&ewmh);
        xcb_disconnect(c);
    }
    xcb_window_t window(qint64 pid, const QByteArray& windowClass) {
        const xcb_window_t id = xcb_generate_id(ewmh.connection);
        xcb_create_window(ewmh.connection, 0, id, ewmh.screens[screen]->root, 0, 0, 9, 9, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        if (pid > 0) {
            xcb_ewmh_set_wm_pid(&ewmh, id, pid);
        }
        const QByteArray value = QByteArray("instance") + '\0' + windowClass + '\0';
        xcb_change_property(ewmh.connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_CLASS,
                            XCB_ATOM_STRING, 8, value.size(), value.constData());
        clients.push_back(id);
        xcb_ewmh_set_client_list(&ewmh, screen, clients.size(), clients.data());
        xcb_flush(ewmh.connection);
        return id;
    }
    void activate(xcb_window_t window) {
        xcb_ewmh_set_active_window(&ewmh, screen, window);
        xcb_flush(ewmh.connection);
    }

    xcb_ewmh_connection_t ewmh{};
    int screen = 0;
    std::vector<xcb_window_t> clients;
};

}  // namespace

TEST(X11WorkspaceTest, WithoutADisplayItAnswersNothingAndSaysWhyOnceAndReadsDesktopEntries) {
    QStringList lines;
    QTemporaryDir home, system;
    QDir(system.path()).mkpath("applications");
    QFile entry(system.filePath("applications/org.example.Calc.desktop"));
    ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
    entry.write(
        "[Desktop Action new]\nName=New\n[Desktop Entry]\nName[de]=Rechner\nName = Calc \n");
    entry.close();
    X11Workspace none("", "/proc", {home.path(), system.path()}, [&](auto l) { lines << l; });
    X11Workspace refused(":139.7", "/proc", {}, [&](const QString& l) { lines << l; });
    for (X11Workspace* workspace : {&none, &refused}) {
        EXPECT_FALSE(workspace->isConnected() || workspace->frontmostApplication());
        EXPECT_TRUE(workspace->runningApplications().isEmpty());
    }
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith("[Workspace] ") &&
                lines[0].endsWith("X display: focus tracking is unavailable"));
    EXPECT_TRUE(lines[1].contains(":139.7")) << lines[1].toStdString();

    EXPECT_EQ(none.applicationNameForIdentifier("org.example.Calc"), "Calc");
    EXPECT_EQ(none.applicationNameForIdentifier("org.example.None"), "");
    EXPECT_EQ(none.applicationNameForIdentifier("../applications/org.example.Calc"), "");
    EXPECT_EQ(X11Workspace::desktopEntryName("Name=Outside\n[Other]\nName=No\n"), "");
}

TEST(X11WorkspaceLiveTest, ActiveWindowChangesBecomeFocusEventsNamedByProcessOrClass) {
    const QString xvfb = QStandardPaths::findExecutable("Xvfb");
    if (xvfb.isEmpty()) {
        GTEST_SKIP() << "Xvfb is not installed";
    }
    std::list<QProcess> children;  // the X server and the windows' owners
    const auto end = qScopeGuard([&] {
        for (QProcess& child : children) {
            child.kill();
            child.waitForFinished();
        }
    });
    QByteArray display;
    for (int n = 91; n < 140 && display.isEmpty(); ++n) {
        const QString socket = QStringLiteral("/tmp/.X11-unix/X%1").arg(n);
        if (QFile::exists(socket) || QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(n))) {
            continue;
        }
        QProcess& server =
            start(children, xvfb, {QStringLiteral(":%1").arg(n), "-nolisten", "tcp"});
        // Up when its socket is there; gone when another server took the display first.
        processEventsUntil(
            [&] { return QFile::exists(socket) || server.state() == QProcess::NotRunning; }, 10000);
        if (server.state() == QProcess::Running) {
            display = QStringLiteral(":%1").arg(n).toUtf8();
        }
    }
    ASSERT_FALSE(display.isEmpty()) << "no display from :91 to :139 was free";

    // Two owners named by the links they were started through.
    QTemporaryDir links;
    QList<qint64> pids;
    for (const QString name : {"focus-alpha", "focus-beta"}) {
        QFile::link(QStandardPaths::findExecutable("sleep"), links.filePath(name));
        pids << start(children, links.filePath(name), {"60"}).processId();
    }
    WindowManager wm(display);
    const xcb_window_t a = wm.window(pids[0], "Alpha"), b = wm.window(pids[1], "Beta"),
                       g = wm.window(0, "Gamma");
    wm.activate(a);

    QStringList lines;
    X11Workspace workspace(display, "/proc", {}, [&](const QString& line) { lines << line; });
    ASSERT_TRUE(workspace.isConnected()) << lines.join('\n').toStdString();
    QList<std::tuple<qint64, QString, bool>> running;
    for (const RunningApplication& app : workspace.runningApplications()) {
        running.append({app.pid, app.localizedName, app.isActive});
    }
    EXPECT_EQ(running, (QList<std::tuple<qint64, QString, bool>>{{pids[0], "focus-alpha", true},
                                                                 {pids[1], "focus-beta", false},
                                                                 {0, "Gamma", false}}));

    FakeClock clock;
    FocusMonitor monitor(workspace, clock);
    monitor.start();
    EXPECT_EQ(monitor.currentApp(), "focus-alpha");
    const auto switchTo = [&](double afterSeconds, xcb_window_t window, int events) {
        clock.advance(afterSeconds);
        wm.activate(window);
        return processEventsUntil([&] { return monitor.focusHistory().size() == events; }, 2000);
    };
    ASSERT_TRUE(switchTo(2, b, 1) && switchTo(1.5, g, 2) && switchTo(10, b, 3) &&
                switchTo(0.5, g, 4));
    QStringList rows;
    for (const FocusEvent& e : monitor.focusHistory()) {
        rows << QStringLiteral("%1 from %2 after %3")
                    .arg(e.appName, *e.previousApp)
                    .arg(*e.duration);
    }
    EXPECT_EQ(rows,
              QStringList({"focus-beta from focus-alpha after 2", "Gamma from focus-beta after 1.5",
                           "focus-beta from Gamma after 10", "Gamma from focus-beta after 0.5"}));
    EXPECT_EQ(monitor.lastStolenBy(), "focus-beta");
    EXPECT_EQ(workspace.frontmostApplication()->localizedName, "Gamma");

    // Stopped, the changes reach nothing.
    monitor.stop();
    EXPECT_FALSE(switchTo(1, a, 5));
    EXPECT_TRUE(lines.isEmpty()) << lines.join('\n').toStdString();
}
