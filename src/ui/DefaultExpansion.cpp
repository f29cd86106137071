#include "ui/DefaultExpansion.h"

#include <vector>

namespace zelvar {
namespace {

// Depth first in list order with an explicit stack: the list goes on in reverse, the last is
// taken, and its children go on in reverse.
const ProcessNode* findFirst(const QList<ProcessNode>& nodes,
                             const std::function<bool(const ProcessInfo&)>& matches) {
    std::vector<const ProcessNode*> stack;
    for (auto it = nodes.crbegin(); it != nodes.crend(); ++it) {
        stack.push_back(&*it);
    }
    while (!stack.empty()) {
        const ProcessNode* node = stack.back();
        stack.pop_back();
        if (matches(node->process)) {
            return node;
        }
        for (auto it = node->children.crbegin(); it != node->children.crend(); ++it) {
            stack.push_back(&*it);
        }
    }
    return nullptr;
}

}  // namespace

DefaultExpansion::Anchors DefaultExpansion::macAnchors() {
    return {[](const ProcessInfo& p) { return p.name == QLatin1String("kernel_task"); },
            [](const ProcessInfo& p) { return p.name == QLatin1String("launchd"); }};
}

DefaultExpansion::Anchors DefaultExpansion::linuxAnchors(std::function<bool(Pid)> ownedByUser) {
    return {[](const ProcessInfo& p) { return p.id == 1; },
            [owned = std::move(ownedByUser)](const ProcessInfo& p) {
                return p.id != 1 && p.name == QLatin1String("systemd") && owned && owned(p.id);
            }};
}

QSet<Pid> DefaultExpansion::defaultExpandedProcessIDs(const QList<ProcessNode>& roots,
                                                      const Anchors& anchors) {
    const ProcessNode* kernel = findFirst(roots, anchors.isKernel);
    if (kernel == nullptr) {
        return {};
    }
    const ProcessNode* manager = findFirst(kernel->children, anchors.isServiceManager);
    if (manager == nullptr) {
        manager = findFirst(roots, anchors.isServiceManager);
    }
    if (manager == nullptr) {
        return {};
    }
    return {kernel->id(), manager->id()};
}

bool DefaultExpansion::apply(const QList<ProcessNode>& roots, QSet<Pid>& expanded) {
    if (m_didApply) {
        return false;
    }
    const QSet<Pid> ids = defaultExpandedProcessIDs(roots, m_anchors);
    if (ids.isEmpty()) {
        return false;
    }
    expanded.unite(ids);
    m_didApply = true;
    return true;
}

}  // namespace zelvar
