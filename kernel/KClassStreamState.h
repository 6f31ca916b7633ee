#pragma once

#include <cstdint>

// The read state that every class stream reader shares during one load: what
// to do with an object of an unknown class, and counters of what was left
// out. A document resets it at the start of each load.
class KClassStreamState {
public:
    enum UnknownClassPolicy : int32_t {
        KeepNullSlot = 0, // the element stays as a null slot
        DropObject = 1, // the element is left out
        FatalError = 2, // code 28 (or 31 on a class id mismatch)
    };

    // Nesting of polymorphic objects deeper than this is taken for damage: a
    // crafted file would otherwise exhaust the stack.
    static constexpr int32_t kMaxObjectDepth = 200;

    static int32_t unknownClassPolicy();
    static void setUnknownClassPolicy(int32_t policy);

    // Class bodies that ended with unread sections.
    static int32_t skippedClassData();
    // Class streams dropped for an id mismatch or an unknown class under policy 1.
    static int32_t droppedObjects();
    // Elements left null for an unknown class under policy 0.
    static int32_t nulledObjects();

    static void countSkippedClassData();
    static void countDroppedObject();
    static void countNulledObject();

    // Counters to 0, the policy to 1.
    static void reset();

    // The nesting of objects being read; see KClassReader::readObject.
    static int32_t objectDepth();
    static void enterObject();
    static void leaveObject();
};

// Sets the unknown-class policy for a scope and restores it at the end.
class KUnknownClassPolicyGuard {
public:
    explicit KUnknownClassPolicyGuard(int32_t policy)
        : saved(KClassStreamState::unknownClassPolicy())
    {
        KClassStreamState::setUnknownClassPolicy(policy);
    }
    ~KUnknownClassPolicyGuard() { KClassStreamState::setUnknownClassPolicy(saved); }
    KUnknownClassPolicyGuard(const KUnknownClassPolicyGuard&) = delete;
    KUnknownClassPolicyGuard& operator=(const KUnknownClassPolicyGuard&) = delete;

private:
    int32_t saved;
};
