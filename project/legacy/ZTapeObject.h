#pragma once

#include "project/legacy/ZClass.h"
#include "tape/TapeForward.h"

#include <cstdint>
#include <memory>

class ZConversion;
class ZFile;

// An element of an old tape. Each class reads its own stream, its head
// first, then its base's level, then its fields, and hands out today's
// element. The base alone makes none.
class ZTapeObject {
public:
    virtual ~ZTapeObject() = default;

    // The reader of an old element class; null for a class that is no
    // element ("CreateProc==NULL!").
    static std::unique_ptr<ZTapeObject> createObject(ZFile& file, ZClass::Kind kind);

    virtual bool readFromFile(ZFile& file);
    // Today's element, or null when the old one makes none.
    virtual TapeObjectPtr convert(ZConversion& conversion);

protected:
    // The ZTapeObject level: its head, the type number and the active flag.
    bool readTapeObjectLevel(ZFile& file);
    // Reads the head of `kind` and the ZTapeObject level after it.
    bool readHeads(ZFile& file, ZClass::Kind kind, int32_t& version);
    // Gives the element the old one's active flag.
    void finish(TapeObject& element) const;

    int32_t type = 0;
    bool active = true;
};
