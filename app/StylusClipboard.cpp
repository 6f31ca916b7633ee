#include "app/StylusClipboard.h"

#include "app/ForeignPaste.h"

#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "app/UndoStep.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeObject.h"
#include "windowing/KClipboardManager.h"

#include <algorithm>
#include <cstring>

namespace {

StylusClipboard* gClipboard = nullptr;

} // namespace

K_DEFINE_CLASS(StylusClipboard, KThing)

StylusClipboard::StylusClipboard()
    : clip(kAdopt(new Tape()))
{
    gClipboard = this;
}

StylusClipboard::~StylusClipboard()
{
    if (publishTimer) {
        publishTimer->stop();
        publishTimer->setTarget(nullptr);
    }
    if (gClipboard == this)
        gClipboard = nullptr;
}

StylusClipboard* StylusClipboard::current() { return gClipboard; }

Tape* StylusClipboard::shownTape() const
{
    StylusWindow* window = StylusWindow::current();
    Tape* tape = window ? window->getTape() : nullptr;
    return tape && !tape->isPlaying() ? tape : nullptr;
}

TapeObjectPtr StylusClipboard::copyOf(TapeObject& element)
{
    return TapeObjectPtr(static_cast<TapeObject*>(element.deepCopy()));
}

// Copies of the source's elements from `first` to `last` replace what the
// target held.
void StylusClipboard::fill(Tape& target, Tape& source, int32_t first, int32_t last, bool onlyStrokes)
{
    target.removeRange(0, target.getCount() - 1);
    target.setPositionQuietly(0);
    for (int32_t index = std::max(first, 0); index <= last && index < source.getCount(); ++index) {
        TapeObject* element = source.getAt(index);
        if (!element || (onlyStrokes && element->getType() != StrokeType))
            continue;
        if (TapeObjectPtr copied = copyOf(*element))
            target.add(*copied);
    }
}

bool StylusClipboard::canCopy() const
{
    Tape* tape = shownTape();
    StylusWindow* window = StylusWindow::current();
    return tape && tape->getPosition() > 0 && !(window && window->isEditing());
}

bool StylusClipboard::canPaste() const
{
    if (!shownTape())
        return false;
    if (clip->getCount() > 0)
        return true;
    if (isPublishing())
        return false;
    if (offered < 0)
        offered = ForeignPaste::isOffered() ? 1 : 0;
    return offered == 1;
}

// A picture or files another program copied since the last copy here:
// not when the clipboard holds elements, ours or another TaleLoom's.
bool StylusClipboard::pasteFromOtherPrograms(Tape& tape)
{
    KClipboardManager* system = KClipboardManager::current();
    if (!system || isPublishing() || system->hasData(kSystemFormat))
        return false;
    std::vector<KString> leftOut;
    std::vector<TapeObjectPtr> made = ForeignPaste::makeElements(tape, leftOut);
    if (!leftOut.empty()) {
        KString names;
        for (const KString& name : leftOut)
            names += (names.isEmpty() ? KString() : KString(", ")) + name;
        TapeHost::get().alert(uiText("Paste"), uiText("These files cannot be pasted into a story: %1", names));
    }
    if (made.empty())
        return !leftOut.empty();
    insertPasted(tape, made);
    return true;
}

// The elements go in at the position together, with one invalidation, as
// one step of the undo history; the position follows them.
void StylusClipboard::insertPasted(Tape& tape, const std::vector<TapeObjectPtr>& elements)
{
    int32_t at = std::clamp(tape.getPosition(), 0, tape.getCount());
    {
        UndoStep step(&tape, UndoHistory::Name::Paste);
        tape.insertElements(at, elements);
        tape.setPositionQuietly(at + int32_t(elements.size()));
    }
    redrawFrom(tape);
}

void StylusClipboard::copy()
{
    if (Tape* tape = shownTape(); tape && tape->getPosition() > 0) {
        fill(*clip, *tape, tape->getPosition() - 1, tape->getPosition() - 1, false);
        publish();
    }
}

void StylusClipboard::copyRange(int32_t first, int32_t last, bool onlyStrokes)
{
    if (Tape* tape = shownTape(); tape && tape->getCount() > 0) {
        fill(*clip, *tape, std::min(first, last), std::max(first, last), onlyStrokes);
        publish();
    }
}

void StylusClipboard::publish()
{
    if (!publishTimer) {
        publishTimer = kAdopt(new KTimer());
        publishTimer->setInterval(0);
        publishTimer->setTarget(this);
    }
    publishTimer->stop();
    publishTimer->start();
}

bool StylusClipboard::isPublishing() const { return publishTimer && publishTimer->isRunning(); }

void StylusClipboard::timerFired(KTimer& timer)
{
    if (&timer == publishTimer.get())
        publishNow();
}

// The clip drawn on a white page of the shown tape's size, and the clip
// as a project stream.
void StylusClipboard::publishNow()
{
    if (publishTimer)
        publishTimer->stop();
    KClipboardManager* system = KClipboardManager::current();
    if (!system || clip->getCount() == 0)
        return;
    Tape* tape = shownTape();
    KGraphicSize size = tape ? tape->getPageSize() : KGraphicSize();
    if (size.isEmpty())
        size = TapeHost::get().newDocumentPageSize();
    KImage picture(size);
    KGraphicRectangle page(0, 0, size.width, size.height);
    picture.getDevice().fillRectangle(page, KColor(KColor::White));
    for (int32_t i = 0; i < clip->getCount(); ++i) {
        if (TapeObject* element = clip->getAt(i))
            element->drawOn(picture.getDevice(), page, page);
    }
    StylusProjectPtr holder(new StylusProject());
    holder->setTape(*static_cast<Tape*>(clip->deepCopy()));
    KFile stream;
    stream.setMode(KFileModeMemory);
    if (!holder->saveTo(stream))
        return;
    const auto* bytes = static_cast<const uint8_t*>(stream.getMemoryData());
    published.assign(bytes, bytes + stream.getMemorySize());
    system->setImageAndData(picture, kSystemFormat, published);
}

bool StylusClipboard::takeFromSystem()
{
    // A clip copied a moment ago is newer than anything there.
    if (isPublishing())
        return false;
    KClipboardManager* system = KClipboardManager::current();
    std::vector<uint8_t> bytes;
    if (!system || !system->getData(kSystemFormat, bytes) || bytes.empty() || bytes.size() > kLargestClip
        || bytes == published)
        return false;
    // The file owns the block it reads from.
    KFile stream;
    stream.setMode(KFileModeReadBuffered);
    void* block = KMemory::allocate(bytes.size(), false);
    if (!block)
        return false;
    std::memcpy(block, bytes.data(), bytes.size());
    stream.openFromRAM(block, int32_t(bytes.size()));
    StylusProjectPtr holder(new StylusProject());
    if (!holder->takeClip(stream) || !holder->getTape() || holder->getTape()->getCount() == 0)
        return false;
    fill(*clip, *holder->getTape(), 0, holder->getTape()->getCount() - 1, false);
    published = bytes;
    return true;
}

// Cut and clear: the elements go, as one step of the undo history; a cut
// also puts copies of them in the clip.
void StylusClipboard::takeOut(Tape& tape, int32_t first, int32_t last, bool keepInClip)
{
    first = std::max(first, 0);
    last = std::min(last, tape.getCount() - 1);
    // The elements before the tape's lock stay where they are.
    if (tape.getLockPosition() >= 0)
        first = std::max(first, tape.getLockPosition());
    if (first > last) {
        TapeHost::get().beep();
        return;
    }
    if (StylusWindow* window = StylusWindow::current())
        window->stopEditing();
    if (keepInClip) {
        fill(*clip, tape, first, last, false);
        publish();
    }
    {
        UndoStep step(&tape, keepInClip ? UndoHistory::Name::Cut : UndoHistory::Name::Clear);
        tape.removeRange(first, last);
    }
    redrawFrom(tape);
}

void StylusClipboard::cut()
{
    if (Tape* tape = shownTape(); tape && tape->getPosition() > 0)
        takeOut(*tape, tape->getPosition() - 1, tape->getPosition() - 1, true);
}

void StylusClipboard::cutRange(int32_t first, int32_t last)
{
    if (Tape* tape = shownTape())
        takeOut(*tape, std::min(first, last), std::max(first, last), true);
}

void StylusClipboard::clear()
{
    if (Tape* tape = shownTape(); tape && tape->getPosition() > 0)
        takeOut(*tape, tape->getPosition() - 1, tape->getPosition() - 1, false);
}

void StylusClipboard::clearRange(int32_t first, int32_t last)
{
    if (Tape* tape = shownTape())
        takeOut(*tape, std::min(first, last), std::max(first, last), false);
}

// Fresh copies of the clip go in at the position together, with one
// invalidation; the position follows them. A bookmark the tape has already
// is not taken twice.
void StylusClipboard::paste()
{
    Tape* tape = shownTape();
    if (!tape)
        return;
    if (StylusWindow* window = StylusWindow::current())
        window->stopEditing();
    // What other programs copied since comes first: elements another
    // TaleLoom copied, or a picture or files.
    takeFromSystem();
    if (tape->getFrameKind() == Tape::Story && pasteFromOtherPrograms(*tape))
        return;
    if (clip->getCount() == 0)
        return;
    bool frame = tape->getFrameKind() == Tape::ActorFrame;
    std::vector<TapeObjectPtr> copies;
    for (int32_t i = 0; i < clip->getCount(); ++i) {
        TapeObject* element = clip->getAt(i);
        if (!element || (frame && element->getType() != StrokeType))
            continue;
        TapeObjectPtr copied = copyOf(*element);
        if (copied && copied->hasBookmark() && tape->hasBookmark(copied->getBookmark()))
            copied->clearBookmark();
        if (copied)
            copies.push_back(copied);
    }
    if (frame && int32_t(copies.size()) < clip->getCount())
        TapeHost::get().alert(uiText("TaleLoom"), uiText("Only for stories, not for Actors!"));
    insertPasted(*tape, copies);
}

void StylusClipboard::redrawFrom(Tape& tape)
{
    if (StylusWindow* window = StylusWindow::current(); window && window->getTape() == &tape)
        window->redrawPage(true);
    if (StylusMenuBar* bar = StylusMenuBar::current())
        bar->update();
}
