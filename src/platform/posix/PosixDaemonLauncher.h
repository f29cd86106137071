#pragma once

#include "platform/DaemonLauncher.h"

namespace zelvar {

// fork, setsid, fork again (so the program is nobody's child and never a zombie of the
// caller), the output files opened for appending, then exec.
class PosixDaemonLauncher final : public DaemonLauncher {
public:
    bool startDetached(const QString& program, const QStringList& arguments,
                       const QString& standardOutputFile, const QString& standardErrorFile,
                       QString* error) override;
};

}  // namespace zelvar
