#pragma once

#include "kernel/KThingPtr.h"
#include "kernel/KTreeNode.h"

// A binary search tree of KComparable items with explicit rebalancing: it
// is filled, balanced once, and then searched. Equal items go left, so
// duplicates are kept and `find` meets the topmost of them first.
class KTree : public KThing {
    K_DECLARE_CLASS(KTree)
public:
    KTree();
    ~KTree() override;
    KTree(const KTree&) = delete;
    KTree& operator=(const KTree&) = delete;

    KThing* deepCopy() const override;

    // Slots 10 and 11.
    virtual void setRoot(KTreeNode& node);
    virtual void clearRoot();
    KTreeNode* getRoot() const { return root.get(); }
    // The number of nodes: counted when a root is set, then one per insert.
    int32_t getCount() const { return count; }

    // `item` must live on the heap: its node holds a reference.
    void insert(KComparable& item);
    bool find(KComparable& item, KTreeNodePtr& out) const;
    // Day-Stout-Warren: rebuilds the shape in place, keeping every node and
    // the in-order sequence.
    void balance();
    // The node at in-order position `index`, or null.
    KTreeNode* getAt(int32_t index) const;
    // Writes the tree as indented text, for debugging.
    void dump(const KString& name);

private:
    // Balancing steps, all working below a temporary pseudo-root.
    static int32_t treeToVine(KTreeNode& pseudoRoot);
    static void vineToTree(KTreeNode& pseudoRoot, int32_t n);
    static void placeSpreadLeaves(KTreeNode& pseudoRoot, int32_t n, int32_t leaves);
    static void compress(KTreeNode& pseudoRoot, int32_t rotations);
    // Rotates the right child of `scanner` left; returns the node that
    // took its place.
    static KTreeNode* rotateLeftBelow(KTreeNode& scanner);

    KTreeNodePtr root;
    int32_t count = 0;
    int32_t dumpDepth = 0;
};
