#pragma once

#include "graphics/KGraphicRectangle.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeForward.h"

// One element of a tape: something the user did, kept so that it can be
// drawn again, played with its timing, moved and saved. The tape draws,
// plays and maintains its elements only through the virtual operations
// declared here, without knowing their kinds.
//
// Every change to what an element draws goes through noteChanged(), which
// moves its revision on; the tape's page cache compares revisions to know
// which snapshots of the page still hold.
class TapeObject : public KThing {
    K_DECLARE_CLASS(TapeObject)
public:
    TapeObject();
    TapeObject(const TapeObject& other);
    ~TapeObject() override;
    TapeObject& operator=(const TapeObject&) = delete;

    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // --- The tape that holds the element -----------------------------------

    // Null until the element enters a tape.
    Tape* getTape() const { return tape; }
    bool hasTape() const { return tape != nullptr; }
    // Fills `out` with the tape; false (and `out` empty) when there is none.
    bool getTapeAsPtr(TapePtr& out) const;

    void setType(int32_t value) { type = value; }
    int32_t getType() const { return type; }
    // The name of a type number from 0 to 11; any other is an error.
    static KString getTypeName(int32_t typeNumber);

    void activate();
    void deactivate();
    bool isActive() const { return active; }

    KString getBookmark() const { return bookmark; }
    // Only the length counts: an empty text is no bookmark.
    bool hasBookmark() const { return bookmark.getLength() != 0; }
    void setBookmark(const KString& text);
    void clearBookmark();

    void invalidatePreview();
    // True marks the preview valid; false also forgets its token.
    void setPreviewValid(bool valid);
    bool isPreviewValid() const { return previewValid; }
    int32_t getPreviewToken() const { return previewToken; }
    void setPreviewToken(int32_t token) { previewToken = token; }

    // The element's identity for the page cache: unique in the process and
    // never reused, and a count of its changes.
    uint64_t getSerial() const { return serial; }
    uint32_t getRevision() const { return revision; }

    // --- The operations through which the tape uses its elements -----------

    virtual void setTape(Tape& owner);
    virtual void clearTape();
    // The tape has reached the element while playing.
    virtual void startPlaying();
    // The tape's timer fired while this element holds the tape.
    virtual void playStep();
    // Playing of the element ends, by itself or because the tape stopped.
    virtual void stopPlaying();
    // Draws the finished element on the page and refreshes what changed.
    virtual void drawOnPage();
    // Draws the finished element on any device, the part `source` of the
    // page scaled into `target` (a thumbnail, a printed page).
    virtual void drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target);
    // The mark that shows which element is the current one. The default is
    // the icon of the element's type in the upper right corner.
    virtual void drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source,
                                 const KGraphicRectangle& target);
    virtual void drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to);
    virtual void mirror(bool horizontal, int16_t centre);
    virtual void redrawOver();
    virtual void scale(double x, double y);
    virtual void scale(double factor);
    virtual void scaleBetween(const KGraphicRectangle& oldBounds, const KGraphicRectangle& newBounds);
    virtual void moveBy(int16_t x, int16_t y);
    virtual KGraphicRectangle getBounds() const;
    // Looks for the element's media file in `directory` (and `second` when
    // given), asking the user where it went; true means the user gave up.
    virtual bool findMissingMedia(KDirectory& directory, KDirectory* second);
    // Copies the referred file from `from` into the publishing folder `to`.
    virtual void collectMedia(KDirectory& from, KDirectory& to);
    virtual bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile);
    virtual void addMediaName(KStringBag& names);
    virtual bool usesMediaNamed(const KString& name);
    virtual KEventReturn handleKeyDown(KKeyEvent& event);
    virtual KEventReturn handleMouseMoved(KMouseEvent& event);
    virtual KEventReturn handleMouseDown(KMouseEvent& event);
    virtual KEventReturn handleMouseUp(KMouseEvent& event);
    virtual KEventReturn handleMouseDragged(KMouseEvent& event);

    // What the tape needs to know beyond the type number. A text that reads
    // itself aloud is a stop for the arrow keys while playing; actor
    // elements choose their tool palette entry by their action.
    virtual bool speaks() const { return false; }
    virtual int32_t getToolEntry() const;
    // The actor an actor element names, and the number of its action
    // (1 enters, 2 leaves); empty and 0 for other elements.
    virtual const KString& getActorName() const;
    virtual int32_t getActorAction() const { return 0; }

protected:
    void copyFrom(const TapeObject& other);
    // Called by every change to what the element draws.
    void noteChanged();
    // The page of the tape, or null without a tape or a page.
    TapePage* getPage() const;

private:
    Tape* tape = nullptr;
    int32_t type = NoTapeObject;
    bool active = true;
    bool previewValid = false;
    KString bookmark;
    int32_t previewToken = 0;
    uint64_t serial = 0;
    uint32_t revision = 0;
};
