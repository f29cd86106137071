#pragma once

#include <QList>

#include "app/report/ReportKind.h"

namespace zelvar {

// Every report, in the order of the usage text. A new report is one more entry.
QList<ReportKind> reportKinds();

// Runs `kind` with the options the command line checked; returns the process exit code.
// Needs a running Q(Core)Application.
int runReportCommand(const ReportKind& kind, const ReportOptions& options);

}  // namespace zelvar
