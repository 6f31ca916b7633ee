// Walking along the tape and searching it.

#include "tape/Tape.h"
#include "tape/TapeHost.h"

#include <algorithm>

namespace {

// The kinds of the navigation palette, by the type they stand for.
constexpr int32_t kKindTypes[] = {
    StrokeType,         TextType, SoundType, SpeechType, ActorActionType,
    PageTransitionType, WaitType, MovieType, ImageType,  RelayMacroType,
};
constexpr int32_t kKindCount = int32_t(sizeof(kKindTypes) / sizeof(kKindTypes[0]));

} // namespace

int32_t Tape::typeOfKind(int16_t kind)
{
    if (kind < 0 || kind >= kKindCount)
        return -1;
    return kKindTypes[kind];
}

int32_t Tape::rebuildLimit() const
{
    int32_t limit = playState == Stopped ? position : playIndex;
    return std::clamp(limit, 0, getCount());
}

// Moving on the tape counts as a change of a story, since the position is
// saved with it.
void Tape::walkTo(int32_t target)
{
    TapeBusyCursor busy;
    TapeHost& host = TapeHost::get();
    host.hideHighlight(false);
    position = target;
    if (frameKind == Story)
        flags.set(Modified);
    host.redrawPage(*this);
    afterWalk();
}

// One step forward draws just the new element over the page, which is
// first given back what the highlight covered.
void Tape::walkOneForward()
{
    TapeBusyCursor busy;
    TapeHost& host = TapeHost::get();
    host.hideHighlight(true);
    ++position;
    if (frameKind == Story)
        flags.set(Modified);
    TapeObject* element = getCurrentElement();
    if (element && element->isActive())
        element->drawOnPage();
    host.selectTool(getToolEntry());
    afterWalk();
}

void Tape::afterWalk()
{
    TapeHost& host = TapeHost::get();
    if (host.autoEditCurrentElement())
        beginAutoEdit();
    if (host.highlightCurrentElement())
        host.showHighlight(*this);
}

// Texts, movies, images and actors are edited on the page when the user
// stops on them; the host tells an actor's actions apart.
void Tape::beginAutoEdit()
{
    if (playState != Stopped || position < 1)
        return;
    TapeObject* element = getCurrentElement();
    if (!element)
        return;
    switch (element->getType()) {
    case TextType:
    case MovieType:
    case ImageType:
    case ActorActionType:
        TapeHost::get().beginInPlaceEdit(*this, *element);
        return;
    default:
        return;
    }
}

void Tape::goToPosition(int32_t p)
{
    int32_t target = std::clamp(p, 0, getCount());
    if (lockForbids(target))
        return;
    walkTo(target);
}

void Tape::goToStart()
{
    if (lockPosition > 0) {
        if (lockPosition + 1 > getCount())
            return;
        walkTo(lockPosition + 1);
        return;
    }
    walkTo(0);
}

void Tape::goToEnd()
{
    if (lockPosition > getCount())
        return;
    walkTo(getCount());
}

void Tape::stepBack()
{
    if (position <= 0 || lockForbids(position - 1))
        return;
    walkTo(position - 1);
}

void Tape::stepForward()
{
    if (position >= getCount() || lockForbids(position + 1))
        return;
    walkOneForward();
}

void Tape::goToPreviousOfKind(int16_t kind)
{
    int32_t type = typeOfKind(kind);
    if (type < 0)
        return;
    int32_t target = findPreviousOfType(type);
    if (target < 0)
        return;
    TapeHost::get().hideHighlight(false);
    goToPosition(target);
}

void Tape::goToNextOfKind(int16_t kind)
{
    int32_t type = typeOfKind(kind);
    if (type < 0)
        return;
    int32_t target = findNextOfType(type);
    if (target < 0)
        return;
    TapeHost::get().hideHighlight(false);
    goToPosition(target);
}

// To the position just before the transition that began the page before.
void Tape::goToPreviousPage()
{
    if (position < 1 || lockForbids(position - 1))
        return;
    int32_t target = findPreviousPage(position - 1);
    TapeHost::get().hideHighlight(false);
    goToPosition(target);
}

void Tape::goToNextPage()
{
    int32_t target = findNextPage(position + 1);
    TapeHost::get().hideHighlight(false);
    goToPosition(target);
}

void Tape::setPositionQuietly(int32_t p)
{
    position = std::clamp(p, 0, getCount());
    if (frameKind == Story)
        flags.set(Modified);
    TapeHost::get().selectTool(getToolEntry());
}

// --- Searches ----------------------------------------------------------------

int32_t Tape::findPreviousOfType(int32_t type) const
{
    for (int32_t i = std::min(position - 2, getCount() - 1); i >= 0; --i) {
        if (getAt(i) && getAt(i)->getType() == type)
            return i + 1;
    }
    return -1;
}

int32_t Tape::findNextOfType(int32_t type) const
{
    for (int32_t i = std::max(position, 0); i < getCount(); ++i) {
        if (getAt(i) && getAt(i)->getType() == type)
            return i + 1;
    }
    return -1;
}

// Index 0 is never looked at: a page that begins with the tape begins with
// a black page all the same.
int32_t Tape::findPreviousPage(int32_t p) const
{
    for (int32_t i = std::min(p - 1, getCount() - 1); i >= 1; --i) {
        if (getAt(i) && getAt(i)->getType() == PageTransitionType)
            return i;
    }
    return 0;
}

int32_t Tape::findNextPage(int32_t p) const
{
    if (p >= getCount())
        return p;
    for (int32_t i = std::max(p, 0); i < getCount(); ++i) {
        if (getAt(i) && getAt(i)->getType() == PageTransitionType)
            return i;
    }
    return getCount();
}

int32_t Tape::findPreviousStop(int32_t p) const
{
    for (int32_t i = std::min(p - 1, getCount() - 1); i >= 1; --i) {
        if (getAt(i) && isStop(*getAt(i)))
            return i;
    }
    return 0;
}

int32_t Tape::findNextStop(int32_t p) const
{
    for (int32_t i = std::max(p, 0); i < getCount(); ++i) {
        if (getAt(i) && isStop(*getAt(i)))
            return i;
    }
    return getCount();
}

// What the arrow keys jump between while the tape plays: transitions,
// movies, speech, sounds and texts that read themselves aloud.
bool Tape::isStop(const TapeObject& element) const
{
    switch (element.getType()) {
    case PageTransitionType:
    case MovieType:
    case SpeechType:
    case SoundType:
        return true;
    case TextType:
        return element.speaks();
    default:
        return false;
    }
}
