#include "process/ProcessNode.h"

#include <vector>

namespace zelvar {

ProcessNode::~ProcessNode() {
    if (children.isEmpty()) {
        return;
    }
    // Destroying a list of nodes would destroy their lists in turn, one stack frame per
    // level. Instead, empty the lists this node alone owns from the top down.
    std::vector<QList<ProcessNode>> pending;
    pending.push_back(std::move(children));
    while (!pending.empty()) {
        QList<ProcessNode> list = std::move(pending.back());
        pending.pop_back();
        if (!list.isDetached()) {
            continue;  // someone else still holds these nodes; dropping our share frees nothing
        }
        for (ProcessNode& node : list) {
            if (!node.children.isEmpty()) {
                pending.push_back(std::move(node.children));
            }
        }
    }  // each list dies here with childless nodes only
}

std::optional<QList<ProcessNode>> ProcessNode::childrenForList() const {
    if (children.isEmpty()) {
        return std::nullopt;
    }
    return children;
}

QString ProcessNode::formatMB(double mb) {
    if (mb >= 1024.0) {
        return QString::asprintf("%.1f GB", mb * 0.0009765625);
    }
    return QString::asprintf("%.0f MB", mb);
}

}  // namespace zelvar
