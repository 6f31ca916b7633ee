#pragma once

#include "kernel/KForward.h"

#include <cstddef>
#include <cstdint>

// The root of every counted, persistent or event-handling object.
//
// An object learns at construction whether `operator new` made it: only heap
// objects may be referenced. A fresh object holds a count of 1, which means
// "nobody holds me"; every holder adds one, and the release that brings the
// count back to 1 destroys the object.
class KThing {
public:
    static constexpr int32_t kHeapFlag = 1;
    static constexpr int32_t kBusyFlag = 2;

    static void* operator new(size_t size);
    static void operator delete(void* block);

    KThing();
    KThing(const KThing& other);
    KThing& operator=(const KThing&) { return *this; }
    virtual ~KThing();

    // Slot 1. Returns a new heap object, or null where the class has none.
    virtual KThing* deepCopy() const;
    // Slot 2: true once the record of KThing itself exists.
    bool isRootClassRegistered() const;
    // Slot 3.
    virtual KClass* getClass() const;
    // Slots 4 and 5.
    virtual void readFromFile(KFile& file);
    virtual void writeToFile(KFile& file, int32_t version);
    // Slot 6: the call a timer makes on its target.
    virtual void timerFired(KTimer& timer);
    // Slot 7: the call that carries an event to a handler object.
    virtual KEventReturn handleEvent(KEvent& event);
    // Slot 8: called on idle passes of the event loop.
    virtual void idle();
    // Slot 9.
    virtual bool isClassRegistered() const;
    // Writes the object's fields as members of the JSON object the writer
    // has open, for the document inspector. Each class adds its own fields
    // after its base's; the default has none.
    virtual void describe(KJsonWriter& out) const;

    void incReferenceCount();
    void decReferenceCount();
    int32_t getReferenceCount() const { return referenceCount; }

    bool isOnHeap() const { return (flags & kHeapFlag) != 0; }
    int32_t getFlags() const { return flags; }
    void setFlags(int32_t value) { flags = value; }
    void setFlagBits(int32_t bits) { flags |= bits; }
    void clearFlagBits(int32_t bits) { flags &= ~bits; }
    bool testFlagBits(int32_t bits) const { return (flags & bits) != 0; }

    bool isEqualOrSubClass(const KClass* cls) const;
    bool isEqualOrSubClass(const char* className) const;

    // Equality is identity.
    bool operator==(const KThing& other) const { return this == &other; }
    bool operator!=(const KThing& other) const { return this != &other; }

    static int32_t liveCount();
    static int32_t heapCount();

    static KClass* classRecord;
    static KThing* create();

private:
    int32_t flags;
    int32_t referenceCount;
};

using KThingRef = KThing*;

// Declares the class record and its overrides; every registered class uses
// it once in its body. K_DEFINE_CLASS (or K_DEFINE_ABSTRACT_CLASS for classes
// without a create procedure) goes in the class's .cpp.
#define K_DECLARE_CLASS(Name)                                                                                          \
public:                                                                                                                \
    static KClass* classRecord;                                                                                        \
    static KThing* create();                                                                                           \
    static KClass* registerClass();                                                                                    \
    KClass* getClass() const override;                                                                                 \
    bool isClassRegistered() const override;                                                                           \
                                                                                                                       \
private:

#define K_DEFINE_CLASS_COMMON(Name, Super, Create)                                                                     \
    KClass* Name::classRecord = nullptr;                                                                               \
    KClass* Name::registerClass()                                                                                      \
    {                                                                                                                  \
        classRecord = KClass::registerClass(#Name, Super::classRecord, Create, 1);                                     \
        return classRecord;                                                                                            \
    }                                                                                                                  \
    KClass* Name::getClass() const { return KClass::checkedRecord(classRecord); }                                      \
    bool Name::isClassRegistered() const { return classRecord != nullptr; }

#define K_DEFINE_CLASS(Name, Super)                                                                                    \
    KThing* Name::create() { return new Name(); }                                                                      \
    K_DEFINE_CLASS_COMMON(Name, Super, &Name::create)

#define K_DEFINE_ABSTRACT_CLASS(Name, Super)                                                                           \
    KThing* Name::create() { return nullptr; }                                                                         \
    K_DEFINE_CLASS_COMMON(Name, Super, nullptr)
