#include "project/legacy/ZClass.h"

#include "kernel/KClass.h"
#include "project/legacy/ZFile.h"

namespace {

struct Entry {
    const char* reader;
    const char* stream;
};

// The old framework's classes carry the framework's prefix in the stream,
// the program's own classes their plain names; the order follows
// ZClass::Kind.
const Entry kClasses[ZClass::KindCount] = {
    { "ZArray", "KArray" },
    { "ZBag", "KBag" },
    { "ZString", "KString" },
    { "ZColor", "KColor" },
    { "ZPoint", "KGraphicPoint" },
    { "ZRectangle", "KGraphicRectangle" },
    { "ZSize", "KGraphicSize" },
    { "ZFont", "KFont" },
    { "ZStyledText", "KStyledText" },
    { "ZStyleInfo", "KStyleInfo" },
    { "ZTape", "Tape" },
    { "ZTapeObject", "TapeObject" },
    { "ZStroke", "Stroke" },
    { "ZStylusText", "StylusText" },
    { "ZStylusSound", "StylusSound" },
    { "ZStylusSpeech", "StylusSpeech" },
    { "ZStylusPause", "StylusPause" },
    { "ZImage", "StylusImage" },
    { "ZSTMovie", "STMovie" },
    { "ZWaitMouseClick", "WaitMouseClick" },
    { "ZWipeOut", "WipeOut" },
};

} // namespace

const char* ZClass::readerName(Kind kind) { return kClasses[kind].reader; }
const char* ZClass::streamName(Kind kind) { return kClasses[kind].stream; }
int32_t ZClass::idOf(Kind kind) { return KClass::computeClassID(kClasses[kind].stream); }

bool ZClass::findClass(ZFile& file, int32_t id, Kind& kind)
{
    for (int32_t k = 0; k < KindCount; ++k) {
        if (idOf(Kind(k)) == id) {
            kind = Kind(k);
            return true;
        }
    }
    file.fail("Class Was Not Registered.", "ZClass::findClass");
    return false;
}

bool ZClass::readClassInfo(ZFile& file, Kind expected, int32_t& version)
{
    int32_t id = file.readLong();
    version = file.readLong();
    if (file.failed())
        return false;
    if (id == idOf(expected))
        return true;
    bool known = false;
    for (int32_t k = 0; k < KindCount && !known; ++k)
        known = idOf(Kind(k)) == id;
    file.fail(known ? "Wrong Class." : "Invalid Class.", "ZClass::readClassInfo");
    return false;
}
