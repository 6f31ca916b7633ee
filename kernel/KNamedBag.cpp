#include "kernel/KNamedBag.h"
#include "kernel/KMapHalves.h"

#include "kernel/KClass.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KClassWriter.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"

K_DEFINE_CLASS(KNamedBag, KThing)

KNamedBag::KNamedBag() = default;

KNamedBag::KNamedBag(const KNamedBag& other)
    : KThing(other)
    , keys(other.keys)
    , objects(other.objects)
    , caseSensitive(other.caseSensitive)
{
}

KNamedBag& KNamedBag::operator=(const KNamedBag& other)
{
    keys = other.keys;
    objects = other.objects;
    caseSensitive = other.caseSensitive;
    return *this;
}

KThing* KNamedBag::deepCopy() const
{
    auto* copy = new KNamedBag();
    copy->caseSensitive = caseSensitive;
    KBagPtr keyCopies = kAdopt(static_cast<KBag*>(keys.deepCopy()));
    KBagPtr objectCopies = kAdopt(static_cast<KBag*>(objects.deepCopy()));
    copy->keys = keyCopies.getObject();
    copy->objects = objectCopies.getObject();
    return copy;
}

void KNamedBag::add(const KString& key, const KThingPtr& ptr, bool replace) { add(key, ptr.getObject(), replace); }

void KNamedBag::add(const KString& key, KThing& obj, bool replace)
{
    if (replace)
        removeKey(key);
    if (hasKey(key))
        return;
    int32_t before = objects.getSize();
    objects.add(obj);
    if (objects.getSize() == before)
        return;
    if (key.isOnHeap()) {
        // Sharing the caller's heap key only adds a reference to it.
        keys.add(const_cast<KString&>(key));
    } else {
        keys.add(*new KString(key));
    }
}

void KNamedBag::removeKey(const KString& key)
{
    int32_t pos;
    if (hasKey(key, &pos))
        removeAt(pos);
}

void KNamedBag::removeObject(const KThing& obj)
{
    int32_t pos;
    if (hasObject(obj, &pos))
        removeAt(pos);
}

void KNamedBag::removeAt(int32_t pos)
{
    keys.removeAt(pos);
    objects.removeAt(pos);
}

void KNamedBag::clear()
{
    keys.clear();
    objects.clear();
}

void KNamedBag::swap(int32_t a, int32_t b)
{
    keys.swap(a, b);
    objects.swap(a, b);
}

KString KNamedBag::probeFor(const KString& key) const { return caseSensitive ? key : key.getUpper(); }

bool KNamedBag::keyMatches(int32_t pos, const KString& probe) const
{
    auto* stored = dynamic_cast<KString*>(keys.getAt(pos));
    if (!stored)
        return false;
    if (caseSensitive)
        return stored->compare(probe) == 0;
    return stored->getUpper().compare(probe) == 0;
}

bool KNamedBag::hasKey(const KString& key, int32_t* pos) const { return hasKey(key, 0, pos); }

bool KNamedBag::hasKey(const KString& key, int32_t start, int32_t* pos) const
{
    KString probe = probeFor(key);
    int32_t count = keys.getSize();
    for (int32_t i = start < 0 ? 0 : start; i < count; ++i) {
        if (keyMatches(i, probe)) {
            if (pos)
                *pos = i;
            return true;
        }
    }
    return false;
}

bool KNamedBag::hasObject(const KThing& obj, int32_t* pos) const { return objects.has(obj, pos); }

int32_t KNamedBag::countKeys(const KString& key) const
{
    KString probe = probeFor(key);
    int32_t found = 0;
    int32_t count = keys.getSize();
    for (int32_t i = 0; i < count; ++i) {
        if (keyMatches(i, probe))
            ++found;
    }
    return found;
}

KThing* KNamedBag::findNamedObject(const KString& key) const
{
    int32_t pos;
    return hasKey(key, &pos) ? objects.getAt(pos) : nullptr;
}

KThing& KNamedBag::getNamedObject(const KString& key) const
{
    KThing* found = findNamedObject(key);
    if (!found)
        KErrorHandler::raiseUnrecoverable(KError::PointerNull);
    return *found;
}

KString* KNamedBag::getKeyAt(int32_t pos) const { return dynamic_cast<KString*>(keys.getAt(pos)); }

// Persistence.

void KNamedBag::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    keys.writeToFile(file, version);
    objects.writeToFile(file, version);
    writer.end();
}

void KNamedBag::readFromFile(KFile& file)
{
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) { readHalves(file); });
}

void KNamedBag::readHalves(KFile& file)
{
    int32_t policy = KClassStreamState::unknownClassPolicy();
    KUnknownClassPolicyGuard lowered(policy == KClassStreamState::DropObject ? KClassStreamState::KeepNullSlot
                                                                             : policy);
    objects.setNulledOnRead(0);
    keys.readFromFile(file);
    objects.readFromFile(file);
    if (kCheckMapHalves(file, keys, objects, false))
        removeUnreadEntries();
}

void KNamedBag::removeUnreadEntries()
{
    int32_t pos = 0;
    while (objects.getSize() > 0 && objects.has(static_cast<const KThing*>(nullptr), &pos))
        removeAt(pos);
}

void KNamedBag::describe(KJsonWriter& out) const
{
    out.key("entries");
    out.beginArray();
    for (int32_t i = 0; i < getSize(); ++i) {
        out.beginObject();
        if (KString* name = getKeyAt(i))
            out.member("key", *name);
        else
            out.objectMember("key", keys.getAt(i));
        out.objectMember("value", getObjectAt(i));
        out.endObject();
    }
    out.endArray();
}
