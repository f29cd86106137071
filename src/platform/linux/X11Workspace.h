#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>

#include "platform/Workspace.h"

namespace zelvar {

// The desktop's applications from an X server's EWMH properties, as window managers publish
// them: the root window's _NET_ACTIVE_WINDOW and _NET_CLIENT_LIST, each client's _NET_WM_PID
// and WM_CLASS. An application is named by its process's name (read under `procRoot`), or by
// its window class when the window names no pid. Activations are the changes of
// _NET_ACTIVE_WINDOW, read from the connection on the main thread as the server sends them
// (no polling). Without a display, or on a server that refuses the connection, every answer
// is empty and one log line says that focus tracking is unavailable. Main thread only.
class X11Workspace final : public QObject, public Workspace {
    Q_OBJECT

public:
    // `display` as in $DISPLAY (empty: none); `dataDirectories` are searched for desktop
    // entries in order (XDG_DATA_HOME first, then XDG_DATA_DIRS); `log` takes the line that
    // says why focus tracking is unavailable.
    X11Workspace(const QByteArray& display, const QString& procRoot, QStringList dataDirectories,
                 std::function<void(const QString& line)> log, QObject* parent = nullptr);
    ~X11Workspace() override;

    // The data folders of the XDG base directory rules, from the environment.
    static QStringList xdgDataDirectories();
    // The Name= of a desktop entry's [Desktop Entry] group; empty when it has none.
    static QString desktopEntryName(QByteArrayView text);

    // Whether the server was reached.
    bool isConnected() const;

    std::optional<RunningApplication> frontmostApplication() override;
    QList<RunningApplication> runningApplications() override;
    void subscribeActivations(std::function<void(const RunningApplication&)> activated) override;
    void unsubscribeActivations() override;
    QString applicationNameForIdentifier(const QString& identifier) override;

private:
    struct Connection;
    void readEvents();

    std::unique_ptr<Connection> m_x;
    QStringList m_dataDirectories;
    std::function<void(const RunningApplication&)> m_activated;
};

}  // namespace zelvar
