#pragma once

#include <QList>

#include "process/ProcessInfo.h"
#include "process/ProcessNode.h"

namespace zelvar {

// Turns a flat snapshot into a forest by parent id, with each subtree's memory summed and
// siblings ordered by that sum, larger first.
class ProcessTreeBuilder {
public:
    // The roots, ordered. A process is a root when it is its own parent, when its parent is
    // not in the snapshot, or when attaching it would close a parent cycle; in a cycle the
    // first member that would close it becomes the root and the others hang below it. Sorting
    // is stable with no second key, so equal sums keep the snapshot's order. Runs in about
    // linear time and constant stack depth, whatever the shape.
    static QList<ProcessNode> build(const QList<ProcessInfo>& processes);
};

}  // namespace zelvar
