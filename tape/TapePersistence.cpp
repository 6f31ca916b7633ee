// The tape in the class stream.

#include "kernel/KClassReader.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"

#include <algorithm>

namespace {

constexpr int32_t kMainSection = 1;
constexpr int32_t kLockSection = 2;

} // namespace

// Saving clears the modified mark and records that the story has been
// saved once. The lock goes in a section of its own, only when set.
void Tape::writeToFile(KFile& file, int32_t version)
{
    flags.clear(Modified);
    flags.set(SavedOnce);
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(kMainSection);
    KBag::writeToFile(file, version);
    file.writeLong(position);
    file.writeLong(playInterval);
    flags.writeToFile(file, version);
    file.writeShort(int16_t(frameKind));
    if (lockPosition > -1) {
        writer.newSection(kLockSection);
        file.writeLong(lockPosition);
    }
    writer.end();
}

void Tape::describe(KJsonWriter& out) const
{
    KBag::describe(out);
    out.member("position", position);
    out.member("playInterval", playInterval);
    out.member("flags", flags.getValue());
    out.member("frameKind", frameKind);
    out.member("lockPosition", lockPosition);
}

void Tape::readFromFile(KFile& file)
{
    resetForRead();
    auto readMain = [&](int32_t) { readMainSection(file); };
    auto readLock = [&](int32_t) { lockPosition = file.readLong(); };
    KClassReader::readSections(file, classRecord,
                               { { kMainSection, readMain }, { kLockSection, readLock, int32_t(sizeof(int32_t)) } });
    adoptReadElements();
}

// A stream without a lock section means no lock.
void Tape::resetForRead()
{
    position = 0;
    lockPosition = -1;
    detachAll();
    clear();
    clearActors();
    pageCache.clear();
    TapeHost::get().selectTool(getToolEntry());
}

// Unknown kinds of element are dropped rather than kept as empty slots: a
// tape has no use for a hole.
void Tape::readMainSection(KFile& file)
{
    {
        int32_t policy = KClassStreamState::unknownClassPolicy();
        KUnknownClassPolicyGuard guard(policy == KClassStreamState::KeepNullSlot ? KClassStreamState::DropObject
                                                                                 : policy);
        KBag::readFromFile(file);
    }
    position = file.readLong();
    playInterval = file.readLong();
    flags.readFromFile(file);
    frameKind = file.readShort();
}

// Whatever the stream held that is not an element goes; the position is
// cut to what was read; every element learns its tape, and the program may
// warn once about an engine that a speaking or moving element needs.
void Tape::adoptReadElements()
{
    if (getIsDirect()) {
        KBag objects;
        KBag::operator=(objects);
    }
    for (int32_t i = getCount() - 1; i >= 0; --i) {
        if (!dynamic_cast<TapeObject*>(KBag::getAt(i)))
            removeAt(i);
    }
    position = std::clamp(position, 0, getCount());
    TapeHost& host = TapeHost::get();
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        element->setTape(*this);
        int32_t type = element->getType();
        if (type == SpeechType || (type == TextType && element->speaks()))
            host.checkSpeechEngine();
        else if (type == MovieType)
            host.checkMovieEngine();
    }
    pageCache.clear();
}
