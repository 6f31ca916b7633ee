#include "kernel/KTreeNode.h"

#include "kernel/KClass.h"
#include "kernel/KComparable.h"

#include <utility>
#include <vector>

K_DEFINE_CLASS(KTreeNode, KThing)

KTreeNode::KTreeNode() = default;

KTreeNode::KTreeNode(KThing& item) { setData(item); }

KTreeNode::~KTreeNode()
{
    // Releasing children one by one would recurse as deep as the tree, and
    // an unbalanced tree can be a chain of many thousand nodes. Instead a
    // child that is about to die hands its own children to this loop first.
    std::vector<KTreeNode*> pending;
    auto adoptChildren = [&pending](KTreeNode& node) {
        for (int32_t side = kLeft; side <= kRight; ++side) {
            if (KTreeNode* child = node.getChild(side)) {
                child->incReferenceCount();
                pending.push_back(child);
                node.children.resetAt(side);
            }
        }
    };
    adoptChildren(*this);
    while (!pending.empty()) {
        KTreeNode* node = pending.back();
        pending.pop_back();
        // A count of 2 is this loop's reference plus nobody else's.
        if (node->getReferenceCount() == 2)
            adoptChildren(*node);
        node->decReferenceCount();
    }
}

KThing* KTreeNode::deepCopy() const
{
    auto copyData = [](const KTreeNode& from, KTreeNode& to) {
        if (KThing* item = from.getData()) {
            if (KThing* itemCopy = item->deepCopy())
                to.data = itemCopy;
        }
    };
    auto* root = new KTreeNode();
    copyData(*this, *root);
    // Iterative, for the same reason as the destructor.
    std::vector<std::pair<const KTreeNode*, KTreeNode*>> pending { { this, root } };
    while (!pending.empty()) {
        auto [from, to] = pending.back();
        pending.pop_back();
        for (int32_t side = kLeft; side <= kRight; ++side) {
            const KTreeNode* child = from->getChild(side);
            if (!child)
                continue;
            auto* childCopy = new KTreeNode();
            copyData(*child, *childCopy);
            to->setChild(side, childCopy);
            pending.emplace_back(child, childCopy);
        }
    }
    return root;
}

void KTreeNode::setData(KThing& item) { data = item; }

void KTreeNode::clearData() { data.clear(); }

KComparable* KTreeNode::getComparable() const { return dynamic_cast<KComparable*>(data.get()); }

KTreeNode* KTreeNode::getChild(int32_t side) const { return static_cast<KTreeNode*>(children.getAt(side)); }

void KTreeNode::setChild(int32_t side, KTreeNode* node)
{
    if (side != kLeft && side != kRight)
        return;
    if (!node) {
        if (children.isSetAt(side))
            children.resetAt(side);
        return;
    }
    if (children.getSize() <= side)
        children.setSize(side + 1);
    children.putAt(*node, side);
}
