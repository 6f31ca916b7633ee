#include "project/legacy/ZTape.h"

#include "project/legacy/ZBag.h"
#include "project/legacy/ZConversion.h"
#include "project/legacy/ZFile.h"
#include "tape/Tape.h"
#include "tape/TapeObject.h"

#include <algorithm>

namespace {

// Whether the file starts with a tag: the tape's id twice.
bool startsWithTag(ZFile& file)
{
    int32_t id = ZClass::idOf(ZClass::Tape);
    return file.peekLong(0) == id && file.peekLong(4) == id;
}

} // namespace

bool ZTape::readFromFile(ZFile& file)
{
    if (startsWithTag(file))
        file.readLong();
    int32_t version = 0;
    if (!ZClass::readClassInfo(file, ZClass::Tape, version))
        return false;
    std::vector<std::pair<int32_t, std::unique_ptr<ZTapeObject>>> slots;
    ZArray::Visitor visitor;
    visitor.object = [&](int32_t slot, ZClass::Kind kind) {
        std::unique_ptr<ZTapeObject> element = ZTapeObject::createObject(file, kind);
        if (!element || !element->readFromFile(file))
            return false;
        slots.emplace_back(slot, std::move(element));
        return true;
    };
    int32_t used = 0;
    if (!ZBag::read(file, visitor, used))
        return false;
    for (auto& [slot, element] : slots) {
        if (slot < used)
            elements.push_back(std::move(element));
    }
    firstTiming = file.readLong();
    secondTiming = file.readLong();
    looping = file.readBool();
    hidesBars = file.readBool();
    return !file.failed();
}

TapePtr ZTape::convert(ZConversion& conversion)
{
    TapePtr tape(new Tape());
    tape->getFlags().setValue(0);
    tape->getFlags().set(Tape::Modified);
    if (looping)
        tape->getFlags().set(Tape::LoopingAnimation);
    if (hidesBars) {
        tape->getFlags().set(Tape::HideMenuBar);
        tape->getFlags().set(Tape::HideTools);
    }
    tape->setPageSize(KGraphicSize(kPageWidth, kPageHeight));
    tape->setPlayInterval(std::clamp<int64_t>(int64_t(secondTiming) * 2 / 3, 1, 50));
    OldDocumentReport& report = conversion.getReport();
    for (const auto& old : elements) {
        TapeObjectPtr element = old->convert(conversion);
        if (!element) {
            ++report.recordsSkipped;
            continue;
        }
        ++report.elements[TapeObject::getTypeName(element->getType()).c_str()];
        tape->addElement(*element);
    }
    tape->setPositionQuietly(std::clamp(firstTiming, 0, tape->getCount()));
    return tape;
}
