// The play loop: a repeating timer walks the tape and lets each element
// take its time.

#include "graphics/KColor.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "windowing/KTimer.h"

#include <algorithm>

void Tape::startPlaying(int32_t from)
{
    TapeHost& host = TapeHost::get();
    host.hideHighlight(false);
    if (playState != Stopped || from >= getCount() || getCount() <= 0)
        return;
    from = std::max(from, 0);

    // The page shows all that came before the first element to play.
    int32_t saved = position;
    position = from;
    host.redrawPage(*this);
    position = saved;
    playIndex = from;
    if (from == 0)
        fillBlankPage();

    playTimer->setInterval(playInterval);
    playTimer->setMode(KTimer::Bounded);
    playTimer->setMaximumLag(kPlayTimerLag);
    playTimer->setTarget(this);
    playTimer->setRepeat(true);
    playState = Playing;
    host.updateMenuBar();
    playTimer->start();
}

void Tape::timerFired(KTimer& timer)
{
    if (&timer == playTimer.get())
        handleTimer();
}

// At most one element starts a tick, so even an element that is done at
// once costs a tick; one that takes time stays the playing object, and the
// tape waits at its index until it lets go.
void Tape::handleTimer()
{
    if (playState != Playing)
        return;
    if (playingObject) {
        TapeObjectPtr playing = playingObject;
        playing->playStep();
    } else if (playIndex >= 0 && playIndex < getCount()) {
        TapeObject* element = getAt(playIndex);
        if (element && element->isActive()) {
            TapeObjectPtr starting(element);
            playingObject = starting;
            starting->startPlaying();
        }
    }
    if (playState != Playing || playingObject)
        return;
    ++playIndex;
    if (playIndex < getCount())
        return;

    TapeHost& host = TapeHost::get();
    host.setWindowColour(KColor(KColor::Black));
    if (spriteSystem)
        spriteSystem->refreshSpriteLayer();
    if (!isLooping()) {
        host.stopAction(*this);
        return;
    }
    loopToStart();
}

void Tape::loopToStart()
{
    playIndex = 0;
    fillBlankPage();
    stopActors();
    resetActors();
    TapeHost::get().pauseAllMedia();
}

// The element that was playing is dropped, not stopped: resuming starts it
// afresh, so a sound, a text or a stroke cut by the pause begins again.
void Tape::pausePlaying()
{
    if (playState != Playing)
        return;
    TapeHost& host = TapeHost::get();
    host.showPauseMarks(true);
    host.pauseAllMedia();
    clearPlayingObject();
    playState = Paused;
}

void Tape::resumePlaying()
{
    if (playState != Paused)
        return;
    TapeHost::get().showPauseMarks(false);
    playState = Playing;
}

void Tape::stopPlaying()
{
    if (playState == Stopped)
        return;
    if (TapeObjectPtr playing = playingObject)
        playing->stopPlaying();
    clearPlayingObject();
    playState = Stopped;
    playTimer->stop();
    TapeHost& host = TapeHost::get();
    host.pauseAllMedia();
    host.stopAllMedia();
    synchroniseActors();
}

void Tape::skipToPreviousStop(int32_t from)
{
    clearPlayingObject();
    setPlayIndex(findPreviousStop(from));
    TapeHost::get().redrawPage(*this);
}

void Tape::skipToNextStop(int32_t from)
{
    clearPlayingObject();
    setPlayIndex(findNextStop(from));
    TapeHost::get().redrawPage(*this);
}

// --- Input while playing ---------------------------------------------------------

KEventReturn Tape::handleKeyDown(KKeyEvent& event)
{
    TapeObjectPtr playing = playingObject;
    return playing ? playing->handleKeyDown(event) : 0;
}

KEventReturn Tape::handleMouseMoved(KMouseEvent& event)
{
    TapeObjectPtr playing = playingObject;
    return playing ? playing->handleMouseMoved(event) : 0;
}

// Only a request to capture the mouse counts.
KEventReturn Tape::handleMouseDown(KMouseEvent& event)
{
    TapeObjectPtr playing = playingObject;
    if (!playing)
        return 0;
    return playing->handleMouseDown(event) == 4 ? 4 : 0;
}

KEventReturn Tape::handleMouseUp(KMouseEvent& event)
{
    TapeObjectPtr playing = playingObject;
    return playing ? playing->handleMouseUp(event) : 0;
}

KEventReturn Tape::handleMouseDragged(KMouseEvent& event)
{
    TapeObjectPtr playing = playingObject;
    return playing ? playing->handleMouseDragged(event) : 0;
}
