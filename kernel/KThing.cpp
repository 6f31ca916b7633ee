#include "kernel/KThing.h"

#include "kernel/KClass.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"

namespace {

int32_t gLiveCount = 0;
int32_t gHeapCount = 0;

// Blocks that `operator new` handed out and whose KThing constructor has not
// run yet. Between the two, the constructor arguments may allocate further
// objects, so this is a short stack rather than one slot. Reading a marker
// out of the fresh block would work too, but it reads memory the optimiser
// is entitled to treat as dead.
constexpr int kMaxPending = 64;
thread_local void* tPending[kMaxPending];
thread_local int tPendingCount = 0;

void remember(void* block)
{
    if (tPendingCount < kMaxPending)
        tPending[tPendingCount++] = block;
}

bool claim(void* block)
{
    for (int i = tPendingCount - 1; i >= 0; --i) {
        if (tPending[i] == block) {
            tPending[i] = tPending[--tPendingCount];
            return true;
        }
    }
    return false;
}

} // namespace

KClass* KThing::classRecord = nullptr;

KThing* KThing::create() { return new KThing(); }

void* KThing::operator new(size_t size)
{
    void* block = KMemory::allocate(size, false);
    if (!block)
        KErrorHandler::raiseUnrecoverable(KError::PointerNull);
    remember(block);
    ++gHeapCount;
    return block;
}

void KThing::operator delete(void* block)
{
    if (!block)
        return;
    --gHeapCount;
    KMemory::dispose(block);
}

KThing::KThing()
    : flags(claim(this) ? kHeapFlag : 0)
    , referenceCount(1)
{
    ++gLiveCount;
}

KThing::KThing(const KThing& other)
    : flags(claim(this) ? kHeapFlag : 0)
    , referenceCount(1)
{
    // A copy is a new object: it is on the heap only if it was made there,
    // and nobody holds it yet, whatever the source's state.
    (void)other;
    ++gLiveCount;
}

KThing::~KThing()
{
    --gLiveCount;
    // Destroying a heap object that somebody still holds (or that was
    // released once too often) is the error `delete` on a held object makes.
    if (isOnHeap() && referenceCount != 1) {
        if (referenceCount < 1)
            KErrorHandler::raiseError(KError::NegativeReferenceCount);
        else
            KErrorHandler::raiseError(KError::DeleteReferencedObject);
    }
}

KThing* KThing::deepCopy() const
{
    KErrorHandler::raiseError(KError::MethodShouldNotBeCalled);
    return nullptr;
}

bool KThing::isRootClassRegistered() const { return classRecord != nullptr; }

KClass* KThing::getClass() const { return KClass::checkedRecord(classRecord); }

void KThing::readFromFile(KFile& file)
{
    // Reached from a class stream, a class without a stream form means the
    // bytes named something no document holds: the file is damaged, and the
    // load refuses it instead of ending the program.
    if (KClassStreamState::objectDepth() > 0) {
        file.setError(KError::CouldNotReadFile);
        return;
    }
    KErrorHandler::raiseError(KError::ReadNotImplemented);
}

void KThing::writeToFile(KFile&, int32_t) { KErrorHandler::raiseError(KError::WriteNotImplemented); }

void KThing::timerFired(KTimer&) { }

KEventReturn KThing::handleEvent(KEvent&) { return 0; }

void KThing::idle() { }

bool KThing::isClassRegistered() const { return classRecord != nullptr; }

void KThing::describe(KJsonWriter&) const { }

void KThing::incReferenceCount()
{
    if (!isOnHeap()) {
        KErrorHandler::raiseError(KError::ObjectNotOnHeap);
        return;
    }
    ++referenceCount;
}

void KThing::decReferenceCount()
{
    if (!isOnHeap()) {
        KErrorHandler::raiseError(KError::ObjectNotOnHeap);
        return;
    }
    --referenceCount;
    if (referenceCount == 1)
        delete this;
    else if (referenceCount < 1)
        KErrorHandler::raiseError(KError::NegativeReferenceCount);
}

bool KThing::isEqualOrSubClass(const KClass* cls) const
{
    if (!cls || !isRootClassRegistered()) {
        KErrorHandler::raiseError(KError::ClassNotRegistered);
        return false;
    }
    KClass* own = getClass();
    return own && own->isEqualOrSubClass(cls);
}

bool KThing::isEqualOrSubClass(const char* className) const { return isEqualOrSubClass(KClass::findClass(className)); }

int32_t KThing::liveCount() { return gLiveCount; }
int32_t KThing::heapCount() { return gHeapCount; }
