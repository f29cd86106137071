#include "platform/linux/X11Workspace.h"

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <QDir>
#include <QFile>
#include <QSet>
#include <QSocketNotifier>
#include <QTimer>
#include <cstdlib>

#include "platform/linux/LinuxProcessTable.h"

namespace zelvar {
namespace {

constexpr qsizetype kMaxDesktopEntryBytes = 1 << 20;

QString unavailable(const QString& why) {
    return QStringLiteral("[Workspace] %1: focus tracking is unavailable").arg(why);
}

}  // namespace

struct X11Workspace::Connection {
    xcb_connection_t* connection = nullptr;
    xcb_ewmh_connection_t ewmh{};
    bool ewmhReady = false;
    int screen = 0;
    xcb_window_t root = XCB_NONE;
    std::unique_ptr<QSocketNotifier> notifier;
    LinuxProcessTable processes;
    std::function<void(const QString&)> log;
    bool lostLogged = false;

    Connection(const QString& procRoot, std::function<void(const QString&)> log)
        : processes(procRoot), log(std::move(log)) {}
    ~Connection() {
        notifier.reset();
        if (ewmhReady) {
            xcb_ewmh_connection_wipe(&ewmh);
        }
        if (connection) {
            xcb_disconnect(connection);
        }
    }

    bool usable() {
        if (!ewmhReady || xcb_connection_has_error(connection)) {
            if (ewmhReady && !lostLogged) {
                lostLogged = true;
                log(unavailable(QStringLiteral("Lost the connection to the X server")));
            }
            return false;
        }
        return true;
    }

    std::optional<xcb_window_t> activeWindow() {
        xcb_window_t window = XCB_NONE;
        if (!xcb_ewmh_get_active_window_reply(&ewmh, xcb_ewmh_get_active_window(&ewmh, screen),
                                              &window, nullptr) ||
            window == XCB_NONE) {
            return std::nullopt;
        }
        return window;
    }

    // The window's class, the second of WM_CLASS's two NUL-terminated strings (the first is
    // the instance).
    QString windowClass(xcb_window_t window) {
        const xcb_get_property_cookie_t cookie =
            xcb_get_property(connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 256);
        xcb_get_property_reply_t* reply = xcb_get_property_reply(connection, cookie, nullptr);
        if (!reply) {
            return {};
        }
        const QByteArray value(static_cast<const char*>(xcb_get_property_value(reply)),
                               xcb_get_property_value_length(reply));
        std::free(reply);
        const QList<QByteArray> parts = value.split('\0');
        return parts.size() >= 2 ? QString::fromUtf8(parts[1]) : QString();
    }

    RunningApplication application(xcb_window_t window) {
        RunningApplication application;
        uint32_t pid = 0;
        if (xcb_ewmh_get_wm_pid_reply(&ewmh, xcb_ewmh_get_wm_pid(&ewmh, window), &pid, nullptr)) {
            application.pid = pid;
        }
        if (application.pid > 0) {
            application.localizedName = processes.name(application.pid).value_or(QString());
        }
        if (application.localizedName.isEmpty()) {
            application.localizedName = windowClass(window);
        }
        return application;
    }
};

X11Workspace::X11Workspace(const QByteArray& display, const QString& procRoot,
                           QStringList dataDirectories, std::function<void(const QString&)> log,
                           QObject* parent)
    : QObject(parent),
      m_x(std::make_unique<Connection>(procRoot, std::move(log))),
      m_dataDirectories(std::move(dataDirectories)) {
    if (display.isEmpty()) {
        m_x->log(unavailable(qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
                                 ? QStringLiteral("No X display")
                                 : QStringLiteral("A Wayland session without an X display")));
        return;
    }
    m_x->connection = xcb_connect(display.constData(), &m_x->screen);
    if (xcb_connection_has_error(m_x->connection)) {
        m_x->log(unavailable(QStringLiteral("Can't connect to the X display %1")
                                 .arg(QString::fromLocal8Bit(display))));
        return;
    }
    if (!xcb_ewmh_init_atoms_replies(&m_x->ewmh, xcb_ewmh_init_atoms(m_x->connection, &m_x->ewmh),
                                     nullptr)) {
        m_x->log(unavailable(QStringLiteral("The X display %1 has no EWMH atoms")
                                 .arg(QString::fromLocal8Bit(display))));
        return;
    }
    if (m_x->screen < 0 || m_x->screen >= m_x->ewmh.nb_screens) {
        xcb_ewmh_connection_wipe(&m_x->ewmh);
        m_x->log(unavailable(QStringLiteral("The X display %1 has no screen %2")
                                 .arg(QString::fromLocal8Bit(display))
                                 .arg(m_x->screen)));
        return;
    }
    m_x->ewmhReady = true;
    m_x->root = m_x->ewmh.screens[m_x->screen]->root;
    // Property changes of the root window: the window manager's _NET_ACTIVE_WINDOW among them.
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_x->connection, m_x->root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(m_x->connection);
    m_x->notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_x->connection),
                                                      QSocketNotifier::Read);
    connect(m_x->notifier.get(), &QSocketNotifier::activated, this, &X11Workspace::readEvents);
}

X11Workspace::~X11Workspace() = default;

QStringList X11Workspace::xdgDataDirectories() {
    QString home = qEnvironmentVariable("XDG_DATA_HOME");
    if (home.isEmpty()) {
        home = QDir::homePath() + QStringLiteral("/.local/share");
    }
    QString system = qEnvironmentVariable("XDG_DATA_DIRS");
    if (system.isEmpty()) {
        system = QStringLiteral("/usr/local/share:/usr/share");
    }
    return QStringList{home} + system.split(':', Qt::SkipEmptyParts);
}

QString X11Workspace::desktopEntryName(QByteArrayView text) {
    bool inEntry = false;
    for (const QByteArray& raw : text.toByteArray().split('\n')) {
        const QByteArrayView line = QByteArrayView(raw).trimmed();
        if (line.startsWith('[')) {
            inEntry = line == "[Desktop Entry]";
        } else if (inEntry && line.startsWith("Name")) {
            const qsizetype equals = line.indexOf('=');
            if (equals > 0 && line.first(equals).trimmed() == "Name") {
                return QString::fromUtf8(line.sliced(equals + 1).trimmed());
            }
        }
    }
    return {};
}

bool X11Workspace::isConnected() const {
    return m_x->ewmhReady && !xcb_connection_has_error(m_x->connection);
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    if (!m_x->usable()) {
        return std::nullopt;
    }
    const std::optional<xcb_window_t> window = m_x->activeWindow();
    // A reply may have brought events with it, which the socket no longer announces.
    QTimer::singleShot(0, this, &X11Workspace::readEvents);
    if (!window) {
        return std::nullopt;
    }
    RunningApplication application = m_x->application(*window);
    application.isActive = true;
    return application;
}

QList<RunningApplication> X11Workspace::runningApplications() {
    if (!m_x->usable()) {
        return {};
    }
    xcb_ewmh_get_windows_reply_t clients{};
    if (!xcb_ewmh_get_client_list_reply(
            &m_x->ewmh, xcb_ewmh_get_client_list(&m_x->ewmh, m_x->screen), &clients, nullptr)) {
        return {};
    }
    const xcb_window_t active = m_x->activeWindow().value_or(XCB_NONE);
    QList<RunningApplication> applications;
    QSet<QString> seen;
    for (uint32_t i = 0; i < clients.windows_len; ++i) {
        RunningApplication application = m_x->application(clients.windows[i]);
        // One process may own several windows: it is one application.
        const QString key = application.pid > 0
                                ? QString::number(application.pid)
                                : QStringLiteral("class:") + application.localizedName;
        const bool isActive = clients.windows[i] == active;
        if (seen.contains(key)) {
            if (isActive) {
                for (RunningApplication& known : applications) {
                    known.isActive =
                        known.isActive || (known.pid == application.pid &&
                                           known.localizedName == application.localizedName);
                }
            }
            continue;
        }
        seen.insert(key);
        application.isActive = isActive;
        applications.append(application);
    }
    xcb_ewmh_get_windows_reply_wipe(&clients);
    QTimer::singleShot(0, this, &X11Workspace::readEvents);
    return applications;
}

void X11Workspace::subscribeActivations(std::function<void(const RunningApplication&)> activated) {
    m_activated = std::move(activated);
}

void X11Workspace::unsubscribeActivations() {
    m_activated = nullptr;
}

QString X11Workspace::applicationNameForIdentifier(const QString& identifier) {
    if (identifier.isEmpty() || identifier.contains('/')) {
        return {};
    }
    for (const QString& directory : m_dataDirectories) {
        QFile entry(directory + QStringLiteral("/applications/") + identifier +
                    QStringLiteral(".desktop"));
        if (entry.open(QIODevice::ReadOnly)) {
            const QString name = desktopEntryName(entry.read(kMaxDesktopEntryBytes));
            if (!name.isEmpty()) {
                return name;
            }
        }
    }
    return {};
}

void X11Workspace::readEvents() {
    if (!m_x->usable()) {
        if (m_x->notifier) {
            m_x->notifier->setEnabled(false);
        }
        return;
    }
    bool activeChanged = false;
    while (xcb_generic_event_t* event = xcb_poll_for_event(m_x->connection)) {
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
            const auto* property = reinterpret_cast<xcb_property_notify_event_t*>(event);
            activeChanged = activeChanged || (property->window == m_x->root &&
                                              property->atom == m_x->ewmh._NET_ACTIVE_WINDOW);
        }
        std::free(event);
    }
    // The notification carries no value, so a burst read at once can only tell the window that
    // holds the focus now: one activation.
    if (!activeChanged || !m_activated) {
        return;
    }
    const std::optional<xcb_window_t> window = m_x->activeWindow();
    if (window) {
        RunningApplication application = m_x->application(*window);
        application.isActive = true;
        if (m_activated) {
            m_activated(application);
        }
    }
    QTimer::singleShot(0, this, &X11Workspace::readEvents);
}

}  // namespace zelvar
