#pragma once

#include "kernel/KArray.h"
#include "kernel/KThingPtr.h"

// A node of a KTree: a counted reference to its data, a KComparable, and
// its children in an embedded array, index 0 left and 1 right.
class KTreeNode : public KThing {
    K_DECLARE_CLASS(KTreeNode)
public:
    static constexpr int32_t kLeft = 0;
    static constexpr int32_t kRight = 1;

    KTreeNode();
    explicit KTreeNode(KThing& data);
    ~KTreeNode() override;
    KTreeNode(const KTreeNode&) = delete;
    KTreeNode& operator=(const KTreeNode&) = delete;

    // A copy of the whole subtree, data included.
    KThing* deepCopy() const override;

    // Slots 10 and 11.
    virtual void setData(KThing& data);
    virtual void clearData();
    KThing* getData() const { return data.get(); }
    // The data as a KComparable, or null.
    KComparable* getComparable() const;

    KTreeNode* getLeft() const { return getChild(kLeft); }
    KTreeNode* getRight() const { return getChild(kRight); }
    void setLeft(KTreeNode* node) { setChild(kLeft, node); }
    void setRight(KTreeNode* node) { setChild(kRight, node); }
    KTreeNode* getChild(int32_t side) const;
    // Null clears the child.
    void setChild(int32_t side, KTreeNode* node);

private:
    KThingPtr data;
    KArray children;
};
