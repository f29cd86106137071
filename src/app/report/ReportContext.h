#pragma once

#include <QTextStream>

#include "app/SystemServices.h"
#include "app/report/ReportOptions.h"

namespace zelvar {

// What every report gets: its parsed options, the system's adapters and the two streams.
struct ReportContext {
    const ReportOptions& options;
    SystemServices& services;
    QTextStream& out;
    QTextStream& err;
};

// One kind of report: the options that take a value, and the function that runs it.
struct ReportKind {
    QString name;
    QString usage;
    QSet<QString> valueOptions;
    int (*run)(ReportContext& context);
};

}  // namespace zelvar
