#include "app/report/ReportCommand.h"

#include <QTextStream>
#include <cstdio>

#include "app/SystemServices.h"
#include "app/report/AudioReport.h"
#include "app/report/DaemonReport.h"
#include "app/report/DiskReport.h"
#include "app/report/FocusReport.h"
#include "app/report/HistoryReport.h"
#include "app/report/NetworkReport.h"
#include "app/report/PowerReport.h"
#include "app/report/ProcessesReport.h"
#include "app/report/TreeReport.h"
#include "common/Log.h"

namespace zelvar {

QList<ReportKind> reportKinds() {
    return {ProcessesReport::kind(), TreeReport::kind(),  DiskReport::kind(),
            NetworkReport::kind(),   PowerReport::kind(), HistoryReport::kind(),
            DaemonReport::kind(),    AudioReport::kind(), FocusReport::kind()};
}

int runReportCommand(const ReportKind& kind, const ReportOptions& options) {
    QTextStream out(stdout);
    // Standard output carries the report alone, so the monitors' log goes to standard error
    // when asked for, and nowhere otherwise.
    const bool verbose = options.flag(QStringLiteral("verbose"));
    LogRedirect redirect([verbose](const QString& line) {
        if (verbose) {
            std::fprintf(stderr, "%s\n", line.toUtf8().constData());
        }
    });
    SystemServices services;
    Monitors monitors(services.silentPorts(), Monitors::Mode::Headless, kind.monitors);
    return kind.run(options, monitors, out);
}

}  // namespace zelvar
