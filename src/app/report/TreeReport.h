#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "app/report/ReportKind.h"
#include "process/ProcessNode.h"

namespace zelvar {

// `zelvar2 report tree`: the process forest as the dashboard's tree shows it.
class TreeReport {
public:
    static ReportKind kind();

    // One shown node, in display order (depth first, siblings in the forest's order).
    struct Row {
        const ProcessNode* node = nullptr;
        int depth = 0;  // 0 for a root
        // Descendants not shown because of the depth limit.
        qsizetype hiddenDescendants = 0;
    };

    // The nodes down to `maxDepth` levels (1 = the roots alone; 0 or less = all levels). The
    // rows point into `roots`, which must outlive them.
    static QList<Row> rows(const QList<ProcessNode>& roots, int maxDepth);

    // One line a node: aggregate memory, own memory, CPU, immediate and root origin chips,
    // then the name and pid indented by depth.
    static QString formatText(const QList<ProcessNode>& roots, int maxDepth);
    // One array of the shown nodes in display order, each with its depth, aggregate memory,
    // child count, hidden descendants and the process record. Flat, so that a chain of any
    // depth stays a shallow document.
    static QByteArray formatJson(const QList<ProcessNode>& roots, int maxDepth);
};

}  // namespace zelvar
