#pragma once

#include <QString>

namespace zelvar {

// The application folders that files live in, named as macOS names them; each adapter applies
// its own system's naming (lower case under XDG).
inline const QString kZelvar2Folder = QStringLiteral("Zelvar2");
inline const QString kWattlogFolder = QStringLiteral("Wattlog");

// This system's base locations. Each subsystem names its own files inside them (a static
// defaultFile(const Paths&) beside the code that reads the file); the adapter only knows each
// system's conventions: Application Support, Logs and the user's temporary folder on macOS, the
// XDG base directories on Linux.
class Paths {
public:
    virtual ~Paths() = default;

    virtual QString homeDirectory() const = 0;
    // Files an application keeps and shares with the daemon: daily usage, disk events, the
    // power history.
    virtual QString dataDirectory(const QString& app) const = 0;
    // Logs and other state worth keeping but not backing up: the daemon's disk I/O log.
    virtual QString stateDirectory(const QString& app) const = 0;
    // Settings files of an application.
    virtual QString configDirectory(const QString& app) const = 0;
    // Files that live only while the user is logged in: sockets, locks.
    virtual QString runtimeDirectory(const QString& app) const = 0;
};

}  // namespace zelvar
