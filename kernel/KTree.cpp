#include "kernel/KTree.h"

#include "kernel/KClass.h"
#include "kernel/KComparable.h"
#include "kernel/KString.h"

#include <cstdio>
#include <vector>

K_DEFINE_CLASS(KTree, KThing)

namespace {

// 2 to the power of floor(log2(value)), for value >= 1.
int32_t highestPowerOfTwoAtMost(int32_t value)
{
    int32_t power = 1;
    while (power <= value / 2)
        power *= 2;
    return power;
}

// Holds a reference to every node of a tree while balancing rewires it, so
// that no intermediate state destroys one.
class NodeHolder {
public:
    explicit NodeHolder(KTreeNode* root)
    {
        if (root)
            nodes.push_back(root);
        for (size_t i = 0; i < nodes.size(); ++i) {
            nodes[i]->incReferenceCount();
            for (KTreeNode* child : { nodes[i]->getLeft(), nodes[i]->getRight() }) {
                if (child)
                    nodes.push_back(child);
            }
        }
    }
    ~NodeHolder()
    {
        for (KTreeNode* node : nodes)
            node->decReferenceCount();
    }
    NodeHolder(const NodeHolder&) = delete;
    NodeHolder& operator=(const NodeHolder&) = delete;

private:
    std::vector<KTreeNode*> nodes;
};

} // namespace

KTree::KTree() = default;

KTree::~KTree() { clearRoot(); }

KThing* KTree::deepCopy() const
{
    auto* copy = new KTree();
    if (root) {
        KTreeNodePtr rootCopy = kAdopt(static_cast<KTreeNode*>(root->deepCopy()));
        copy->root = rootCopy;
    }
    copy->count = count;
    return copy;
}

void KTree::setRoot(KTreeNode& node)
{
    root = node;
    count = 0;
    std::vector<KTreeNode*> pending { &node };
    while (!pending.empty()) {
        KTreeNode* current = pending.back();
        pending.pop_back();
        ++count;
        for (KTreeNode* child : { current->getLeft(), current->getRight() }) {
            if (child)
                pending.push_back(child);
        }
    }
}

void KTree::clearRoot()
{
    root.clear();
    count = 0;
}

void KTree::insert(KComparable& item)
{
    KTreeNodePtr node = kAdopt(new KTreeNode(item));
    ++count;
    if (!root) {
        root = node;
        return;
    }
    KTreeNode* current = root.get();
    for (;;) {
        KComparable* here = current->getComparable();
        int32_t side = (!here || item <= *here) ? KTreeNode::kLeft : KTreeNode::kRight;
        KTreeNode* next = current->getChild(side);
        if (!next) {
            current->setChild(side, node.get());
            return;
        }
        current = next;
    }
}

bool KTree::find(KComparable& item, KTreeNodePtr& out) const
{
    KTreeNode* current = root.get();
    while (current) {
        KComparable* here = current->getComparable();
        if (here && item == *here) {
            out = current;
            return true;
        }
        current = (!here || item <= *here) ? current->getLeft() : current->getRight();
    }
    out.clear();
    return false;
}

KTreeNode* KTree::getAt(int32_t index) const
{
    if (index < 0)
        return nullptr;
    std::vector<KTreeNode*> path;
    KTreeNode* current = root.get();
    int32_t position = 0;
    while (current || !path.empty()) {
        while (current) {
            path.push_back(current);
            current = current->getLeft();
        }
        current = path.back();
        path.pop_back();
        if (position++ == index)
            return current;
        current = current->getRight();
    }
    return nullptr;
}

// Balancing.

void KTree::balance()
{
    if (!root)
        return;
    NodeHolder holder(root.get());
    KTreeNodePtr pseudoRoot = kAdopt(new KTreeNode());
    pseudoRoot->setRight(root.get());
    int32_t n = treeToVine(*pseudoRoot);
    vineToTree(*pseudoRoot, n);
    root = pseudoRoot->getRight();
    pseudoRoot->setRight(nullptr);
}

int32_t KTree::treeToVine(KTreeNode& pseudoRoot)
{
    KTreeNode* tail = &pseudoRoot;
    KTreeNode* rest = tail->getRight();
    int32_t length = 0;
    while (rest) {
        KTreeNode* left = rest->getLeft();
        if (!left) {
            tail = rest;
            rest = rest->getRight();
            ++length;
            continue;
        }
        // Rotate right: the left child climbs above `rest`.
        rest->setLeft(left->getRight());
        left->setRight(rest);
        tail->setRight(left);
        rest = left;
    }
    return length;
}

void KTree::vineToTree(KTreeNode& pseudoRoot, int32_t n)
{
    int32_t leaves = n + 1 - highestPowerOfTwoAtMost(n + 1);
    if (leaves >= 1)
        placeSpreadLeaves(pseudoRoot, n, leaves);
    for (int32_t m = n - leaves; m > 1; m /= 2)
        compress(pseudoRoot, m / 2);
}

// The first pass hangs the leaves of the bottom level, spread evenly along
// the spine: of the positions 1 to F - 1, those at k * F / S only step on.
void KTree::placeSpreadLeaves(KTreeNode& pseudoRoot, int32_t n, int32_t leaves)
{
    // F is 2^(ceil(log2(n + 1)) - 1); n + 1 is no power of two here.
    int32_t f = highestPowerOfTwoAtMost(n + 1);
    int32_t s = f - leaves;
    int32_t k = 1;
    int64_t nextSkip = int64_t(k) * f / s;
    KTreeNode* scanner = &pseudoRoot;
    for (int32_t position = 1; position <= f - 1 && scanner; ++position) {
        if (position == nextSkip) {
            scanner = scanner->getRight();
            ++k;
            nextSkip = int64_t(k) * f / s;
        } else {
            scanner = rotateLeftBelow(*scanner);
        }
    }
}

void KTree::compress(KTreeNode& pseudoRoot, int32_t rotations)
{
    KTreeNode* scanner = &pseudoRoot;
    for (int32_t i = 0; i < rotations && scanner; ++i)
        scanner = rotateLeftBelow(*scanner);
}

KTreeNode* KTree::rotateLeftBelow(KTreeNode& scanner)
{
    KTreeNode* child = scanner.getRight();
    if (!child || !child->getRight())
        return nullptr;
    KTreeNode* next = child->getRight();
    scanner.setRight(next);
    child->setRight(next->getLeft());
    next->setLeft(child);
    return next;
}

// Debug dump.

void KTree::dump(const KString& name)
{
    FILE* file = std::fopen(name.c_str(), "w");
    if (!file)
        return;
    std::fputs("ROOT\n", file);
    // Pre-order with an explicit stack; an entry without a node stands for
    // a missing child and carries its line.
    struct Entry {
        KTreeNode* node;
        int32_t depth;
        const char* missing;
    };
    std::vector<Entry> pending;
    if (root)
        pending.push_back({ root.get(), 0, nullptr });
    while (!pending.empty()) {
        Entry entry = pending.back();
        pending.pop_back();
        dumpDepth = entry.depth;
        std::fprintf(file, "%*s", int(dumpDepth), "");
        if (!entry.node) {
            std::fprintf(file, "%s\n", entry.missing);
            continue;
        }
        auto* text = dynamic_cast<KString*>(entry.node->getData());
        if (!entry.node->getData())
            std::fputs("No Data\n", file);
        else if (text)
            std::fprintf(file, "%s\n", text->c_str());
        else
            std::fprintf(file, "%s\n", entry.node->getData()->getClass()->getName());
        KTreeNode* right = entry.node->getRight();
        KTreeNode* left = entry.node->getLeft();
        pending.push_back(right ? Entry { right, entry.depth + 1, nullptr }
                                : Entry { nullptr, entry.depth, "No Right" });
        pending.push_back(left ? Entry { left, entry.depth + 1, nullptr } : Entry { nullptr, entry.depth, "No Left" });
    }
    dumpDepth = 0;
    std::fclose(file);
}
