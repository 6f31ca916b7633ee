#include "app/actors/ActorSequence.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"
#include "kernel/KStringBag.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"

K_DEFINE_CLASS(ActorSequence, KThing)

namespace {

constexpr int32_t kMainSection = 1;

// Calls `step` on every element of every frame until it answers true;
// true when one did.
template<class Step>
bool anyElement(const KBag& frames, Step&& step)
{
    for (int32_t f = 0; f < frames.getSize(); ++f) {
        auto* tape = dynamic_cast<Tape*>(frames.getAt(f));
        if (!tape)
            continue;
        for (int32_t e = 0; e < tape->getCount(); ++e) {
            if (TapeObject* element = tape->getAt(e); element && step(*element))
                return true;
        }
    }
    return false;
}

} // namespace

ActorSequence::ActorSequence()
    // TRANSLATORS: the name of an actor's first movement, with "1" appended.
    : name(tapeTranslate("Movement") + "1")
{
}

ActorSequence::ActorSequence(const ActorSequence& other)
    : KThing(other)
    , name(other.name)
    , speed(other.speed)
    , playType(other.playType)
{
    for (int32_t i = 0; i < other.frames.getSize(); ++i) {
        if (Tape* frame = other.getFrame(i)) {
            TapePtr copy = kAdopt(new Tape(*frame));
            frames.add(*copy);
        }
    }
}

ActorSequence::~ActorSequence() { frames.clear(); }

KThing* ActorSequence::deepCopy() const { return new ActorSequence(*this); }

Tape* ActorSequence::getFrame(int32_t index) const
{
    if (index < 0 || index >= frames.getSize())
        return nullptr;
    return dynamic_cast<Tape*>(frames.getAt(index));
}

void ActorSequence::addFrame(Tape& frame) { frames.add(frame); }

void ActorSequence::insertFrame(Tape& frame, int32_t index)
{
    if (index < 0 || index > frames.getSize())
        index = frames.getSize();
    frames.insertAt(frame, index);
}

void ActorSequence::removeFrameAt(int32_t index)
{
    if (index >= 0 && index < frames.getSize())
        frames.removeAt(index);
}

// --- Media -------------------------------------------------------------------

void ActorSequence::collectMedia(KDirectory& from, KDirectory& to)
{
    anyElement(frames, [&](TapeObject& element) {
        element.collectMedia(from, to);
        return false;
    });
}

bool ActorSequence::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    bool changed = false;
    anyElement(frames, [&](TapeObject& element) {
        changed = element.replaceMedia(oldFile, newFile) || changed;
        return false;
    });
    return changed;
}

void ActorSequence::addMediaName(KStringBag& names)
{
    anyElement(frames, [&](TapeObject& element) {
        element.addMediaName(names);
        return false;
    });
}

bool ActorSequence::usesMediaNamed(const KString& mediaName)
{
    return anyElement(frames, [&](TapeObject& element) { return element.usesMediaNamed(mediaName); });
}

bool ActorSequence::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    return anyElement(frames, [&](TapeObject& element) { return element.findMissingMedia(directory, second); });
}

// --- The class stream -------------------------------------------------------

void ActorSequence::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(kMainSection);
    frames.writeToFile(file, version);
    name.writeToFile(file, 1);
    file.writeLong(speed);
    file.writeShort(int16_t(playType));
    writer.end();
}

void ActorSequence::readFromFile(KFile& file)
{
    frames.clear();
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) {
        frames.readFromFile(file);
        name.readFromFile(file);
        speed = file.readLong();
        playType = file.readShort();
    });
    dropForeignFrames();
}

void ActorSequence::dropForeignFrames()
{
    if (frames.getIsDirect()) {
        KBag objects;
        frames = objects;
        return;
    }
    for (int32_t i = frames.getSize() - 1; i >= 0; --i) {
        if (!dynamic_cast<Tape*>(frames.getAt(i)))
            frames.removeAt(i);
    }
}

void ActorSequence::describe(KJsonWriter& out) const
{
    out.member("name", name);
    out.member("speed", speed);
    out.member("playType", playType);
    out.objectMember("frames", &frames);
}
