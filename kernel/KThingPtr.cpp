#include "kernel/KThingPtr.h"

#include "kernel/KErrorHandler.h"

// A new reference starts a count of its own, not a copy of the other's.
// NOLINTNEXTLINE(bugprone-copy-constructor-init)
KThingPtr::KThingPtr(const KThingPtr& other)
    : KThing()
{
    hold(other.object);
}

KThingPtr::KThingPtr(KThing& thing) { hold(&thing); }

KThingPtr::KThingPtr(KThing* thing) { hold(thing); }

KThingPtr::~KThingPtr() { clear(); }

KThingPtr& KThingPtr::operator=(const KThingPtr& other) { return operator=(other.object); }

KThingPtr& KThingPtr::operator=(KThing& thing) { return operator=(&thing); }

KThingPtr& KThingPtr::operator=(KThing* thing)
{
    if (thing == object)
        return *this;
    // Take the new reference before releasing the old: the old object may
    // be the only owner of the new one.
    KThing* old = object;
    object = nullptr;
    hold(thing);
    if (old)
        old->decReferenceCount();
    return *this;
}

KThing& KThingPtr::getObject() const
{
    if (!object)
        emptyReference();
    return *object;
}

bool KThingPtr::isValid(KThing** out) const
{
    if (out)
        *out = object;
    return object != nullptr;
}

void KThingPtr::clear()
{
    if (!object)
        return;
    KThing* old = object;
    object = nullptr;
    old->decReferenceCount();
}

void KThingPtr::hold(KThing* thing)
{
    if (!thing)
        return;
    thing->incReferenceCount();
    // A refused reference (a stack object) is not held.
    if (thing->isOnHeap())
        object = thing;
}

void KThingPtr::emptyReference() { KErrorHandler::raiseUnrecoverable(KError::PointerNull); }
