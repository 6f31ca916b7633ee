#include "tape/StylusPause.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "tape/Tape.h"
#include "windowing/KTimer.h"

#include <algorithm>

K_DEFINE_CLASS(StylusPause, TapeObject)

// The timer is only a clock: it has no target, and the pause looks at it
// on the tape's ticks.
StylusPause::StylusPause()
    : timer(new KTimer())
{
    setType(PauseType);
    timer->setRepeat(false);
}

StylusPause::StylusPause(const StylusPause& other)
    : TapeObject(other)
    , duration(other.duration)
    , timer(new KTimer())
{
    setType(PauseType);
    timer->setRepeat(false);
}

StylusPause::~StylusPause() { timer->stop(); }

KThing* StylusPause::deepCopy() const { return new StylusPause(*this); }

void StylusPause::setDuration(int32_t milliseconds)
{
    duration = std::max(milliseconds, 0);
    noteChanged();
}

void StylusPause::startPlaying()
{
    timer->stop();
    timer->setInterval(duration);
    timer->start();
}

void StylusPause::playStep()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    // The timer manager stops the timer when it runs out; without one the
    // elapsed time tells.
    if (timer->isRunning() && timer->getElapsed() < duration)
        return;
    timer->stop();
    tape->clearPlayingObject();
}

void StylusPause::stopPlaying() { timer->stop(); }

void StylusPause::redrawOver() { }

void StylusPause::writeToFile(KFile& out, int32_t version)
{
    KClassWriter writer;
    writer.begin(out, classRecord);
    writer.newSection(1);
    TapeObject::writeToFile(out, version);
    out.writeLong(duration);
    writer.end();
}

void StylusPause::readFromFile(KFile& in)
{
    timer->stop();
    duration = kDefaultDuration;
    auto readMain = [&](int32_t) {
        TapeObject::readFromFile(in);
        setType(PauseType);
        duration = std::max(in.readLong(), 0);
    };
    KClassReader::readSections(in, classRecord, { { 1, readMain } });
    noteChanged();
}

void StylusPause::describe(KJsonWriter& out) const
{
    TapeObject::describe(out);
    out.member("duration", duration);
}
