#pragma once

#include "kernel/KThing.h"

// The run-time record of one class: name, superclass, create procedure,
// version and the class id stored in files. The id is the wrapping 32-bit
// product of the name's signed 8-bit characters, so a class's name is part
// of the file format and two names that multiply alike cannot coexist.
class KClass : public KThing {
    K_DECLARE_CLASS(KClass)
public:
    ~KClass() override;

    static KClass* registerClass(const char* name, KClass* superClass, KCreateProc create, int32_t version);
    static int32_t computeClassID(const char* name);

    static KClass* findClass(const char* name);
    static KClass* findClass(KCreateProc create);
    static KClass* findClass(int32_t id);
    static bool hasClass(const char* name, KClass** out = nullptr);
    static bool hasClass(int32_t id, KClass** out = nullptr);

    // Cuts the chain from its tail back along the superclass line.
    static void unregisterAll();
    static int32_t recordCount();
    // The getClass() of a class whose static record is null raises 18.
    static KClass* checkedRecord(KClass* record);

    KThing* createObject() const;
    void generateClassID();

    // Windows, managers, events and other objects of the running program
    // must never be made from file bytes: their constructors reach the
    // desktop or replace singletons. A class marked transient, and every
    // class below it, is refused by the stream readers before it is created.
    void setTransient() { transient = true; }
    bool isStreamable() const;

    bool isEqual(const KClass* other) const;
    bool isSubClass(const KClass* other) const;
    bool isSuperClass(const KClass* other) const;
    bool isEqualOrSubClass(const KClass* other) const;
    bool isEqualOrSuperClass(const KClass* other) const;

    const char* getName() const { return className; }
    int32_t getClassID() const { return classID; }
    void setClassID(int32_t id) { classID = id; }
    int32_t getVersion() const { return version; }
    KClass* getSuperClass() const { return superClass; }
    KCreateProc getCreateProc() const { return createProc; }
    KClass* getNext() const { return next; }

    static KClass* first();

private:
    KClass() = default;

    KClass* next = nullptr;
    KClass* superClass = nullptr;
    char* className = nullptr;
    KCreateProc createProc = nullptr;
    int32_t version = 1;
    int32_t classID = 0;
    bool transient = false;
};
