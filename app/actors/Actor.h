#pragma once

#include "app/AppForward.h"
#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KBag.h"
#include "kernel/KSet.h"
#include "kernel/KString.h"
#include "kmultimedia/KSprite.h"
#include "windowing/KTimer.h"

// A sprite with named movements. What is stored is `sequences`: each
// movement a list of frame tapes. What is played is the sprite's `frames`:
// the frames of one movement rendered once into images with masks, then
// only indexed by a timer of the actor's own. Playing never touches a tape.
//
// Every frame of an actor shares one rectangle, `bounds`, the union of the
// bounds of all elements of all frames; a rendered frame is that rectangle
// cut out of the page and moved to the image's corner.
class Actor : public KSprite {
    K_DECLARE_CLASS(Actor)
public:
    enum ActorFlag : int32_t {
        Modified = 1,
        HasFile = 2,
        Forward = 3,
    };
    enum PlayType : int32_t {
        StaticImage = 1,
        PlayOnce = 2,
        OnceReverse = 3,
        OnceForwardAndReverse = 4,
        PlayRepeated = 5,
        RepeatedReverse = 6,
        RepeatedForwardAndReverse = 7,
    };
    static constexpr int32_t kDefaultPageWidth = 640;
    static constexpr int32_t kDefaultPageHeight = 480;
    // The document head of an actor file: 'STAC', version 2, one entry.
    static constexpr int32_t kFileMagic = 0x53544143;
    static constexpr int32_t kFileVersion = 2;
    static constexpr const char* kEntryName = "Actor";

    // One movement with one empty frame, painted for the page size of the
    // program's new documents.
    Actor();
    // The same, for a page of the given size.
    explicit Actor(const KGraphicSize& pageSize);
    // Copies the movements (frame tapes and all), names, cookie, page size
    // and bounds; nothing rendered, the timer not running.
    Actor(const Actor& other);
    Actor& operator=(const Actor&) = delete;
    ~Actor() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;
    // The frame timer's tick.
    void timerFired(KTimer& timer) override;

    // The size comes from `bounds`, not from the current frame, so that all
    // frames of the actor share one rectangle.
    KGraphicRectangle getBounds() override;

    // --- Media of the frames --------------------------------------------------

    virtual void collectMedia(KDirectory& from, KDirectory& to);
    virtual bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile);
    virtual void addMediaName(KStringBag& names);
    virtual bool usesMediaNamed(const KString& name);
    // True when the user gave up the search.
    virtual bool findMissingMedia(KDirectory& directory, KDirectory* second);

    // --- Movements --------------------------------------------------------------

    // An unknown name is error 18.
    ActorSequence& getSequence(const KString& sequenceName);
    bool hasSequence(const KString& sequenceName) const;
    // A new list of copies of the names, in order.
    KStringBagPtr getSequenceNames() const;
    // An unknown name is error 18; a frame out of range gives null.
    Tape* getFrameTape(const KString& sequenceName, int32_t frameIndex) const;
    // By position; null when either is out of range.
    Tape* getFrameTape(int32_t sequence, int32_t frame) const;
    // Null when out of range.
    ActorSequence* getSequenceAt(int32_t index) const;
    int32_t getSequenceCount() const { return sequences.getSize(); }
    KBag& getSequences() { return sequences; }
    void addSequence(ActorSequence& sequence);
    void removeSequence(ActorSequence& sequence);
    // Where the movement's frames stand when all movements are counted in
    // order. False, with 0 and 0, when no movement has the name.
    bool getFrameRange(const KString& name, int32_t& first, int32_t& last) const;
    // Makes a tape a frame of this actor: owner, kind, page size.
    void adoptFrameTape(Tape& tape) const;

    // --- Playing ----------------------------------------------------------------

    // Renders the movement unless it is the current one, and plays it from
    // its first frame by its own type and speed. An unknown name stops the
    // timer and shows frame 0 of whatever is rendered.
    void setMovement(const KString& name);
    // Plays the frames already rendered, over the whole list.
    void playRendered(int32_t speed, int32_t type);
    // Renders every frame of every movement, in order, with masks.
    void renderAll();
    // Renders one movement without masks and shows its frame 0.
    void renderMovement(const KString& name);
    // Stops the timer: interval -1, no target.
    void stop();
    // Stops, hides, and forgets what was rendered.
    void reset();
    void recomputeBounds();

    // --- Files ------------------------------------------------------------------

    // Writes the actor file; on success the actor knows its file.
    bool save(KFileReference& file);
    // Reads an actor file into this actor. A damaged or foreign file is
    // reported to the user and leaves the actor as it was. With
    // `checkMedia` set, the missing media are looked for in the file's
    // folder, and `checkMedia` becomes false when the user gave up.
    bool open(KFileReference& file, bool& checkMedia);

    // --- Fields -----------------------------------------------------------------

    const KString& getFileName() const { return fileName; }
    void setFileName(const KString& value) { fileName = value; }
    const KString& getDisplayName() const { return displayName; }
    void setDisplayName(const KString& value) { displayName = value; }
    int32_t getSpriteCookie() const { return spriteCookie; }
    void setSpriteCookie(int32_t value) { spriteCookie = value; }
    int32_t getCookie() const { return cookie; }
    void setCookie(int32_t value) { cookie = value; }
    const KGraphicRectangle& getActorBounds() const { return bounds; }
    KTimer& getFrameTimer() const { return *frameTimer; }
    int32_t getFirstFrame() const { return firstFrame; }
    int32_t getLastFrame() const { return lastFrame; }
    int32_t getPlayType() const { return playType; }
    const KSet& getActorFlags() const { return actorFlags; }
    bool isModified() const { return actorFlags.has(Modified); }
    void setModified(bool modified);
    bool hasFile() const { return actorFlags.has(HasFile); }
    bool isForward() const { return actorFlags.has(Forward); }
    int32_t getPageWidth() const { return pageWidth; }
    int32_t getPageHeight() const { return pageHeight; }
    KGraphicSize getPageSize() const;
    // Every frame tape takes the new size.
    void setPageSize(const KGraphicSize& size);
    const KString& getCurrentMovement() const { return currentMovement; }

    // The name of a play type, translated; empty for a number outside 1..7.
    static KString getPlayTypeName(int32_t type);

    // Whether the program is playing a story; rendering shows the busy
    // cursor only when it is not. The application installs the query;
    // without one the program is taken as not playing.
    using PlayingQuery = bool (*)();
    static void setPlayingQuery(PlayingQuery query);

private:
    void initialise(const KGraphicSize& pageSize);
    void copyMovements(const Actor& other);
    void clearFrames();
    void adoptFrameTapes();
    ActorSequence* findSequence(const KString& name) const;

    // Rendering.
    KAlphaImagePtr renderFrame(Tape& frame, bool withMask) const;
    void renderSequenceFrames(ActorSequence& sequence, bool withMask, bool trackLastFrame);
    void pulseTimer();
    void startTimer(int32_t speed);

    // The tick.
    bool modalDialogInFront() const;
    int32_t nextFrame(int32_t current);
    void setForward(bool forward);

    // Files.
    void readMainSection(KFile& file);
    void readPageSection(KFile& file);
    void takeContentsOf(Actor& other);

    KString fileName;
    KString displayName;
    int32_t spriteCookie = 0;
    KBag sequences;
    int32_t cookie = 0;
    KGraphicRectangle bounds;
    KTimerPtr frameTimer;
    int32_t firstFrame = 0;
    int32_t lastFrame = 0;
    int32_t playType = StaticImage;
    KSet actorFlags;
    int32_t pageWidth = kDefaultPageWidth;
    int32_t pageHeight = kDefaultPageHeight;
    KString currentMovement;
};
