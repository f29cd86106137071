#include "app/CommandLine.h"

#include <QCommandLineParser>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <cmath>

#include "app/report/ReportCommand.h"
#include "common/TerminalText.h"

namespace zelvar {
namespace {

using Command = CommandLine::Command;

// What one level of the command line accepts: `command` is how the user calls it, which
// the usage hint repeats.
struct Grammar {
    QString command;
    QList<QCommandLineOption> flags;
    QList<ReportOption> values;
};

QCommandLineOption helpOption() {
    return {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help")};
}

// "a, b and c", or with `last` = "or", "a, b or c".
QString listed(QStringList words, const QString& last = QStringLiteral("and")) {
    if (words.size() < 2) {
        return words.join(QString());
    }
    const QString final = words.takeLast();
    return words.join(QStringLiteral(", ")) + QLatin1Char(' ') + last + QLatin1Char(' ') + final;
}

Command exiting(int code, QString output, QString errors = {}) {
    Command command;
    command.action = CommandLine::Action::Exit;
    command.exitCode = code;
    command.output = std::move(output);
    command.errors = std::move(errors);
    return command;
}

// A refusal: one line that names the argument, and where to read more. The argument is the
// user's own text, so it is shown escaped: a newline or a terminal control sequence in it
// neither breaks the line nor reaches the terminal.
Command refused(const Grammar& grammar, const QString& message) {
    return exiting(2, {},
                   QStringLiteral("zelvar2: %1\nTry '%2 --help'.\n")
                       .arg(TerminalText::escaped(message), grammar.command));
}

void declare(QCommandLineParser& parser, const Grammar& grammar) {
    for (const QCommandLineOption& flag : grammar.flags) {
        parser.addOption(flag);
    }
    for (const ReportOption& option : grammar.values) {
        parser.addOption(QCommandLineOption(
            option.name,
            option.defaultText.isEmpty()
                ? QStringLiteral("%1: %2").arg(option.description, option.accepts())
                : QStringLiteral("%1: %2 (default: %3)")
                      .arg(option.description, option.accepts(), option.defaultText),
            option.valueName));
    }
}

// Every option of `grammar` as the user spells it.
QStringList spelled(const Grammar& grammar) {
    QStringList names;
    for (const QCommandLineOption& flag : grammar.flags) {
        names << QStringLiteral("--") + flag.names().constLast();
    }
    for (const ReportOption& option : grammar.values) {
        names << QStringLiteral("--") + option.name;
    }
    return names;
}

// Why the parser refused `arguments`, naming the first argument at fault: QCommandLineParser
// reports value errors before unknown options and says nothing of what would be accepted.
QString refusal(const QCommandLineParser& parser, const Grammar& grammar,
                const QStringList& arguments) {
    QSet<QString> flags;
    for (const QCommandLineOption& flag : grammar.flags) {
        for (const QString& name : flag.names()) {
            flags.insert(name);
        }
    }
    const auto unknown = [&](const QString& option) {
        return QStringLiteral("unknown option %1; %2 takes %3")
            .arg(option, grammar.command, listed(spelled(grammar)));
    };
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (argument == u"--") {
            break;
        }
        if (!argument.startsWith(QLatin1Char('-')) || argument == u"-") {
            continue;
        }
        if (!argument.startsWith(QLatin1String("--"))) {
            for (const QChar letter : argument.mid(1)) {
                if (!flags.contains(QString(letter))) {
                    return unknown(QStringLiteral("-") + letter);
                }
            }
            continue;
        }
        const QString name = argument.mid(2).section(QLatin1Char('='), 0, 0);
        const bool withValue = argument.contains(QLatin1Char('='));
        const auto option = std::ranges::find(grammar.values, name, &ReportOption::name);
        if (option != grammar.values.end()) {
            if (!withValue && i + 1 == arguments.size()) {
                return QStringLiteral("--%1 needs a value: %2").arg(name, option->accepts());
            }
            i += withValue ? 0 : 1;
        } else if (!flags.contains(name)) {
            return unknown(QStringLiteral("--") + name);
        } else if (withValue) {
            return QStringLiteral("--%1 takes no value, not \"%2\"")
                .arg(name, argument.section(QLatin1Char('='), 1));
        }
    }
    return parser.errorText();
}

// Parses `arguments` with `grammar`; a refusal when they don't fit.
std::optional<Command> parseWith(QCommandLineParser& parser, const Grammar& grammar,
                                 const QStringList& arguments) {
    declare(parser, grammar);
    if (parser.parse(QStringList{QStringLiteral("zelvar2")} + arguments)) {
        return std::nullopt;
    }
    return refused(grammar, refusal(parser, grammar, arguments));
}

// Qt's help under a usage line of our own: Qt's names the executable by the path it was
// started with.
QString helpText(const QCommandLineParser& parser, const QString& usage) {
    return QStringLiteral("Usage: %1\n").arg(usage) +
           parser.helpText().section(QLatin1Char('\n'), 1);
}

QStringList reportNames() {
    QStringList names;
    for (const ReportKind& kind : reportKinds()) {
        names << kind.name;
    }
    return names;
}

QString reportsHelp() {
    QString text = QStringLiteral(
        "Usage: zelvar2 report <what> [options]\n"
        "Prints one report of this machine to standard output and exits.\n\nReports:\n");
    for (const ReportKind& kind : reportKinds()) {
        text += QStringLiteral("  %1%2\n").arg(kind.name, -11).arg(kind.summary);
    }
    return text + QStringLiteral("\nTry 'zelvar2 report <what> --help' for a report's options.\n");
}

Command parseReport(const ReportKind& kind, const QStringList& arguments) {
    Grammar grammar{QStringLiteral("zelvar2 report ") + kind.name,
                    {{QStringLiteral("json"), QStringLiteral("Print JSON instead of text")},
                     {QStringLiteral("verbose"),
                      QStringLiteral("Log the monitors' messages on standard error")},
                     helpOption()},
                    {}};
    QStringList flagNames{QStringLiteral("json"), QStringLiteral("verbose")};
    for (const ReportOption& option : kind.options) {
        if (option.type == ReportOption::Type::Flag) {
            grammar.flags.append({option.name, option.description});
            flagNames << option.name;
        } else {
            grammar.values.append(option);
        }
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(kind.summary);
    if (auto refusedCommand = parseWith(parser, grammar, arguments)) {
        return *refusedCommand;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        return exiting(0, helpText(parser, grammar.command + QStringLiteral(" [options]")));
    }
    if (const QStringList words = parser.positionalArguments(); !words.isEmpty()) {
        return refused(grammar, QStringLiteral("unexpected argument \"%1\"; %2 takes options only")
                                    .arg(words.first(), grammar.command));
    }
    Command command;
    command.action = CommandLine::Action::Report;
    QHash<QString, double> numbers;
    QHash<QString, QString> texts;
    for (const ReportOption& option : grammar.values) {
        if (option.type == ReportOption::Type::Text) {
            if (!parser.isSet(option.name)) {
                continue;
            }
            const QString text = parser.value(option.name);
            if (const QString why = option.check ? option.check(text) : QString(); !why.isEmpty()) {
                return refused(
                    grammar,
                    QStringLiteral("--%1 takes %2: %3").arg(option.name, option.accepts(), why));
            }
            texts.insert(option.name, text);
            continue;
        }
        if (!parser.isSet(option.name)) {
            numbers.insert(option.name, option.defaultValue);
            continue;
        }
        const QString text = parser.value(option.name);
        bool ok = false;
        const double value = text.toDouble(&ok);
        // Written so that NaN is refused as well.
        if (!ok || !(value >= option.minimum && value <= option.maximum) ||
            (option.whole && value != std::trunc(value))) {
            return refused(grammar, QStringLiteral("--%1 takes %2, not \"%3\"")
                                        .arg(option.name, option.accepts(), text));
        }
        if (const QString note = option.adjustment ? option.adjustment(value) : QString();
            !note.isEmpty()) {
            command.errors += QStringLiteral("zelvar2: %1\n").arg(note);
        }
        numbers.insert(option.name, value);
    }
    QSet<QString> flags;
    for (const QString& flag : flagNames) {
        if (parser.isSet(flag)) {
            flags.insert(flag);
        }
    }
    command.report = kind;
    command.options = ReportOptions(flags, numbers, texts);
    return command;
}

// The words after `report`: the report's name comes first, then its options.
Command parseReports(const QStringList& arguments) {
    const Grammar grammar{QStringLiteral("zelvar2 report"), {helpOption()}, {}};
    if (arguments.isEmpty() || arguments.first().startsWith(QLatin1Char('-'))) {
        QCommandLineParser parser;
        if (auto refusedCommand = parseWith(parser, grammar, arguments)) {
            return *refusedCommand;
        }
        if (parser.isSet(QStringLiteral("help"))) {
            return exiting(0, reportsHelp());
        }
        return refused(grammar, QStringLiteral("report needs to know what to report: %1")
                                    .arg(listed(reportNames(), QStringLiteral("or"))));
    }
    for (const ReportKind& kind : reportKinds()) {
        if (kind.name == arguments.first()) {
            return parseReport(kind, arguments.mid(1));
        }
    }
    return refused(grammar, QStringLiteral("unknown report \"%1\"; the reports are %2")
                                .arg(arguments.first(), listed(reportNames())));
}

}  // namespace

Command CommandLine::parse(const QStringList& arguments) {
    if (!arguments.isEmpty() && arguments.first() == u"report") {
        return parseReports(arguments.mid(1));
    }
    const Grammar grammar{
        QStringLiteral("zelvar2"),
        {{QStringLiteral("dashboard"), QStringLiteral("Open the dashboard window on start")},
         {QStringLiteral("uninstall-daemon"),
          QStringLiteral("Remove the background daemon's agent, stop the daemon and exit")},
         helpOption(),
         {QStringLiteral("version"), QStringLiteral("Show the version")}},
        {}};
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Zelvar+ watches memory, CPU, disk, network and battery power from the system tray."));
    if (auto refusedCommand = parseWith(parser, grammar, arguments)) {
        return *refusedCommand;
    }
    const QStringList words = parser.positionalArguments();
    if (parser.isSet(QStringLiteral("help")) || words == QStringList{QStringLiteral("help")}) {
        return exiting(0,
                       helpText(parser, QStringLiteral("zelvar2 [options]\n"
                                                       "       zelvar2 report <what> [options]")) +
                           QStringLiteral("\nCommands:\n"
                                          "  report <what>  Print one report and exit: %1\n"
                                          "  help           Show this help\n")
                               .arg(listed(reportNames(), QStringLiteral("or"))));
    }
    if (parser.isSet(QStringLiteral("version"))) {
        return exiting(0, QStringLiteral("zelvar2 " ZELVAR_VERSION "\n"));
    }
    if (!words.isEmpty()) {
        if (words.first() == u"help") {
            return refused(
                grammar, QStringLiteral("unexpected argument \"%1\" after help").arg(words.at(1)));
        }
        return refused(grammar, words.first() == u"report"
                                    ? QStringLiteral("report must come first, with nothing "
                                                     "before it")
                                    : QStringLiteral("unknown command \"%1\"; the commands are "
                                                     "report and help")
                                          .arg(words.first()));
    }
    Command command;
    command.dashboard = parser.isSet(QStringLiteral("dashboard"));
    if (parser.isSet(QStringLiteral("uninstall-daemon"))) {
        if (command.dashboard) {
            return refused(grammar, QStringLiteral("--uninstall-daemon can't go with --dashboard"));
        }
        command.action = Action::UninstallDaemon;
    }
    return command;
}

}  // namespace zelvar
