#include "tape/WaitObject.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSpeech.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaPlay.h"
// The events hold their window: it must be complete before them.
#include "windowing/KWindow.h"

#include "windowing/KKeyEvent.h"
#include "windowing/KMouseEvent.h"

#include <vector>

namespace {

constexpr int32_t kControlKey = 2;

// A copy of the manager's list: stopping a medium may change the list.
std::vector<KAbstractMediaPtr> activeMedia()
{
    std::vector<KAbstractMediaPtr> media;
    KMediaManager* manager = KMediaManager::current();
    if (!manager)
        return media;
    for (int32_t i = 0; i < manager->mediaCount(); ++i) {
        if (KAbstractMedia* one = manager->getMediaAt(i))
            media.emplace_back(one);
    }
    return media;
}

} // namespace

K_DEFINE_CLASS(WaitObject, TapeObject)

WaitObject::WaitObject() { setType(WaitType); }

WaitObject::WaitObject(const WaitObject& other)
    : TapeObject(other)
    , waitForSounds(other.waitForSounds)
    , waitForSpeech(other.waitForSpeech)
    , waitForUser(other.waitForUser)
    , visualWarning(other.visualWarning)
    , stopSounds(other.stopSounds)
    , stopSpeech(other.stopSpeech)
{
    setType(WaitType);
}

// A wait that goes while its marks blink takes them with it.
WaitObject::~WaitObject()
{
    if (marksShown)
        TapeHost::get().showWaitMarks(false);
}

KThing* WaitObject::deepCopy() const { return new WaitObject(*this); }

void WaitObject::redrawOver() { }

bool WaitObject::isStopKey(const KKeyEvent& event)
{
    int32_t code = event.getKeyCode();
    return code == KKeyEvent::Escape || (code == '.' && (event.getModifiers() & kControlKey) != 0);
}

template<class Media>
bool WaitObject::anyStillPlays()
{
    for (const KAbstractMediaPtr& media : activeMedia()) {
        if (dynamic_cast<Media*>(media.get()) && tapeMediaStillPlays(*media))
            return true;
    }
    return false;
}

template<class Media>
void WaitObject::stopAll()
{
    for (const KAbstractMediaPtr& media : activeMedia()) {
        if (dynamic_cast<Media*>(media.get()))
            media->stop();
    }
}

// --- Playing ------------------------------------------------------------------

void WaitObject::startPlaying()
{
    TapeHost& host = TapeHost::get();
    cursorWasVisible = host.isCursorShown();
    // A wait dropped by a pause starts afresh on resuming.
    showMarks(false);
    listening = true;
    phase = Nothing;
    if (waitForSounds)
        phase = Sounds;
    else if (waitForSpeech)
        phase = Speech;
    else if (waitForUser)
        enterUserPhase();
}

void WaitObject::enterUserPhase()
{
    phase = User;
    cursorShown = true;
    TapeHost::get().showCursor(true);
    if (visualWarning)
        showMarks(true);
}

void WaitObject::showMarks(bool shown)
{
    if (marksShown == shown)
        return;
    marksShown = shown;
    TapeHost::get().showWaitMarks(shown);
}

void WaitObject::playStep()
{
    if (phase == Sounds) {
        if (anyStillPlays<KSound>())
            return;
        if (waitForSpeech)
            phase = Speech;
        else if (waitForUser)
            enterUserPhase();
        else
            phase = Answered;
    }
    if (phase == Speech) {
        if (anyStillPlays<KSpeech>())
            return;
        if (waitForUser)
            enterUserPhase();
        else
            phase = Answered;
    }
    if (phase == User || phase == ButtonDown)
        return;
    finish();
}

void WaitObject::finish()
{
    showMarks(false);
    if (stopSounds)
        stopAll<KSound>();
    if (stopSpeech)
        stopAll<KSpeech>();
    stopPlaying();
}

void WaitObject::stopPlaying()
{
    TapeHost& host = TapeHost::get();
    listening = false;
    if (cursorShown) {
        cursorShown = false;
        host.releaseCursor(cursorWasVisible);
    }
    showMarks(false);
    if (Tape* tape = getTape()) {
        if (tape->getPlayingObject() == this)
            tape->clearPlayingObject();
    }
}

// --- The user's answer --------------------------------------------------------

KEventReturn WaitObject::handleKeyDown(KKeyEvent& event)
{
    if (!listening || phase != User || event.getType() != KKeyEvent::KeyDown || isStopKey(event))
        return 0;
    answer();
    return 1;
}

KEventReturn WaitObject::handleMouseDown(KMouseEvent&)
{
    if (!listening || phase != User)
        return 0;
    phase = ButtonDown;
    return 4;
}

KEventReturn WaitObject::handleMouseUp(KMouseEvent&)
{
    if (listening && phase == ButtonDown)
        answer();
    return 0;
}

// The answer ends the wait at once, through the step the tape would take
// at its next tick: that tick then starts the next element, so the story
// goes on within one tick of the answer.
void WaitObject::answer()
{
    phase = Answered;
    Tape* tape = getTape();
    if (tape && tape->getPlayingObject() == this) {
        TapePtr held(tape);
        tape->handleTimer();
    }
}

// --- Persistence ------------------------------------------------------------------

void WaitObject::writeToFile(KFile& out, int32_t version)
{
    KClassWriter writer;
    writer.begin(out, classRecord);
    writer.newSection(1);
    TapeObject::writeToFile(out, version);
    for (bool flag : { waitForSounds, waitForSpeech, waitForUser, visualWarning, stopSounds, stopSpeech })
        out.writeBool(flag);
    writer.end();
}

void WaitObject::readFromFile(KFile& in)
{
    auto readMain = [&](int32_t) {
        TapeObject::readFromFile(in);
        setType(WaitType);
        for (bool* flag : { &waitForSounds, &waitForSpeech, &waitForUser, &visualWarning, &stopSounds, &stopSpeech })
            *flag = in.readBool();
    };
    KClassReader::readSections(in, classRecord, { { 1, readMain } });
    noteChanged();
}

void WaitObject::describe(KJsonWriter& out) const
{
    TapeObject::describe(out);
    out.member("waitForSounds", waitForSounds);
    out.member("waitForSpeech", waitForSpeech);
    out.member("waitForUser", waitForUser);
    out.member("visualWarning", visualWarning);
    out.member("stopSounds", stopSounds);
    out.member("stopSpeech", stopSpeech);
}
