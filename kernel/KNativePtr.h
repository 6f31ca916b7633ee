#pragma once

#include "kernel/KThing.h"

// Holds a handle of the native layer. Its destructor hands the handle to the
// native layer's disposer, which each kind of handle sets.
class KNativePtr : public KThing {
    K_DECLARE_CLASS(KNativePtr)
public:
    using Disposer = void (*)(void* handle);

    KNativePtr() = default;
    explicit KNativePtr(void* handle, Disposer disposer = nullptr);
    KNativePtr(const KNativePtr& other);
    ~KNativePtr() override;

    KThing* deepCopy() const override;

    // The handle; an empty holder raises code 18.
    void* getNativePtr() const;
    bool hasNativePtr() const { return nativePtr != nullptr; }
    // Gives the handle up without disposing of it.
    void* release();

private:
    void* nativePtr = nullptr;
    Disposer disposer = nullptr;
};
