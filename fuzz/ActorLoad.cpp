// Loads arbitrary bytes as an actor document and uses what came out the way
// the program would: lists and ranges the movements, renders them when that
// stays cheap, plays a few ticks, writes the actor again and copies it.
// Damaged input must only make the load fail; a fatal error reached from
// the bytes is a finding and aborts.

#include "app/AppClasses.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorSequence.h"
#include "kernel/KDocument.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kernel/KStringBag.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Past these a crafted actor is only read, written and copied: rendering
// costs a bitmap and a mask of the bounds for every frame, and a stroke of
// millions of dabs.
constexpr int64_t kMaxRenderedArea = 1 << 18;
constexpr int32_t kMaxRenderedFrames = 64;
constexpr int64_t kMaxDabs = 20000;

int32_t abortOnFatal(const char* location, const char* text)
{
    std::fprintf(stderr, "fatal error reached from actor bytes: %s: %s\n", location, text);
    std::abort();
}

void quietMessage(const char*, const char*, int32_t) { }

bool prepare()
{
    KErrorHandler::loadKernelErrors();
    KErrorHandler::setFatalProc(&abortOnFatal);
    KErrorHandler::setMessageProc(&quietMessage);
    registerDocumentClasses();
    return true;
}

int64_t dabsOf(const Stroke& stroke)
{
    int64_t step = std::max(1, stroke.getBrushWidth() / 8);
    int64_t dabs = 1;
    for (int32_t i = 1; i < stroke.getPointCount(); ++i) {
        KGraphicPoint from = stroke.getPoint(i - 1);
        KGraphicPoint to = stroke.getPoint(i);
        int64_t length = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
        dabs += 1 + length / step;
    }
    return dabs;
}

// Only strokes are drawn: other elements may name files to read.
bool cheapToRender(Actor& actor)
{
    actor.recomputeBounds();
    const KGraphicRectangle& bounds = actor.getActorBounds();
    if (int64_t(bounds.width) * bounds.height > kMaxRenderedArea)
        return false;
    int32_t frames = 0;
    int64_t dabs = 0;
    for (int32_t s = 0; s < actor.getSequenceCount(); ++s) {
        ActorSequence* sequence = actor.getSequenceAt(s);
        for (int32_t f = 0; sequence && f < sequence->getFrameCount(); ++f) {
            Tape* frame = sequence->getFrame(f);
            ++frames;
            for (int32_t e = 0; frame && e < frame->getCount(); ++e) {
                auto* stroke = dynamic_cast<Stroke*>(frame->getAt(e));
                if (!stroke)
                    return false;
                dabs += dabsOf(*stroke);
            }
        }
    }
    return frames <= kMaxRenderedFrames && dabs <= kMaxDabs;
}

void exercise(Actor& actor)
{
    KStringBagPtr names = actor.getSequenceNames();
    for (int32_t i = 0; i < names->getSize(); ++i) {
        int32_t first = 0;
        int32_t last = 0;
        if (KString* name = names->getStringAt(i))
            actor.getFrameRange(*name, first, last);
    }
    if (cheapToRender(actor)) {
        actor.renderAll();
        actor.playRendered(1, Actor::RepeatedForwardAndReverse);
        for (int32_t tick = 0; tick < 8; ++tick)
            actor.timerFired(actor.getFrameTimer());
        if (KString* name = names->getSize() > 0 ? names->getStringAt(0) : nullptr) {
            actor.setMovement(*name);
            for (int32_t tick = 0; tick < 8; ++tick)
                actor.timerFired(actor.getFrameTimer());
            actor.getBounds();
        }
        actor.reset();
    }
    KFile out;
    out.setMode(KFileModeMemory);
    actor.writeToFile(out, 1);
    ActorPtr copy = kAdopt(static_cast<Actor*>(actor.deepCopy()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = prepare();
    (void)ready;
    if (size > size_t(INT32_MAX))
        return 0;

    void* image = KMemory::allocate(size ? size : 1, false);
    if (size)
        std::memcpy(image, data, size);
    KFile file;
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(image, int32_t(size));

    KDocumentPtr document(new KDocument());
    document->setMagic(Actor::kFileMagic);
    document->setVersion(Actor::kFileVersion);
    bool loaded = document->loadFrom(file);
    file.close();
    auto* actor = dynamic_cast<Actor*>(document->findNamedObject(KString(Actor::kEntryName)));
    if (loaded && actor)
        exercise(*actor);
    document->clear();
    return 0;
}
