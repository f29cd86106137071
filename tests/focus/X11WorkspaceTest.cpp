#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include "focus/FocusMonitor.h"
#include "platform/linux/X11Workspace.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

// An X server of the test's own on the first free display from :91, killed at the end.
class PrivateXServer {
public:
    PrivateXServer() {
        const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
        if (xvfb.isEmpty()) {
            return;
        }
        for (int display = 91; display < 140 && m_display.isEmpty(); ++display) {
            const QString socket = QStringLiteral("/tmp/.X11-unix/X%1").arg(display);
            if (QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(display)) ||
                QFile::exists(socket)) {
                continue;
            }
            m_server.start(xvfb, {QStringLiteral(":%1").arg(display), QStringLiteral("-screen"),
                                  "0", "640x480x24", "-nolisten", "tcp"});
            // Up when its socket is there; gone when another server took the display first.
            processEventsUntil(
                [&] { return QFile::exists(socket) || m_server.state() == QProcess::NotRunning; },
                10000);
            if (m_server.state() == QProcess::Running && QFile::exists(socket)) {
                m_display = QStringLiteral(":%1").arg(display).toLocal8Bit();
            } else {
                stop();
            }
        }
    }
    ~PrivateXServer() { stop(); }

    bool installed() const {
        return !QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty();
    }
    const QByteArray& display() const { return m_display; }

private:
    void stop() {
        if (m_server.state() != QProcess::NotRunning) {
            m_server.kill();
            m_server.waitForFinished(5000);
        }
    }

    QProcess m_server;
    QByteArray m_display;
};

// What a window manager does, done by hand: windows with a pid or a class, the client list, the
// active window on the root.
class Desktop {
public:
    explicit Desktop(const QByteArray& display) {
        m_connection = xcb_connect(display.constData(), &m_screen);
        xcb_ewmh_init_atoms_replies(&m_ewmh, xcb_ewmh_init_atoms(m_connection, &m_ewmh), nullptr);
        m_root = m_ewmh.screens[m_screen]->root;
    }
    ~Desktop() {
        xcb_ewmh_connection_wipe(&m_ewmh);
        xcb_disconnect(m_connection);
    }

    // A window owned by process `pid` (0: no _NET_WM_PID) with the class `windowClass`.
    xcb_window_t window(qint64 pid, const QByteArray& windowClass) {
        const xcb_window_t id = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, id, m_root, 0, 0, 100, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        if (pid > 0) {
            xcb_ewmh_set_wm_pid(&m_ewmh, id, static_cast<uint32_t>(pid));
        }
        const QByteArray value = windowClass.toLower() + '\0' + windowClass + '\0';
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_CLASS,
                            XCB_ATOM_STRING, 8, value.size(), value.constData());
        xcb_map_window(m_connection, id);
        m_clients.push_back(id);
        xcb_ewmh_set_client_list(&m_ewmh, m_screen, m_clients.size(), m_clients.data());
        xcb_flush(m_connection);
        return id;
    }
    void activate(xcb_window_t window) {
        xcb_ewmh_set_active_window(&m_ewmh, m_screen, window);
        xcb_flush(m_connection);
    }

private:
    xcb_connection_t* m_connection = nullptr;
    xcb_ewmh_connection_t m_ewmh{};
    int m_screen = 0;
    xcb_window_t m_root = XCB_NONE;
    std::vector<xcb_window_t> m_clients;
};

// A process named `name`: sleep started through a link of that name.
struct NamedProcess {
    NamedProcess(const QTemporaryDir& folder, const QString& name) {
        const QString link = folder.filePath(name);
        QFile::link(QStandardPaths::findExecutable(QStringLiteral("sleep")), link);
        process.start(link, {QStringLiteral("60")});
        process.waitForStarted();
    }
    ~NamedProcess() {
        process.kill();
        process.waitForFinished();
    }
    qint64 pid() const { return process.processId(); }

    QProcess process;
};

}  // namespace

TEST(X11WorkspaceTest, WithoutADisplayEverythingIsEmptyAndOneLineSaysWhy) {
    QStringList lines;
    X11Workspace none("", "/proc", {}, [&](const QString& line) { lines << line; });
    X11Workspace refused(":139.7", "/proc", {}, [&](const QString& line) { lines << line; });
    for (X11Workspace* workspace : {&none, &refused}) {
        EXPECT_FALSE(workspace->isConnected());
        EXPECT_FALSE(workspace->frontmostApplication());
        EXPECT_TRUE(workspace->runningApplications().isEmpty());
    }
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith("[Workspace] ")) << lines[0].toStdString();
    EXPECT_TRUE(lines[0].endsWith("X display: focus tracking is unavailable"));
    EXPECT_TRUE(lines[1].contains(":139.7")) << lines[1].toStdString();
}

TEST(X11WorkspaceTest, DesktopEntryNameIsTheMainGroupsUnlocalizedName) {
    EXPECT_EQ(X11Workspace::desktopEntryName("[Desktop Action new]\nName=New Window\n"
                                             "[Desktop Entry]\nType=Application\n"
                                             "Name[de]=Rechner\nName = Calculator \n"
                                             "GenericName=Calc\n"),
              "Calculator");
    EXPECT_EQ(X11Workspace::desktopEntryName("Name=Outside any group\n[Other]\nName=No\n"), "");
    EXPECT_EQ(X11Workspace::desktopEntryName(""), "");

    QTemporaryDir home, system;
    QDir(system.path()).mkpath("applications");
    QFile entry(system.filePath("applications/org.example.Calc.desktop"));
    ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
    entry.write("[Desktop Entry]\nName=Calculator\n");
    entry.close();
    X11Workspace workspace("", "/proc", {home.path(), system.path()}, [](const QString&) {});
    EXPECT_EQ(workspace.applicationNameForIdentifier("org.example.Calc"), "Calculator");
    EXPECT_EQ(workspace.applicationNameForIdentifier("org.example.None"), "");
    EXPECT_EQ(workspace.applicationNameForIdentifier("../applications/org.example.Calc"), "");
}

TEST(X11WorkspaceLiveTest, ActiveWindowChangesBecomeFocusEventsNamedByProcessOrClass) {
    PrivateXServer server;
    if (!server.installed()) {
        GTEST_SKIP() << "Xvfb is not installed";
    }
    ASSERT_FALSE(server.display().isEmpty()) << "no display from :91 to :139 was free";
    QTemporaryDir links;
    NamedProcess alpha(links, "focus-alpha"), beta(links, "focus-beta");
    Desktop desktop(server.display());
    const xcb_window_t a = desktop.window(alpha.pid(), "Alpha");
    const xcb_window_t b = desktop.window(beta.pid(), "Beta");
    const xcb_window_t g = desktop.window(0, "Gamma");
    desktop.activate(a);

    QStringList lines;
    X11Workspace workspace(server.display(), "/proc", {},
                           [&](const QString& line) { lines << line; });
    ASSERT_TRUE(workspace.isConnected()) << lines.join('\n').toStdString();
    using App = std::tuple<qint64, QString, bool>;
    const auto app = [](const RunningApplication& a) {
        return App(a.pid, a.localizedName, a.isActive);
    };
    ASSERT_TRUE(workspace.frontmostApplication());
    EXPECT_EQ(app(*workspace.frontmostApplication()), App(alpha.pid(), "focus-alpha", true));
    QList<App> running;
    for (const RunningApplication& a : workspace.runningApplications()) {
        running << app(a);
    }
    EXPECT_EQ(running, (QList<App>{{alpha.pid(), "focus-alpha", true},
                                   {beta.pid(), "focus-beta", false},
                                   {0, "Gamma", false}}));

    FakeClock clock;
    FocusMonitor monitor(workspace, clock);
    monitor.start();
    EXPECT_EQ(monitor.currentApp(), "focus-alpha");
    const auto switchTo = [&](double afterSeconds, xcb_window_t window) {
        clock.advance(afterSeconds);
        const qsizetype before = monitor.focusHistory().size();
        desktop.activate(window);
        return processEventsUntil([&] { return monitor.focusHistory().size() > before; });
    };
    ASSERT_TRUE(switchTo(2, b));
    ASSERT_TRUE(switchTo(1.5, g));
    ASSERT_TRUE(switchTo(10, b));
    ASSERT_TRUE(switchTo(0.5, g));

    const QList<FocusEvent>& events = monitor.focusHistory();
    ASSERT_EQ(events.size(), 4);
    const auto row = [](const FocusEvent& e) {
        return std::tuple(e.appName, e.previousApp.value_or("-"), e.duration.value_or(-1));
    };
    EXPECT_EQ(row(events[0]), std::tuple(QString("focus-beta"), QString("focus-alpha"), 2.0));
    EXPECT_EQ(row(events[1]), std::tuple(QString("Gamma"), QString("focus-beta"), 1.5));
    EXPECT_EQ(row(events[2]), std::tuple(QString("focus-beta"), QString("Gamma"), 10.0));
    EXPECT_EQ(row(events[3]), std::tuple(QString("Gamma"), QString("focus-beta"), 0.5));
    EXPECT_EQ(monitor.lastStolenBy(), "focus-beta");
    EXPECT_EQ(workspace.frontmostApplication()->localizedName, "Gamma");

    // Stopped, the changes reach nothing.
    monitor.stop();
    desktop.activate(a);
    EXPECT_FALSE(processEventsUntil([&] { return monitor.focusHistory().size() > 4; }, 300));
    EXPECT_EQ(monitor.currentApp(), "Gamma");
    EXPECT_TRUE(lines.isEmpty()) << lines.join('\n').toStdString();
}
