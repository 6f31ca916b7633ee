#include "project/legacy/ZTapeObject.h"

#include "project/legacy/ZFile.h"
#include "project/legacy/ZImage.h"
#include "project/legacy/ZSTMovie.h"
#include "project/legacy/ZStroke.h"
#include "project/legacy/ZStylusPause.h"
#include "project/legacy/ZStylusSound.h"
#include "project/legacy/ZStylusSpeech.h"
#include "project/legacy/ZStylusText.h"
#include "project/legacy/ZWaitMouseClick.h"
#include "project/legacy/ZWipeOut.h"
#include "tape/TapeObject.h"

std::unique_ptr<ZTapeObject> ZTapeObject::createObject(ZFile& file, ZClass::Kind kind)
{
    switch (kind) {
    case ZClass::TapeObject:
        return std::make_unique<ZTapeObject>();
    case ZClass::Stroke:
        return std::make_unique<ZStroke>();
    case ZClass::StylusText:
        return std::make_unique<ZStylusText>();
    case ZClass::StylusSound:
        return std::make_unique<ZStylusSound>();
    case ZClass::StylusSpeech:
        return std::make_unique<ZStylusSpeech>();
    case ZClass::StylusPause:
        return std::make_unique<ZStylusPause>();
    case ZClass::Image:
        return std::make_unique<ZImage>();
    case ZClass::Movie:
        return std::make_unique<ZSTMovie>();
    case ZClass::WaitMouseClick:
        return std::make_unique<ZWaitMouseClick>();
    case ZClass::WipeOut:
        return std::make_unique<ZWipeOut>();
    default:
        file.fail("CreateProc==NULL!", "ZClass::createObject");
        return nullptr;
    }
}

// The type number and the active flag; the type is today's by the class,
// so the old number is only kept.
bool ZTapeObject::readTapeObjectLevel(ZFile& file)
{
    int32_t version = 0;
    if (!ZClass::readClassInfo(file, ZClass::TapeObject, version))
        return false;
    type = file.readLong();
    active = file.readBool();
    return !file.failed();
}

bool ZTapeObject::readHeads(ZFile& file, ZClass::Kind kind, int32_t& version)
{
    return ZClass::readClassInfo(file, kind, version) && readTapeObjectLevel(file);
}

bool ZTapeObject::readFromFile(ZFile& file) { return readTapeObjectLevel(file); }

TapeObjectPtr ZTapeObject::convert(ZConversion&) { return nullptr; }

void ZTapeObject::finish(TapeObject& element) const
{
    if (!active)
        element.deactivate();
}
