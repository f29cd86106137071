#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "app/report/ReportKind.h"

namespace zelvar {

// The one grammar of `zelvar2`: the tray app (optionally with --dashboard), `report <what>
// [options]`, help at each level and --version. Parsing needs no application object, so that
// a command line that is refused or only asks for help starts nothing.
class CommandLine {
public:
    enum class Action {
        TrayApp,          // start the tray application
        Report,           // run `report` with `options`
        Exit,             // print `output` and exit with `exitCode`
        UninstallDaemon,  // remove the daemon's agent and stop the daemon
    };

    struct Command {
        Action action = Action::TrayApp;
        bool dashboard = false;
        std::optional<ReportKind> report;
        ReportOptions options;
        QString output;  // for standard output
        QString errors;  // for standard error, before anything runs: refusals and notes
        int exitCode = 0;
    };

    // `arguments` are the words after the program's name.
    static Command parse(const QStringList& arguments);
};

}  // namespace zelvar
