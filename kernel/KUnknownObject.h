#pragma once

#include "kernel/KThing.h"

// Stands where a stream held an object of a class this program does not
// know, so that its class id stays visible. Only readers that ask for it get
// one (the document inspector does): normal loading leaves a null slot or
// drops the object, as the unknown-class policy says.
//
// The class is deliberately not registered: a placeholder has no file form
// of its own and is never written.
class KUnknownObject : public KThing {
public:
    explicit KUnknownObject(int32_t classID);
    KUnknownObject(const KUnknownObject& other);

    KThing* deepCopy() const override;

    int32_t getClassID() const { return classID; }

    // True while a KeepScope is alive.
    static bool isKept();

    // Asks readers for placeholders for the scope's duration.
    class KeepScope {
    public:
        KeepScope();
        ~KeepScope();
        KeepScope(const KeepScope&) = delete;
        KeepScope& operator=(const KeepScope&) = delete;

    private:
        bool saved;
    };

private:
    int32_t classID;
};
