#include "tape/Tape.h"

#include "kernel/KClass.h"
#include "kernel/KDirectory.h"
#include "kernel/KStringBag.h"
#include "kernel/KVariable.h"
#include "tape/Stroke.h"
#include "tape/TapeHost.h"
#include "tape/WipeOut.h"
#include "windowing/KTimer.h"

#include <algorithm>
#include <cstdint>

namespace {

// Screens up to this height hide the menu bar and the tools while playing;
// up to the second only the tools; taller ones neither.
constexpr int32_t kSmallScreenHeight = 480;
constexpr int32_t kMediumScreenHeight = 600;

// Truncation toward zero into 16 bits, a value out of range kept at the
// nearest end.
int16_t clampShort(double value)
{
    if (!(value > INT16_MIN))
        return INT16_MIN;
    if (value > INT16_MAX)
        return INT16_MAX;
    return int16_t(value);
}

} // namespace

K_DEFINE_CLASS(Tape, KBag)

Tape::Tape()
    : playTimer(new KTimer())
{
    TapeHost& host = TapeHost::get();
    pageSize = host.newDocumentPageSize();
    int32_t height = host.screenHeight();
    if (height <= kSmallScreenHeight) {
        flags.set(HideMenuBar | HideTools);
    } else if (height > kMediumScreenHeight) {
        flags.clear(HideMenuBar | HideTools);
    } else {
        flags.clear(HideMenuBar);
        flags.set(HideTools);
    }
}

// Each element is copied by its own class; numbers without a class (the
// old relay macros, anything out of range) are left out; so the bag's own
// copy is not wanted.
// NOLINTNEXTLINE(bugprone-copy-constructor-init)
Tape::Tape(const Tape& other)
    : KBag()
    , playTimer(new KTimer())
{
    pageSize = other.pageSize;
    for (int32_t i = 0; i < other.getCount(); ++i) {
        TapeObject* element = other.getAt(i);
        if (!element)
            continue;
        int32_t type = element->getType();
        if (type < WaitType || type > ActorMotionType || type == RelayMacroType)
            continue;
        auto* copy = dynamic_cast<TapeObject*>(element->deepCopy());
        if (!copy)
            continue;
        copy->setTape(*this);
        add(*copy);
    }
    position = std::min(other.position, getCount());
    lockPosition = other.lockPosition;
    flags = other.flags;
    playInterval = other.playInterval;
    frameKind = other.frameKind;
    ownerActor = other.ownerActor;
    playingObject.clear();
}

Tape::~Tape()
{
    playTimer->stop();
    playTimer->setTarget(nullptr);
    playingObject.clear();
    detachAll();
}

KThing* Tape::deepCopy() const { return new Tape(*this); }

// Elements that outlive the tape (in a dialog, on the clipboard) must not
// point at it.
void Tape::detachAll()
{
    for (int32_t i = 0; i < getCount(); ++i) {
        if (TapeObject* element = getAt(i))
            release(*element);
    }
}

// An element taken over by another tape belongs to that one now.
void Tape::release(TapeObject& element)
{
    if (element.getTape() == this)
        element.clearTape();
}

// --- Fields ----------------------------------------------------------------------

void Tape::setPlayIndex(int32_t index) { playIndex = std::clamp(index, 0, std::max(0, getCount() - 1)); }

void Tape::setFrameKind(int32_t kind)
{
    frameKind = kind;
    pageCache.clear();
}

void Tape::setLooping(bool looping)
{
    if (looping)
        flags.set(LoopingAnimation);
    else
        flags.clear(LoopingAnimation);
}

void Tape::setPageSize(const KGraphicSize& size) { pageSize = size; }

// Snapshots of the page were drawn with the files of the old folder.
void Tape::setMediaDirectory(const KDirectory& directory)
{
    mediaDirectory = KDirectoryPtr(new KDirectory(directory));
    pageCache.clear();
}

void Tape::clearMediaDirectory()
{
    mediaDirectory.clear();
    pageCache.clear();
}

KDirectory* Tape::getMediaDirectory() const { return mediaDirectory.get(); }

void Tape::clearPlayingObject() { playingObject.clear(); }

// --- Elements --------------------------------------------------------------------

TapeObject* Tape::getAt(int32_t index) const { return static_cast<TapeObject*>(KBag::getAt(index)); }

int32_t Tape::getTypeAtPosition(int32_t p) const
{
    if (p < 1 || p > getCount())
        return NoTapeObject;
    TapeObject* element = getAt(p - 1);
    return element ? element->getType() : NoTapeObject;
}

int32_t Tape::getToolEntry() const
{
    TapeObject* element = hasCurrentElement() ? getCurrentElement() : nullptr;
    return element ? element->getToolEntry() : NoTapeObject;
}

bool Tape::lockForbids(int32_t target) const { return lockPosition >= 0 && lockPosition > target; }

// --- Editing ---------------------------------------------------------------------

void Tape::setModified()
{
    flags.set(Modified);
    if (frameKind == ActorFrame && ownerActor)
        TapeHost::get().markActorModified(*ownerActor);
}

void Tape::insertAtPosition(TapeObject& element)
{
    if (element.hasBookmark() && hasBookmark(element.getBookmark()))
        element.clearBookmark();
    int32_t index = std::clamp(position, 0, getCount());
    insertAt(element, index);
    element.setTape(*this);
    position = index + 1;
    pageCache.invalidateFrom(index);
}

void Tape::addElement(TapeObject& element)
{
    element.setPreviewValid(false);
    insertAtPosition(element);
    setModified();
    invalidatePreviews();
    if (element.hasBookmark())
        TapeHost::get().refreshBookmarks();
}

void Tape::removeCurrentElement()
{
    TapeHost& host = TapeHost::get();
    if (position < 1) {
        host.beep();
        setModified();
        invalidatePreviews();
        return;
    }
    if (lockForbids(position - 1) || position > getCount())
        return;
    TapeObjectPtr element(getAt(position - 1));
    bool hadBookmark = element && element->hasBookmark();
    --position;
    removeAt(position);
    if (element)
        release(*element);
    pageCache.invalidateFrom(position);
    setModified();
    invalidatePreviews();
    if (hadBookmark)
        host.refreshBookmarks();
}

void Tape::removeRange(int32_t first, int32_t last)
{
    first = std::max(first, 0);
    last = std::min(last, getCount() - 1);
    for (int32_t index = last; index >= first; --index) {
        TapeObjectPtr element(getAt(index));
        removeAt(index);
        if (element)
            release(*element);
        if (position > first)
            --position;
    }
    pageCache.invalidateFrom(first);
    setModified();
    invalidatePreviews();
}

std::vector<TapeObjectPtr> Tape::takeElements(int32_t first, int32_t count)
{
    std::vector<TapeObjectPtr> taken;
    first = std::clamp(first, 0, getCount());
    count = std::clamp(count, 0, getCount() - first);
    if (count == 0)
        return taken;
    taken.reserve(size_t(count));
    for (int32_t index = first; index < first + count; ++index)
        taken.emplace_back(getAt(index));
    removeSlots(first, count);
    for (TapeObjectPtr& element : taken) {
        if (element)
            release(*element);
    }
    changedFrom(first, first);
    return taken;
}

void Tape::insertElements(int32_t at, const std::vector<TapeObjectPtr>& elements)
{
    if (elements.empty())
        return;
    at = std::clamp(at, 0, getCount());
    std::vector<KThing*> objects;
    objects.reserve(elements.size());
    for (const TapeObjectPtr& element : elements) {
        if (element)
            objects.push_back(element.get());
    }
    int32_t before = getCount();
    if (!insertAllAt(objects.data(), int32_t(objects.size()), at))
        return;
    int32_t end = at + (getCount() - before);
    for (int32_t index = at; index < end; ++index)
        getAt(index)->setTape(*this);
    changedFrom(at, end);
}

void Tape::replaceElement(int32_t index, TapeObject& element)
{
    if (index < 0 || index >= getCount())
        return;
    TapeObjectPtr old(getAt(index));
    removeAt(index);
    if (old)
        release(*old);
    insertAt(element, index);
    element.setTape(*this);
    changedFrom(index, index + 1);
}

// What the undo's moves share: the page cache from the first index that
// changed, the thumbnails from the last one to the next page, the changed
// mark and the bookmarks.
void Tape::changedFrom(int32_t first, int32_t last)
{
    pageCache.invalidateFrom(first);
    for (int32_t i = first; i < last && i < getCount(); ++i) {
        if (TapeObject* element = getAt(i))
            element->setPreviewValid(false);
    }
    setModified();
    invalidatePreviewsFrom(std::max(first, last - 1) + 1, false);
    TapeHost::get().refreshBookmarks();
}

void Tape::insertTape(Tape& other)
{
    TapeHost& host = TapeHost::get();
    if (frameKind == ActorFrame)
        host.alert(tapeTranslate("TaleLoom"), tapeTranslate("Only for stories, not for Actors!"));
    // Taken first: the other tape may be this one.
    std::vector<TapeObjectPtr> elements;
    for (int32_t i = 0; i < other.getCount(); ++i) {
        if (TapeObject* element = other.getAt(i))
            elements.emplace_back(element);
    }
    for (auto& element : elements)
        insertAtPosition(*element);
    setModified();
    stopActors();
    clearActors();
    synchroniseActors();
    invalidatePreviews();
}

void Tape::editCurrentElement()
{
    TapeHost& host = TapeHost::get();
    TapeObject* element = hasCurrentElement() ? getCurrentElement() : nullptr;
    if (!element) {
        host.beep();
        return;
    }
    switch (element->getType()) {
    case StrokeType: {
        auto& stroke = static_cast<Stroke&>(*element);
        KColor colour = stroke.getColour();
        if (!host.chooseColour(colour))
            return;
        stroke.setColour(colour);
        elementChanged(stroke);
        stroke.drawOnPage();
        stroke.setPreviewValid(false);
        invalidatePreviews();
        if (spriteSystem)
            spriteSystem->refreshAll();
        host.refreshThumbnails();
        return;
    }
    case ActorActionType:
        host.leaveInPlaceEdit();
        return;
    case ActorMotionType:
        host.alert(tapeTranslate("Edit Object"), tapeTranslate("No data to edit for this object"));
        return;
    case RelayMacroType:
        return;
    default:
        host.openElementDialog(*this, *element);
        return;
    }
}

// The element's own revision already keeps the cache honest; this gives
// the memory of the snapshots it spoilt back at once.
void Tape::elementChanged(TapeObject& element)
{
    int32_t index = findIndexOf(element);
    if (index >= 0)
        pageCache.invalidateFrom(index);
}

void Tape::invalidatePreviews()
{
    if (position > getCount())
        return;
    for (int32_t i = std::max(0, position - 1); i < getCount(); ++i) {
        if (TapeObject* element = getAt(i))
            element->invalidatePreview();
    }
    TapeHost::get().previewsInvalidated(*this);
}

// After an in-place edit: only up to the next page, since the page is new
// from there on.
void Tape::invalidatePreviewsFrom(int32_t p, bool onlyClearingTransitions)
{
    if (p > getCount())
        return;
    int32_t start = std::max(0, p - 1);
    for (int32_t i = start; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (!element)
            continue;
        if (i > start && element->getType() == PageTransitionType) {
            auto* transition = dynamic_cast<WipeOut*>(element);
            if (!onlyClearingTransitions || (transition && transition->getRemovesActors()))
                break;
        }
        element->invalidatePreview();
    }
    TapeHost::get().previewsInvalidated(*this);
}

// --- Bookmarks -------------------------------------------------------------------

KBagPtr Tape::getBookmarkNames() const
{
    KBagPtr names(new KBag());
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (element && element->hasBookmark())
            names->add(*new KString(element->getBookmark()));
    }
    return names;
}

KNamedBagPtr Tape::getBookmarkMap() const
{
    KNamedBagPtr map(new KNamedBag());
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (element && element->hasBookmark())
            map->add(element->getBookmark(), *new KVariable(i));
    }
    return map;
}

bool Tape::hasBookmark(const KString& name) const
{
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (element && element->hasBookmark() && element->getBookmark() == name)
            return true;
    }
    return false;
}

void Tape::editCurrentBookmark()
{
    if (position > 0 && hasCurrentElement())
        TapeHost::get().editBookmark(*this, *getCurrentElement());
}

void Tape::goToBookmark(const KString& name)
{
    int32_t index = -1;
    for (int32_t i = 0; i < getCount() && index < 0; ++i) {
        TapeObject* element = getAt(i);
        if (element && element->hasBookmark() && element->getBookmark() == name)
            index = i;
    }
    if (index < 0)
        return;
    if (playState == Stopped) {
        TapeHost::get().hideHighlight(false);
        goToPosition(index + 1);
        return;
    }
    playIndex = std::max(0, index - 1);
    if (TapeObjectPtr playing = playingObject)
        playing->stopPlaying();
    clearPlayingObject();
    synchroniseActors();
}

// --- The whole tape --------------------------------------------------------------

void Tape::getBounds(KGraphicRectangle& bounds) const
{
    bounds = KGraphicRectangle(0, 0, 0, 0);
    for (int32_t i = 0; i < getCount(); ++i) {
        if (TapeObject* element = getAt(i))
            bounds.uniteWith(element->getBounds());
    }
}

void Tape::moveAll(int16_t x, int16_t y)
{
    if (x == 0 && y == 0)
        return;
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (!element)
            continue;
        int32_t type = element->getType();
        if (type == StrokeType || type == TextType || type == ActorMotionType)
            element->moveBy(x, y);
    }
}

// Strokes and texts grow about the centre of the whole tape: each is scaled
// about its own centre and then moved away from the tape's.
void Tape::scaleAll(double x, double y)
{
    if (x == 1.0 && y == 1.0)
        return;
    KGraphicRectangle bounds;
    getBounds(bounds);
    int32_t cx = bounds.x + bounds.width / 2;
    int32_t cy = bounds.y + bounds.height / 2;
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (!element || (element->getType() != StrokeType && element->getType() != TextType))
            continue;
        element->scale(x, y);
        KGraphicRectangle own = element->getBounds();
        int32_t ex = own.x + own.width / 2;
        int32_t ey = own.y + own.height / 2;
        element->moveBy(clampShort((cx - ex) * (1.0 - x)), clampShort((cy - ey) * (1.0 - y)));
    }
}

void Tape::mirrorAll(bool horizontal, int16_t centre)
{
    for (int32_t i = 0; i < getCount(); ++i) {
        if (TapeObject* element = getAt(i))
            element->mirror(horizontal, centre);
    }
}

bool Tape::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (element && element->findMissingMedia(directory, second))
            return true;
    }
    return false;
}

bool Tape::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    TapeBusyCursor busy;
    bool replaced = false;
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (element && element->replaceMedia(oldFile, newFile))
            replaced = true;
    }
    return replaced;
}

KStringBagPtr Tape::getMediaNames() const
{
    KStringBagPtr names(new KStringBag());
    for (int32_t i = 0; i < getCount(); ++i) {
        if (TapeObject* element = getAt(i))
            element->addMediaName(*names);
    }
    return names;
}

bool Tape::usesMediaNamed(const KString& name) const
{
    for (int32_t i = 0; i < getCount(); ++i) {
        TapeObject* element = getAt(i);
        if (element && element->usesMediaNamed(name))
            return true;
    }
    return false;
}

void Tape::collectMedia(KDirectory& from, KDirectory& to)
{
    for (int32_t i = 0; i < getCount(); ++i) {
        if (TapeObject* element = getAt(i))
            element->collectMedia(from, to);
    }
}

// --- Actors ----------------------------------------------------------------------

bool Tape::hasActor(const KString& name) const { return actors.hasKey(name); }

KThing* Tape::getActor(const KString& name) const { return actors.findNamedObject(name); }

bool Tape::getActor(const KString& name, KThingPtr& out) const
{
    out = actors.findNamedObject(name);
    return out.get() != nullptr;
}

void Tape::releaseActor(const KString& name) { actors.removeKey(name); }

void Tape::clearActors() { actors.clear(); }

KStringBagPtr Tape::getActorsOnStage()
{
    KStringBagPtr names(new KStringBag());
    if (!spriteSystem)
        return names;
    for (int32_t i = 0; i < actors.getSize(); ++i) {
        if (KString* name = actors.getKeyAt(i); name && spriteSystem->isActorOnScene(*this, *name))
            names->add(*name);
    }
    return names;
}

bool Tape::isActorOnStageAt(const KString& name, int32_t p) const
{
    for (int32_t index = std::min(p, getCount()) - 1; index >= 0; --index) {
        TapeObject* element = getAt(index);
        if (!element)
            continue;
        if (auto* wipe = dynamic_cast<WipeOut*>(element); wipe && wipe->getRemovesActors())
            return false;
        if (element->getType() != ActorActionType || !(element->getActorName() == name))
            continue;
        if (element->getActorAction() == 1)
            return true;
        if (element->getActorAction() == 2)
            return false;
    }
    return false;
}

KStringBagPtr Tape::actorNamesByStage(int32_t p, bool onStage) const
{
    KStringBagPtr names(new KStringBag());
    for (int32_t i = 0; i < actors.getSize(); ++i) {
        if (KString* name = actors.getKeyAt(i); name && isActorOnStageAt(*name, p) == onStage)
            names->add(*name);
    }
    return names;
}

KStringBagPtr Tape::getActorNamesOnStageAt(int32_t p) const { return actorNamesByStage(p, true); }

KStringBagPtr Tape::getActorNamesOffStageAt(int32_t p) const { return actorNamesByStage(p, false); }
