#pragma once

#include <QString>
#include <QStringList>

namespace zelvar {

// Starts a program that outlives its caller: in a session of its own, with no terminal,
// standard input from nowhere and its output appended to two files.
class DaemonLauncher {
public:
    virtual ~DaemonLauncher() = default;
    // False, with the reason in `error`, when the program couldn't be started.
    virtual bool startDetached(const QString& program, const QStringList& arguments,
                               const QString& standardOutputFile, const QString& standardErrorFile,
                               QString* error) = 0;
};

}  // namespace zelvar
