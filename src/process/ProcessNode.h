#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <optional>

#include "process/ProcessInfo.h"

namespace zelvar {

// One node of the process forest: a sample, the processes it started, and the memory of its
// whole subtree. Children are held in an implicitly shared list, so copying a forest is cheap
// and a published forest is never changed in place. Tearing a node down is iterative, so a
// chain of any depth is released without deep recursion.
class ProcessNode {
public:
    ProcessNode() = default;
    explicit ProcessNode(ProcessInfo info)
        : process(std::move(info)), aggregateMemoryMB(process.memoryMB) {}
    ProcessNode(const ProcessNode&) = default;
    ProcessNode(ProcessNode&&) noexcept = default;
    ProcessNode& operator=(const ProcessNode&) = default;
    ProcessNode& operator=(ProcessNode&&) noexcept = default;
    ~ProcessNode();

    ProcessInfo process;
    QList<ProcessNode> children;
    // Own memory plus every descendant's, mebibytes.
    double aggregateMemoryMB = 0.0;

    Pid id() const { return process.id; }
    // The children, or no value for a leaf, as a hierarchical list tells leaves from parents.
    std::optional<QList<ProcessNode>> childrenForList() const;
    QString displayAggregateMemory() const { return formatMB(aggregateMemoryMB); }
    QString displayOwnMemory() const { return formatMB(process.memoryMB); }

    // "1.0 GB" from 1024 MB up, otherwise "512 MB". Unlike ProcessInfo::displayMemory, exactly
    // 1024 MB already shows in gigabytes.
    static QString formatMB(double mb);
};

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::ProcessNode)
