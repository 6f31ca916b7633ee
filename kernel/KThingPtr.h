#pragma once

#include "kernel/KThing.h"

// A counted reference to a KThing. Each class KXxx has a typed sibling
// KXxxPtr (KPtr<KXxx>) with the same members.
class KThingPtr : public KThing {
public:
    KThingPtr() = default;
    KThingPtr(const KThingPtr& other);
    KThingPtr(KThing& thing);
    KThingPtr(KThing* thing);
    ~KThingPtr() override;

    KThingPtr& operator=(const KThingPtr& other);
    KThingPtr& operator=(KThing& thing);
    KThingPtr& operator=(KThing* thing);

    // The held object; an empty reference is a fatal error.
    KThing& getObject() const;
    KThing* get() const { return object; }
    bool isValid(KThing** out = nullptr) const;
    explicit operator bool() const { return object != nullptr; }
    void clear();

    bool operator==(const KThingPtr& other) const { return object == other.object; }
    bool operator!=(const KThingPtr& other) const { return object != other.object; }
    bool operator==(const KThing* thing) const { return object == thing; }

protected:
    void hold(KThing* thing);
    static void emptyReference();

    KThing* object = nullptr;
};

template<class T>
class KPtr : public KThingPtr {
public:
    KPtr() = default;
    KPtr(const KPtr& other)
        : KThingPtr(other)
    {
    }
    KPtr(T& thing)
        : KThingPtr(static_cast<KThing&>(thing))
    {
    }
    KPtr(T* thing)
        : KThingPtr(static_cast<KThing*>(thing))
    {
    }
    template<class U>
    KPtr(const KPtr<U>& other)
        : KThingPtr(static_cast<T*>(other.get()))
    {
    }

    KPtr& operator=(const KPtr& other)
    {
        KThingPtr::operator=(other);
        return *this;
    }
    KPtr& operator=(T& thing)
    {
        KThingPtr::operator=(static_cast<KThing&>(thing));
        return *this;
    }
    KPtr& operator=(T* thing)
    {
        KThingPtr::operator=(static_cast<KThing*>(thing));
        return *this;
    }

    T& getObject() const
    {
        if (!object)
            emptyReference();
        return *static_cast<T*>(object);
    }
    T* get() const { return static_cast<T*>(object); }
    T* operator->() const { return &getObject(); }
    T& operator*() const { return getObject(); }

    bool isValid(T** out = nullptr) const
    {
        if (out)
            *out = get();
        return object != nullptr;
    }

    // Clears, creates a fresh object of the class and holds it.
    void newObject()
    {
        clear();
        hold(new T());
    }
};

// Holds a reference to an object that was just made with `new`: the object's
// own initial count stays as the base, so the last release destroys it.
template<class T>
KPtr<T> kAdopt(T* fresh)
{
    return KPtr<T>(fresh);
}
