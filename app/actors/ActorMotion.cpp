#include "app/actors/ActorMotion.h"

#include "app/actors/Actor.h"
#include "app/actors/ActorLoading.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kmultimedia/KBresenham.h"
#include "tape/Tape.h"
#include "tape/TapeMediaName.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int32_t kMainSection = 1;

} // namespace

K_DEFINE_CLASS(ActorMotion, TapeObject)

ActorMotion::ActorMotion()
    : stepTimer(new KTimer())
{
    setType(ActorMotionType);
    path.setIsDirect(true);
}

ActorMotion::ActorMotion(const ActorMotion& other)
    : TapeObject(other)
    , stepTimer(new KTimer())
    , actorName(other.actorName)
{
    setType(ActorMotionType);
    path.setIsDirect(true);
    takePath(other.path);
}

ActorMotion::~ActorMotion() { stepTimer->stop(); }

KThing* ActorMotion::deepCopy() const { return new ActorMotion(*this); }

// --- The path ----------------------------------------------------------------------

void ActorMotion::setActorName(const KString& value)
{
    actorName = value;
    noteChanged();
}

void ActorMotion::addPoint(int16_t x, int16_t y)
{
    path.addDirectData(x);
    path.addDirectData(y);
    noteChanged();
}

int16_t ActorMotion::entryAt(int32_t index) const { return int16_t(path.getDirectData()[index]); }

KGraphicPoint ActorMotion::getPoint(int32_t index) const
{
    if (index < 0 || index >= getPointCount())
        return KGraphicPoint(0, 0);
    return KGraphicPoint(entryAt(index * 2), entryAt(index * 2 + 1));
}

KGraphicPoint ActorMotion::getFirstPoint() const { return getPoint(0); }

KGraphicPoint ActorMotion::getLastPoint() const { return getPoint(getPointCount() - 1); }

// Only whole pairs of numbers are taken; anything else in the bag is no path.
void ActorMotion::takePath(const KBag& read)
{
    path.clear();
    path.setIsDirect(true);
    if (!read.getIsDirect())
        return;
    int32_t count = read.getSize() & ~1;
    const int32_t* data = read.getDirectData();
    for (int32_t i = 0; i < count; ++i)
        path.addDirectData(int16_t(data[i]));
}

// --- Persistence -------------------------------------------------------------------

void ActorMotion::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(kMainSection);
    TapeObject::writeToFile(file, version);
    path.writeToFile(file, version);
    actorName.writeToFile(file, version);
    writer.end();
}

void ActorMotion::readFromFile(KFile& file)
{
    KBag read;
    auto readMain = [&](int32_t) {
        TapeObject::readFromFile(file);
        setType(ActorMotionType);
        read.readFromFile(file);
        actorName.readFromFile(file);
    };
    KClassReader::readSections(file, classRecord, { { kMainSection, readMain } });
    takePath(read);
    tapeAcceptMediaName(actorName);
    noteChanged();
}

void ActorMotion::describe(KJsonWriter& out) const
{
    TapeObject::describe(out);
    out.member("actorName", actorName);
    out.key("path");
    out.beginArray();
    for (int32_t i = 0; i < getPointCount(); ++i) {
        KGraphicPoint p = getPoint(i);
        out.beginArray();
        out.value(int32_t(p.x));
        out.value(int32_t(p.y));
        out.endArray();
    }
    out.endArray();
}

// --- Playing -----------------------------------------------------------------------

bool ActorMotion::stepTimerRanOut() const
{
    return !stepTimer->isRunning() || stepTimer->getElapsed() >= stepTimer->getInterval();
}

// One tick of the tape from now.
void ActorMotion::restartStepTimer()
{
    stepTimer->stop();
    stepTimer->setRepeat(false);
    if (Tape* tape = getTape())
        stepTimer->setInterval(tape->getPlayInterval());
    stepTimer->start();
}

void ActorMotion::finish()
{
    stepTimer->stop();
    actor.clear();
    if (Tape* tape = getTape())
        tape->clearPlayingObject();
}

void ActorMotion::startPlaying()
{
    Tape* tape = getTape();
    Actor* found = tape ? dynamic_cast<Actor*>(tape->getActor(actorName)) : nullptr;
    if (!found || getPointCount() == 0) {
        finish();
        return;
    }
    actor = found;
    KGraphicPoint first = getFirstPoint();
    lastX = first.x;
    lastY = first.y;
    pathIndex = 0;
    restTicks = 0;
    restartStepTimer();
    if (getPointCount() == 1) {
        actor->setPosition(float(lastX), float(lastY));
        restTicks = kSinglePointRest;
    }
}

void ActorMotion::playStep()
{
    if (!actor) {
        finish();
        return;
    }
    if (!stepTimerRanOut())
        return;
    if (restTicks < 1) {
        walkSegment();
        afterSegment();
    } else if (restTicks > 1) {
        --restTicks;
        restartStepTimer();
    } else {
        finish();
    }
}

void ActorMotion::walkSegment()
{
    int32_t toX = entryAt(pathIndex);
    int32_t toY = entryAt(pathIndex + 1);
    KBresenham line;
    line.set(lastX, lastY, toX, toY);
    // The walk ends on the end point; the count only guards the loop.
    int32_t points = std::max(std::abs(toX - lastX), std::abs(toY - lastY)) + 1;
    int32_t x = lastX;
    int32_t y = lastY;
    for (int32_t i = 0; i < points; ++i) {
        bool done = line.next(x, y);
        actor->setPosition(float(x), float(y));
        if (done)
            break;
    }
    lastX = x;
    lastY = y;
    pathIndex += 2;
}

void ActorMotion::afterSegment()
{
    int32_t size = path.getSize();
    if (pathIndex >= size) {
        if (size > kShortPathEntries) {
            finish();
            return;
        }
        restTicks = int16_t(6 - size / 2);
    }
    restartStepTimer();
}

// The tape stopped in the middle of the path: the actor stays where it got.
void ActorMotion::stopPlaying()
{
    stepTimer->stop();
    actor.clear();
}

// The finished path leaves the actor at its last point.
void ActorMotion::drawOnPage()
{
    if (path.getSize() < 2)
        return;
    KGraphicPoint last = getLastPoint();
    lastX = last.x;
    lastY = last.y;
    Tape* tape = getTape();
    if (auto* named = tape ? dynamic_cast<Actor*>(tape->getActor(actorName)) : nullptr)
        named->setPosition(float(lastX), float(lastY));
}

void ActorMotion::redrawOver() { }

void ActorMotion::drawSilhouette(KGraphicDevice&, const KGraphicRectangle&, const KGraphicRectangle&) { }

void ActorMotion::scale(double, double) { }

void ActorMotion::scale(double) { }

void ActorMotion::scaleBetween(const KGraphicRectangle&, const KGraphicRectangle&) { }

void ActorMotion::moveBy(int16_t, int16_t) { }

// --- Media -------------------------------------------------------------------------

bool ActorMotion::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    if (actorName.isEmpty())
        return false;
    return findMissingActorFile(actorName, directory, second);
}

void ActorMotion::collectMedia(KDirectory& from, KDirectory& to)
{
    if (actorName.isEmpty())
        return;
    collectActorFile(actorName, from, to);
}

bool ActorMotion::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    if (!replaceActorMedia(getTape(), actorName, oldFile, newFile))
        return false;
    noteChanged();
    return true;
}

void ActorMotion::addMediaName(KStringBag& names) { addActorMediaNames(getTape(), actorName, names); }

bool ActorMotion::usesMediaNamed(const KString& name) { return actorUsesMediaNamed(getTape(), actorName, name); }
