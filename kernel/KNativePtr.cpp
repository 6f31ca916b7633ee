#include "kernel/KNativePtr.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"

K_DEFINE_CLASS(KNativePtr, KThing)

KNativePtr::KNativePtr(void* handle, Disposer disposer)
    : nativePtr(handle)
    , disposer(disposer)
{
}

// A copy shares the handle but does not own it: only one holder disposes.
KNativePtr::KNativePtr(const KNativePtr& other)
    : KThing(other)
    , nativePtr(other.nativePtr)
{
}

KNativePtr::~KNativePtr()
{
    if (nativePtr && disposer)
        disposer(nativePtr);
}

KThing* KNativePtr::deepCopy() const { return new KNativePtr(*this); }

void* KNativePtr::getNativePtr() const
{
    if (!nativePtr)
        KErrorHandler::raiseError(KError::PointerNull);
    return nativePtr;
}

void* KNativePtr::release()
{
    void* handle = nativePtr;
    nativePtr = nullptr;
    return handle;
}
