#include "kernel/KIndexedBag.h"
#include "kernel/KMapHalves.h"

#include "kernel/KClass.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"
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

// Persistence.

void KIndexedBag::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    keys.writeToFile(file, version);
    objects.writeToFile(file, version);
    writer.end();
}

void KIndexedBag::readFromFile(KFile& file)
{
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) { readHalves(file); });
}

void KIndexedBag::readHalves(KFile& file)
{
    // Unlike KNamedBag, the lowered policy is not restored: later unknown
    // objects of the same load stay as nulls too.
    if (KClassStreamState::unknownClassPolicy() == KClassStreamState::DropObject)
        KClassStreamState::setUnknownClassPolicy(KClassStreamState::KeepNullSlot);
    objects.setNulledOnRead(0);
    keys.readFromFile(file);
    objects.readFromFile(file);
    if (kCheckMapHalves(file, keys, objects, true))
        removeUnreadEntries();
}

void KIndexedBag::removeUnreadEntries()
{
    int32_t pos = 0;
    while (objects.getSize() > 0 && objects.has(static_cast<const KThing*>(nullptr), &pos))
        removeAt(pos);
}

void KIndexedBag::describe(KJsonWriter& out) const
{
    out.key("entries");
    out.beginArray();
    for (int32_t i = 0; i < getSize(); ++i) {
        out.beginObject();
        out.member("key", getKeyAt(i));
        out.objectMember("value", getObjectAt(i));
        out.endObject();
    }
    out.endArray();
}
