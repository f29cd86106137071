#include "app/report/ReportCommand.h"

#include <QTextStream>
#include <cstdio>
#include <optional>

#include "app/SystemServices.h"
#include "app/report/DiskReport.h"
#include "app/report/NetworkReport.h"
#include "app/report/ProcessesReport.h"
#include "app/report/TreeReport.h"
#include "common/Log.h"

namespace zelvar {
namespace {

// Every report, in the order of the usage text. A new report is one more entry.
QList<ReportKind> reportKinds() {
    return {ProcessesReport::kind(), TreeReport::kind(), DiskReport::kind(), NetworkReport::kind()};
}

void printUsage(QTextStream& err) {
    err << "usage: zelvar2 report <what> [options]\n";
    for (const ReportKind& kind : reportKinds()) {
        err << "  zelvar2 report " << kind.usage << '\n';
    }
    err << "Common options: --verbose (the monitors' log on standard error)\n";
}

}  // namespace

int runReportCommand(const QStringList& arguments) {
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (arguments.isEmpty() || arguments.first() == u"--help" || arguments.first() == u"-h") {
        printUsage(err);
        return arguments.isEmpty() ? 2 : 0;
    }
    const QList<ReportKind> kinds = reportKinds();
    const auto kind = std::find_if(kinds.begin(), kinds.end(), [&](const ReportKind& k) {
        return k.name == arguments.first();
    });
    if (kind == kinds.end()) {
        err << "zelvar2: unknown report \"" << arguments.first() << "\"\n";
        printUsage(err);
        return 2;
    }
    QString error;
    const auto options = ReportOptions::parse(arguments.mid(1), kind->valueOptions, &error);
    if (!options) {
        err << "zelvar2: " << error << '\n';
        printUsage(err);
        return 2;
    }

    // Standard output carries the report alone, so the monitors' log goes to standard error
    // when asked for, and nowhere otherwise.
    const bool verbose = options->flag(QStringLiteral("verbose"));
    LogRedirect redirect([verbose](const QString& line) {
        if (verbose) {
            std::fprintf(stderr, "%s\n", line.toUtf8().constData());
        }
    });
    std::optional<SystemServices> services;
    std::optional<Monitors> monitors;
    const auto build = [&]() -> Monitors& {
        services.emplace();
        return monitors.emplace(services->silentPorts(), Monitors::Mode::Headless, kind->monitors);
    };
    return kind->run(*options, build, out, err);
}

}  // namespace zelvar
