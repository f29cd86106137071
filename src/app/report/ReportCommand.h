#pragma once

#include <QStringList>

namespace zelvar {

// `zelvar2 report <what> [options]`. `arguments` are the words after "report". Returns the
// process exit code. Needs a running Q(Core)Application.
int runReportCommand(const QStringList& arguments);

}  // namespace zelvar
