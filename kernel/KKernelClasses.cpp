#include "kernel/KKernelClasses.h"

#include "kernel/KClass.h"
#include "kernel/KComparable.h"
#include "kernel/KNativePtr.h"
#include "kernel/KString.h"

namespace {

// Names in the registry without a class of their own.
void registerRoot(const char* name)
{
    KClass::registerClass(name, KThing::classRecord, &KThing::create, 1);
}

} // namespace

void kRegisterKernelClasses()
{
    if (KThing::classRecord && KClass::first())
        return;
    KThing::classRecord = KClass::registerClass("KThing", nullptr, &KThing::create, 1);
    KClass::registerClass();
    KNativePtr::registerClass();
    registerRoot("KMemory");
    KComparable::registerClass();
    KString::registerClass();
    registerRoot("KFileTypeHandler");
}
