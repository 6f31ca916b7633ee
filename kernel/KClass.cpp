#include "kernel/KClass.h"

#include "kernel/KErrorHandler.h"
#include "kernel/KMemory.h"

#include <cstring>
#include <string>

namespace {

KClass* gHead = nullptr;
KClass* gTail = nullptr;
int32_t gRecordCount = 0;

char* copyName(const char* name)
{
    size_t length = std::strlen(name);
    auto* copy = static_cast<char*>(KMemory::allocate(length + 1, false));
    KMemory::copy(name, copy, length + 1);
    return copy;
}

} // namespace

KClass* KClass::classRecord = nullptr;

KThing* KClass::create() { return nullptr; }

KClass* KClass::registerClass()
{
    classRecord = registerClass("KClass", KThing::classRecord, nullptr, 1);
    return classRecord;
}

KClass* KClass::getClass() const { return checkedRecord(classRecord); }

bool KClass::isClassRegistered() const { return classRecord != nullptr; }

KClass::~KClass()
{
    if (className)
        KMemory::dispose(className);
    --gRecordCount;
}

KClass* KClass::checkedRecord(KClass* record)
{
    if (!record)
        KErrorHandler::raiseError(KError::PointerNull);
    return record;
}

int32_t KClass::computeClassID(const char* name)
{
    uint32_t id = 1;
    for (const char* c = name; *c; ++c)
        id *= uint32_t(int32_t(static_cast<signed char>(*c)));
    return int32_t(id);
}

KClass* KClass::registerClass(const char* name, KClass* superClass, KCreateProc create, int32_t version)
{
    if (gHead && !superClass) {
        KErrorHandler::raiseError(KError::ClassNotRegistered);
        return nullptr;
    }
    auto* record = new KClass();
    record->incReferenceCount();
    ++gRecordCount;
    record->className = copyName(name);
    record->superClass = superClass;
    record->createProc = create;
    record->version = version;
    if (gTail)
        gTail->next = record;
    else
        gHead = record;
    gTail = record;
    record->generateClassID();
    return record;
}

void KClass::generateClassID()
{
    if (classID != 0) {
        KErrorHandler::raiseError(KError::ClassAlreadyRegistered);
        return;
    }
    int32_t id = computeClassID(className);
    if (hasClass(id)) {
        KErrorHandler::raiseError(KError::ClassNameCollision);
        return;
    }
    classID = id;
}

KClass* KClass::first() { return gHead; }

int32_t KClass::recordCount() { return gRecordCount; }

bool KClass::hasClass(const char* name, KClass** out)
{
    for (KClass* c = gHead; c; c = c->next) {
        if (std::strcmp(c->className, name) == 0) {
            if (out)
                *out = c;
            return true;
        }
    }
    return false;
}

bool KClass::hasClass(int32_t id, KClass** out)
{
    for (KClass* c = gHead; c; c = c->next) {
        if (c->classID == id) {
            if (out)
                *out = c;
            return true;
        }
    }
    return false;
}

KClass* KClass::findClass(const char* name)
{
    KClass* found = nullptr;
    if (name && hasClass(name, &found))
        return found;
    // The caption names the class that was asked for.
    std::string caption = std::string(KSourceLocation::current().function_name()) + " - " + (name ? name : "");
    KErrorHandler::raiseErrorAt(KError::ClassNotRegistered, caption.c_str());
    return nullptr;
}

KClass* KClass::findClass(KCreateProc create)
{
    for (KClass* c = gHead; c; c = c->next) {
        if (c->createProc == create)
            return c;
    }
    KErrorHandler::raiseError(KError::ClassNotRegistered);
    return nullptr;
}

KClass* KClass::findClass(int32_t id)
{
    KClass* found = nullptr;
    if (hasClass(id, &found))
        return found;
    KErrorHandler::raiseError(KError::ClassNotRegistered);
    return nullptr;
}

void KClass::unregisterAll()
{
    KClass* record = gTail;
    while (record && record->superClass) {
        KClass* parent = record->superClass;
        record->superClass = nullptr;
        record->decReferenceCount();
        record = parent;
    }
    gHead = nullptr;
    gTail = nullptr;
}

bool KClass::isStreamable() const
{
    for (const KClass* record = this; record; record = record->superClass)
        if (record->transient)
            return false;
    return true;
}

KThing* KClass::createObject() const
{
    if (!createProc) {
        KErrorHandler::raiseError(KError::CreateProcNull);
        return nullptr;
    }
    return createProc();
}

bool KClass::isEqual(const KClass* other) const
{
    if (!other || classID == 0) {
        KErrorHandler::raiseError(KError::ClassNotRegistered);
        return false;
    }
    return classID == other->classID;
}

bool KClass::isSubClass(const KClass* other) const
{
    if (!other) {
        KErrorHandler::raiseError(KError::ClassNotRegistered);
        return false;
    }
    for (const KClass* c = superClass; c; c = c->superClass) {
        if (c->classID == other->classID)
            return true;
    }
    return false;
}

bool KClass::isSuperClass(const KClass* other) const
{
    if (!other) {
        KErrorHandler::raiseError(KError::ClassNotRegistered);
        return false;
    }
    return other->isSubClass(this);
}

bool KClass::isEqualOrSubClass(const KClass* other) const { return isEqual(other) || isSubClass(other); }

bool KClass::isEqualOrSuperClass(const KClass* other) const { return isEqual(other) || isSuperClass(other); }
