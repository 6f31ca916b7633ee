#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KBag.h"
#include "kernel/KFlagSet.h"
#include "kernel/KNamedBag.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeForward.h"
#include "tape/TapeObject.h"
#include "tape/TapePage.h"
#include "tape/TapePageCache.h"
#include "windowing/KTimer.h"

#include <vector>

// The elements of a document in the order the user made them, and a
// position on them. The page has no storage of its own: it is what the
// elements draw when the tape runs from its last page transition up to the
// position. Position p means that the first p elements have run; the
// element at index p - 1 is the current one.
//
// Playing runs the same elements with time: a repeating timer starts at
// most one element a tick, and an element that takes time holds the tape
// as its playing object until it lets go.
//
// One class serves stories and the frames of an actor's movements.
class Tape : public KBag {
    K_DECLARE_CLASS(Tape)
public:
    enum class PlayState : int32_t { Stopped = 0, Playing = 1, Paused = 2 };
    using enum PlayState;
    enum FrameKind : int32_t { Story = 0, ActorFrame = 1 };
    enum FlagBit : int32_t {
        Modified = 1 << 0,
        SavedOnce = 1 << 1,
        LoopingAnimation = 1 << 2,
        HideMenuBar = 1 << 3,
        HideTools = 1 << 4,
    };
    static constexpr int32_t kDefaultPlayInterval = 20;
    static constexpr int32_t kPlayTimerLag = 200;

    Tape();
    // Copies every element that has a class (not the old relay macros),
    // the position, lock, flags, speed and kind.
    Tape(const Tape& other);
    ~Tape() override;
    Tape& operator=(const Tape&) = delete;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;
    // The play timer's tick.
    void timerFired(KTimer& timer) override;

    // --- Fields ------------------------------------------------------------

    int32_t getPosition() const { return position; }
    int32_t getCount() const { return getSize(); }
    PlayState getPlayState() const { return playState; }
    bool isPlaying() const { return playState == Playing; }
    int32_t getPlayIndex() const { return playIndex; }
    // Cut to 0 .. count - 1.
    void setPlayIndex(int32_t index);
    int32_t getPlayInterval() const { return playInterval; }
    void setPlayInterval(int32_t milliseconds) { playInterval = milliseconds; }
    int32_t getFrameKind() const { return frameKind; }
    void setFrameKind(int32_t kind);
    int32_t getLockPosition() const { return lockPosition; }
    void setLockPosition(int32_t value) { lockPosition = value; }
    KFlagSet& getFlags() { return flags; }
    const KFlagSet& getFlags() const { return flags; }
    bool isModified() const { return flags.test(Modified); }
    void clearModified() { flags.clear(Modified); }
    bool isLooping() const { return flags.test(LoopingAnimation); }
    void setLooping(bool looping);
    const KGraphicSize& getPageSize() const { return pageSize; }
    void setPageSize(const KGraphicSize& size);
    KTimer& getPlayTimer() const { return *playTimer; }
    TapeObject* getPlayingObject() const { return playingObject.get(); }
    // The element that holds the tape lets go of it.
    void clearPlayingObject();

    KThing* getOwnerActor() const { return ownerActor; }
    void setOwnerActor(KThing* actor) { ownerActor = actor; }
    KThing* getOwnerProject() const { return ownerProject; }
    void setOwnerProject(KThing* project) { ownerProject = project; }
    // The folder where the elements look for their media files by name; the
    // project sets it to its "Media" folder. Null when the tape has none,
    // and then the elements use the paths they stored.
    KDirectory* getMediaDirectory() const;
    void setMediaDirectory(const KDirectory& directory);
    void clearMediaDirectory();

    // --- The page ----------------------------------------------------------

    // Takes the page; the actors of the page before leave its scene.
    void setSpriteSystem(TapePage& page);
    // Stops the actors and lets the page go.
    void clearSpriteSystem();
    TapePage* getSpriteSystem() const { return spriteSystem.get(); }
    bool hasSpriteSystem() const { return spriteSystem.get() != nullptr; }
    TapePageCache& getPageCache() { return pageCache; }

    // Draws the page as it is at the position (at the play index while
    // playing): from the last page transition before it, or from a
    // snapshot of the page taken on the way there earlier.
    void rebuildPage();
    // Recomputes the actors' state at the position.
    void synchroniseActors();
    void stopActors();
    void resetActors();

    // --- Elements ----------------------------------------------------------

    TapeObject* getAt(int32_t index) const;
    TapeObject* getElementAtPosition(int32_t p) const { return getAt(p - 1); }
    TapeObject* getCurrentElement() const { return getAt(position - 1); }
    bool hasCurrentElement() const { return position >= 1 && position <= getCount(); }
    int32_t getTypeAtPosition(int32_t p) const;
    int32_t getCurrentType() const { return getTypeAtPosition(position); }
    // The tool palette's entry for the current element; 0 before the first.
    int32_t getToolEntry() const;

    // --- Navigation ----------------------------------------------------------

    void goToPosition(int32_t p);
    void goToStart();
    void goToEnd();
    void stepBack();
    void stepForward();
    // Kind 0 to 9: stroke, text, sound, speech, actor, page transition,
    // wait, movie, image, macro.
    void goToPreviousOfKind(int16_t kind);
    void goToNextOfKind(int16_t kind);
    void goToPreviousPage();
    void goToNextPage();
    // Sets the position without drawing.
    void setPositionQuietly(int32_t p);

    // Searches, without side effects. The "previous" searches never look at
    // index 0.
    int32_t findPreviousOfType(int32_t type) const;
    int32_t findNextOfType(int32_t type) const;
    int32_t findPreviousPage(int32_t p) const;
    int32_t findNextPage(int32_t p) const;
    int32_t findPreviousStop(int32_t p) const;
    int32_t findNextStop(int32_t p) const;
    bool isStop(const TapeObject& element) const;

    // --- Editing -------------------------------------------------------------

    // Inserts at the position, not at the end, and moves the position past it.
    void addElement(TapeObject& element);
    void removeCurrentElement();
    void removeRange(int32_t first, int32_t last);
    // Takes the elements of the other tape in at the position; they belong
    // to this tape afterwards.
    void insertTape(Tape& other);
    void editCurrentElement();
    // An element of this tape changed what it draws.
    void elementChanged(TapeObject& element);

    // The undo's three moves, each one change of the tape with one
    // invalidation. The elements come out as they are, still whole; the
    // position is left for the caller to set.
    std::vector<TapeObjectPtr> takeElements(int32_t first, int32_t count);
    void insertElements(int32_t at, const std::vector<TapeObjectPtr>& elements);
    // The element at the index gives way to another.
    void replaceElement(int32_t index, TapeObject& element);

    void setModified();
    void invalidatePreviews();
    void invalidatePreviewsFrom(int32_t p, bool onlyClearingTransitions);

    // --- Bookmarks -------------------------------------------------------------

    KBagPtr getBookmarkNames() const;
    KNamedBagPtr getBookmarkMap() const;
    bool hasBookmark(const KString& name) const;
    void editCurrentBookmark();
    void goToBookmark(const KString& name);

    // --- The whole tape ------------------------------------------------------

    void getBounds(KGraphicRectangle& bounds) const;
    void moveAll(int16_t x, int16_t y);
    void scaleAll(double x, double y);
    void mirrorAll(bool horizontal, int16_t centre);
    bool findMissingMedia(KDirectory& directory, KDirectory* second);
    bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile);
    KStringBagPtr getMediaNames() const;
    bool usesMediaNamed(const KString& name) const;
    void collectMedia(KDirectory& from, KDirectory& to);

    // --- Actors ----------------------------------------------------------------

    KNamedBag& getActors() { return actors; }
    bool hasActor(const KString& name) const;
    KThing* getActor(const KString& name) const;
    bool getActor(const KString& name, KThingPtr& out) const;
    void releaseActor(const KString& name);
    void clearActors();
    // The names of the tape's actors that stand on the page's scene now.
    KStringBagPtr getActorsOnStage();
    // Whether the actor stands on the scene at position `p` by the elements
    // alone: the last entrance or exit before it says, and a page
    // transition that removes actors ends every stay.
    bool isActorOnStageAt(const KString& name, int32_t p) const;
    KStringBagPtr getActorNamesOnStageAt(int32_t p) const;
    KStringBagPtr getActorNamesOffStageAt(int32_t p) const;

    // --- Playing ---------------------------------------------------------------

    void startPlaying(int32_t from);
    void pausePlaying();
    void resumePlaying();
    void stopPlaying();
    // One tick of the play loop.
    void handleTimer();
    // Drops the playing element and goes on from the stop before or after
    // index `from`, redrawing the page there.
    void skipToPreviousStop(int32_t from);
    void skipToNextStop(int32_t from);

    // Input while playing goes to the playing element.
    KEventReturn handleKeyDown(KKeyEvent& event);
    KEventReturn handleMouseMoved(KMouseEvent& event);
    KEventReturn handleMouseDown(KMouseEvent& event);
    KEventReturn handleMouseUp(KMouseEvent& event);
    KEventReturn handleMouseDragged(KMouseEvent& event);

private:
    int32_t rebuildLimit() const;
    bool lockForbids(int32_t target) const;
    // The steps every walk along the tape ends with.
    void walkTo(int32_t target);
    void walkOneForward();
    void afterWalk();
    void beginAutoEdit();
    void insertAtPosition(TapeObject& element);
    void detachAll();
    void release(TapeObject& element);
    void changedFrom(int32_t first, int32_t last);
    void resetForRead();
    void readMainSection(KFile& file);
    void adoptReadElements();
    void clearPage(KGraphicDevice& device);
    void fillBlankPage();
    void loopToStart();
    static int32_t typeOfKind(int16_t kind);
    KStringBagPtr actorNamesByStage(int32_t p, bool onStage) const;

    TapeObjectPtr playingObject;
    KTimerPtr playTimer;
    TapePagePtr spriteSystem;
    KThing* ownerActor = nullptr;
    KThing* ownerProject = nullptr;
    KDirectoryPtr mediaDirectory;
    KFlagSet flags;
    PlayState playState = Stopped;
    int32_t frameKind = Story;
    KGraphicSize pageSize;
    int32_t position = 0;
    int32_t playInterval = kDefaultPlayInterval;
    int32_t lockPosition = -1;
    int32_t playIndex = 0;
    KNamedBag actors;
    TapePageCache pageCache;
};
