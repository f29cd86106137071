#include "app/report/TreeReport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <cmath>
#include <vector>

#include "app/report/ProcessesReport.h"
#include "common/TerminalText.h"

namespace zelvar {
namespace {

qsizetype countDescendants(const ProcessNode& node) {
    qsizetype count = 0;
    std::vector<const ProcessNode*> pending{&node};
    while (!pending.empty()) {
        const ProcessNode* current = pending.back();
        pending.pop_back();
        count += current->children.size();
        for (const ProcessNode& child : current->children) {
            pending.push_back(&child);
        }
    }
    return count;
}

struct Settings {
    int depth = 0;
    ProcessesReport::Settings run;
};

Settings settings(const ReportOptions& options) {
    return Settings{static_cast<int>(options.number(QStringLiteral("depth"))),
                    ProcessesReport::settings(options)};
}

}  // namespace

ReportKind TreeReport::kind() {
    return {QStringLiteral("tree"),
            QStringLiteral("The processes as a tree, each with the memory of its subtree."),
            QList<ReportOption>{{.name = QStringLiteral("depth"),
                                 .valueName = QStringLiteral("N"),
                                 .description = QStringLiteral("Levels of the tree to show"),
                                 .minimum = 1,
                                 .maximum = 100000,
                                 .whole = true,
                                 .defaultText = QStringLiteral("all")}} +
                ProcessesReport::options(),
            Monitors::Part::Processes,
            ReportKind::runner(
                &settings,
                [](Monitors& monitors, const Settings& settings) {
                    return ProcessesReport::sample(monitors, settings.run);
                },
                [](const ProcessesReport::Sample& sample, const Settings& settings) {
                    return formatText(sample.tree, settings.depth);
                },
                [](const ProcessesReport::Sample& sample, const Settings& settings) {
                    return formatJson(sample.tree, settings.depth);
                })};
}

QList<TreeReport::Row> TreeReport::rows(const QList<ProcessNode>& roots, int maxDepth) {
    QList<Row> result;
    std::vector<Row> pending;
    for (auto it = roots.crbegin(); it != roots.crend(); ++it) {
        pending.push_back({&*it, 0, 0});
    }
    while (!pending.empty()) {
        Row row = pending.back();
        pending.pop_back();
        const QList<ProcessNode>& children = row.node->children;
        if (maxDepth > 0 && row.depth + 1 >= maxDepth) {
            row.hiddenDescendants = countDescendants(*row.node);
        } else {
            for (auto it = children.crbegin(); it != children.crend(); ++it) {
                pending.push_back({&*it, row.depth + 1, 0});
            }
        }
        result.append(row);
    }
    return result;
}

QString TreeReport::formatText(const QList<ProcessNode>& roots, int maxDepth) {
    QString text;
    QTextStream out(&text);
    out << QStringLiteral("%1 %2 %3  ")
               .arg(QStringLiteral("AGGREGATE"), 9)
               .arg(QStringLiteral("OWN"), 9)
               .arg(QStringLiteral("CPU"), 7)
        << ProcessesReport::originColumnsHeader() << " PROCESS\n";
    for (const Row& row : rows(roots, maxDepth)) {
        const ProcessNode& node = *row.node;
        QString label = QString(row.depth * 2, QLatin1Char(' ')) +
                        TerminalText::escaped(node.process.name) + QStringLiteral(" (") +
                        QString::number(node.id()) + QLatin1Char(')');
        if (row.hiddenDescendants > 0) {
            label += QStringLiteral(" [+%1]").arg(row.hiddenDescendants);
        }
        out << node.displayAggregateMemory().rightJustified(9) << ' '
            << node.displayOwnMemory().rightJustified(9) << ' '
            << node.process.displayCPU().rightJustified(7) << "  "
            << ProcessesReport::originColumns(node.process) << ' ' << label << '\n';
    }
    return text;
}

QByteArray TreeReport::formatJson(const QList<ProcessNode>& roots, int maxDepth) {
    QJsonArray array;
    for (const Row& row : rows(roots, maxDepth)) {
        array.append(QJsonObject{
            {QStringLiteral("depth"), row.depth},
            {QStringLiteral("aggregate_memory_mb"), row.node->aggregateMemoryMB},
            {QStringLiteral("child_count"), row.node->children.size()},
            {QStringLiteral("hidden_descendants"), row.hiddenDescendants},
            {QStringLiteral("process"), row.node->process.toJson()},
        });
    }
    return QJsonDocument(array).toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
