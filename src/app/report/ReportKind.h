#pragma once

#include <QList>
#include <QString>
#include <QTextStream>
#include <functional>
#include <type_traits>
#include <variant>

#include "app/report/ReportOption.h"
#include "app/report/ReportOptions.h"
#include "compose/Monitors.h"

namespace zelvar {

// One kind of report: the word that names it, what it shows, the options that take a value,
// the monitors it needs and its run. The command line checks the options against `options`;
// the shared runner (runReportCommand) sends the monitors' log where --verbose says and builds
// the monitors.
struct ReportKind {
    // Samples `monitors` and prints the report to `out`; returns the exit code.
    using Run =
        std::function<int(const ReportOptions& options, Monitors& monitors, QTextStream& out)>;

    QString name;
    QString summary;  // one sentence for --help
    QList<ReportOption> options;
    Monitors::Parts monitors;
    Run run;

    // The run of a report made of its parts: `settings(options)` reads the options,
    // `sample(monitors, settings)` runs the monitors, and `text(sample, settings)` or, with
    // --json, `json(sample, settings)` is printed. A part that needs no settings may take
    // its first argument alone.
    template <typename Settings, typename Sample, typename Text, typename Json>
    static Run runner(Settings settings, Sample sample, Text text, Json json) {
        return [=](const ReportOptions& options, Monitors& monitors, QTextStream& out) {
            const auto chosen = settings(options);
            const auto sampled = withSettings(sample, monitors, chosen);
            if (options.flag(QStringLiteral("json"))) {
                out << withSettings(json, sampled, chosen);
            } else {
                out << withSettings(text, sampled, chosen);
            }
            return 0;
        };
    }

    // `part(first, settings)`, or `part(first)` for a part that needs no settings.
    template <typename Part, typename First, typename Settings>
    static auto withSettings(const Part& part, First& first, const Settings& settings) {
        if constexpr (std::is_invocable_v<const Part&, First&>) {
            return part(first);
        } else {
            return part(first, settings);
        }
    }

    // The settings of a report without options of its own.
    static std::monostate noSettings(const ReportOptions&) { return {}; }
};

}  // namespace zelvar
