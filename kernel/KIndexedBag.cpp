#include "kernel/KIndexedBag.h"

#include "kernel/KClass.h"
#include "kernel/KThingPtr.h"

K_DEFINE_CLASS(KIndexedBag, KThing)

KIndexedBag::KIndexedBag() { keys.setIsDirect(true); }

KIndexedBag::KIndexedBag(const KIndexedBag& other)
    : KThing(other)
    , keys(other.keys)
    , objects(other.objects)
{
}

KIndexedBag& KIndexedBag::operator=(const KIndexedBag& other)
{
    keys = other.keys;
    objects = other.objects;
    return *this;
}

KThing* KIndexedBag::deepCopy() const
{
    auto* copy = new KIndexedBag();
    copy->keys = keys;
    KBagPtr objectCopies = kAdopt(static_cast<KBag*>(objects.deepCopy()));
    copy->objects = objectCopies.getObject();
    return copy;
}

void KIndexedBag::add(int32_t key, const KThingPtr& ptr) { add(key, ptr.getObject()); }

void KIndexedBag::add(int32_t key, KThing& obj)
{
    if (hasKey(key))
        return;
    int32_t before = objects.getSize();
    objects.add(obj);
    // A refused object leaves no key behind.
    if (objects.getSize() > before)
        keys.addDirectData(key);
}

void KIndexedBag::removeKey(int32_t key)
{
    int32_t pos;
    if (hasKey(key, &pos))
        removeAt(pos);
}

void KIndexedBag::removeObject(const KThing& obj)
{
    int32_t pos;
    if (hasObject(obj, &pos))
        removeAt(pos);
}

void KIndexedBag::removeAt(int32_t pos)
{
    keys.removeAt(pos);
    objects.removeAt(pos);
}

void KIndexedBag::clear()
{
    keys.clear();
    objects.clear();
}

bool KIndexedBag::hasKey(int32_t key, int32_t* pos) const
{
    const int32_t* values = keys.getDirectData();
    int32_t count = keys.getSize();
    for (int32_t i = 0; i < count; ++i) {
        if (values[i] == key) {
            if (pos)
                *pos = i;
            return true;
        }
    }
    return false;
}

bool KIndexedBag::hasObject(const KThing& obj, int32_t* pos) const { return objects.has(obj, pos); }

KThing* KIndexedBag::getObject(int32_t key) const
{
    int32_t pos;
    return hasKey(key, &pos) ? objects.getAt(pos) : nullptr;
}
