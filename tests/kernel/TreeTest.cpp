#include "kernel/KComparable.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "kernel/KTree.h"
#include "kernel/KTreeNode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <unistd.h>
#include <vector>

namespace {

// An ordered value; `tag` tells equal values apart.
class Key : public KComparable {
public:
    explicit Key(int32_t value, int32_t tag = 0)
        : value(value)
        , tag(tag)
    {
        ++live;
    }
    ~Key() override { --live; }
    KThing* deepCopy() const override { return new Key(value, tag); }
    bool operator==(const KComparable& o) const override { return value == of(o); }
    bool operator!=(const KComparable& o) const override { return value != of(o); }
    bool operator>(const KComparable& o) const override { return value > of(o); }
    bool operator<(const KComparable& o) const override { return value < of(o); }
    bool operator>=(const KComparable& o) const override { return value >= of(o); }
    bool operator<=(const KComparable& o) const override { return value <= of(o); }
    static int32_t of(const KComparable& o) { return static_cast<const Key&>(o).value; }

    int32_t value;
    int32_t tag;
    static int live;
};
int Key::live = 0;

const Key& keyOf(const KTreeNode* node) { return static_cast<const Key&>(*node->getData()); }

int32_t heightOf(const KTreeNode* root)
{
    int32_t height = 0;
    std::vector<std::pair<const KTreeNode*, int32_t>> pending;
    if (root)
        pending.emplace_back(root, 1);
    while (!pending.empty()) {
        auto [node, depth] = pending.back();
        pending.pop_back();
        height = std::max(height, depth);
        for (const KTreeNode* child : { node->getLeft(), node->getRight() }) {
            if (child)
                pending.emplace_back(child, depth + 1);
        }
    }
    return height;
}

std::vector<int32_t> inOrder(const KTree& tree)
{
    std::vector<int32_t> values;
    for (int32_t i = 0; i < tree.getCount(); ++i)
        values.push_back(keyOf(tree.getAt(i)).value);
    return values;
}

// A right-going chain of `n` nodes with keys 0 to n - 1, built by hand: as
// deep as a tree gets.
KTreeNode* chainOf(int32_t n)
{
    KTreeNode* head = nullptr;
    for (int32_t i = n - 1; i >= 0; --i) {
        auto* node = new KTreeNode(*new Key(i));
        node->setRight(head);
        head = node;
    }
    return head;
}

} // namespace

TEST(KTree, DuplicatesGoLeftAndFindMeetsTheTopmost)
{
    KTree tree;
    tree.insert(*new Key(5, 1));
    tree.insert(*new Key(8));
    tree.insert(*new Key(5, 2));
    tree.insert(*new Key(5, 3));
    tree.insert(*new Key(2));
    EXPECT_EQ(tree.getCount(), 5);

    KTreeNode* root = tree.getRoot();
    EXPECT_EQ(keyOf(root->getLeft()).tag, 2);
    EXPECT_EQ(keyOf(root->getLeft()->getLeft()).tag, 3);
    EXPECT_EQ(keyOf(root->getRight()).value, 8);

    KTreeNodePtr found;
    Key probe(5);
    ASSERT_TRUE(tree.find(probe, found));
    EXPECT_EQ(found.get(), root);
    Key missing(7);
    EXPECT_FALSE(tree.find(missing, found));
    EXPECT_FALSE(found.isValid());

    EXPECT_EQ(inOrder(tree), (std::vector<int32_t> { 2, 5, 5, 5, 8 }));
    EXPECT_EQ(tree.getAt(5), nullptr);
    EXPECT_EQ(tree.getAt(-1), nullptr);
}

TEST(KTree, BalanceBuildsMinimalHeightAndKeepsEveryNode)
{
    for (int32_t n = 1; n <= 100; ++n) {
        KTree tree;
        // Ascending input makes the worst shape: a chain to the right.
        for (int32_t i = 0; i < n; ++i)
            tree.insert(*new Key(i));
        int liveBefore = Key::live;
        int32_t nodesBefore = KThing::liveCount();

        tree.balance();
        EXPECT_EQ(heightOf(tree.getRoot()), int32_t(std::floor(std::log2(n))) + 1) << n;
        std::vector<int32_t> expected(size_t(n), 0);
        for (int32_t i = 0; i < n; ++i)
            expected[size_t(i)] = i;
        EXPECT_EQ(inOrder(tree), expected) << n;
        EXPECT_EQ(Key::live, liveBefore);
        EXPECT_EQ(KThing::liveCount(), nodesBefore);
        tree.balance(); // balancing a balanced tree changes nothing
        EXPECT_EQ(inOrder(tree), expected) << n;
    }
    EXPECT_EQ(Key::live, 0);
}

TEST(KTree, DeepTreesAreBalancedAndFreedWithoutRecursion)
{
    constexpr int32_t n = 300000;
    {
        KTree tree;
        tree.setRoot(*chainOf(n));
        EXPECT_EQ(tree.getCount(), n);
        tree.balance();
        EXPECT_EQ(heightOf(tree.getRoot()), 19);
        EXPECT_EQ(keyOf(tree.getAt(n - 1)).value, n - 1);
    }
    {
        KTree tree;
        tree.setRoot(*chainOf(n));
    }
    EXPECT_EQ(Key::live, 0);

    // A subtree held elsewhere outlives the tree.
    KTreeNodePtr kept;
    {
        KTree tree;
        tree.setRoot(*chainOf(3));
        kept = tree.getRoot()->getRight();
    }
    EXPECT_EQ(keyOf(kept.get()).value, 1);
    EXPECT_EQ(keyOf(kept->getRight()).value, 2);
}

TEST(KTree, DeepCopyDuplicatesNodesAndData)
{
    KTree tree;
    for (int32_t v : { 2, 1, 3 })
        tree.insert(*new Key(v));
    KTreePtr copy = kAdopt(static_cast<KTree*>(tree.deepCopy()));
    EXPECT_EQ(inOrder(*copy), inOrder(tree));
    EXPECT_NE(copy->getRoot(), tree.getRoot());
    EXPECT_NE(copy->getRoot()->getLeft()->getData(), tree.getRoot()->getLeft()->getData());
}
