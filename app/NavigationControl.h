#pragma once

#include "app/TapeObjectMenu.h"
#include "kernel/KBag.h"
#include "tape/TapeForward.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KControl.h"
#include "windowing/KImageControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KScrollBarNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

#include <map>

// The navigation tool's one control: it walks along the tape without
// moving it. The scroll bar, the back and forward buttons (stepping by the
// filter's kind), the beginning and end buttons and the bookmark list only
// change the shown position, which the counter, the picture and the
// bookmark line describe; "Go!" or a click on the picture moves the tape
// there.
//
// Positions are the tape's: position p shows the element at index p - 1.
// The picture is the page scaled when the shown position is the tape's,
// and the kind's picture elsewhere, so that walking never rebuilds a page.
class NavigationControl : public KControl {
    K_DECLARE_CLASS(NavigationControl)
public:
    enum PartId : int32_t {
        ScrollBar = 1,
        BackButton = 2,
        ForwardButton = 3,
        ElementPicture = 4,
        FilterButton = 5,
        FilterLabel = 6,
        BeginningButton = 7,
        EndButton = 8,
        BookmarkList = 9,
        BookmarkLine = 10,
        GoButton = 11,
        Counter = 12,
        LastPart = 12,
    };
    static constexpr int16_t kWidth = 202;
    static constexpr int16_t kHeight = 176;
    static constexpr int16_t kPictureWidth = 64;
    static constexpr int16_t kPictureHeight = 48;

    NavigationControl();
    ~NavigationControl() override;

    // Where a part stands, in the control's terms.
    static KWideRectangle placeOf(int32_t id);
    KControl* getPart(int32_t id) const;
    KScrollBarNativeControl& getScrollBar() const { return *scrollBar; }
    KPopUpListNativeControl& getBookmarkList() const { return *bookmarkList; }

    // The tape walked: the one given, or else the main window's.
    void setTape(Tape* tape);
    Tape* getTape() const;

    // --- The shown position ---------------------------------------------------
    using KControl::setPosition;
    // Shows position p (cut to the tape) without moving the tape; nothing
    // when it is already shown.
    void setPosition(int32_t p);
    int32_t getShownPosition() const { return shownPosition; }
    // The counter, the picture, the bookmark line and the bar's range, as
    // the tape stands now.
    void refresh();
    // The list of the tape's bookmarks, "No Bookmark" first. The shown
    // position stays.
    void refreshBookmarks();
    // The tape moved, stopped or changed: the tool shows its position. A
    // playing tape is not followed.
    void followTape();
    // Moves the tape to p, unless it plays, and shows it there.
    void goToPosition(int32_t p);

    // --- Commands -------------------------------------------------------------
    void stepBack();
    void stepForward();
    void showBeginning();
    void showEnd();
    // A kind of TapeObjectMenu, 0 for all; 12 counts as 11.
    void setFilter(int32_t kind);
    int32_t getFilter() const { return filter; }
    // The filter menu below the filter button.
    void chooseFilter();
    // The bookmark list's entry (0 is "No Bookmark", which shows nothing).
    void showBookmark(int32_t entry);

    const KString& getCounterText() const { return counter->getText(); }
    KAlphaImage* getPicture() const { return picture->getPicture(); }
    // Whether the picture is the scaled page rather than a kind's picture.
    bool isPictureThePage() const { return pictureIsPage; }

    // --- Searches -------------------------------------------------------------
    // Whether an element of the type passes the filter: its kind equals it,
    // and the two actor kinds match each other.
    static bool matches(int32_t type, int32_t filter);
    // The position a step back or forward with the filter shows from
    // `shown`, or -1 when no element matches.
    static int32_t findBack(const Tape& tape, int32_t shown, int32_t filter);
    static int32_t findForward(const Tape& tape, int32_t shown, int32_t filter);
    // "(p/n) Kind", the kind of the element before p.
    static KString counterText(const Tape* tape, int32_t p);

    KEventReturn doControlAction(KControlActionEvent& event) override;
    void setEnabled(bool enabled) override;
    const char* getKindName() const override { return "navigation"; }

protected:
    void paintOn(KWindow& target) override;

private:
    void build();
    template<class Part>
    Part& place(Part* part);
    KImageControl& addPicture(int32_t id, int16_t art, int16_t mask);
    void showPosition(int32_t p);
    void updateScrollBar(int32_t count);
    void updatePicture(const Tape* tape);
    static KAlphaImagePtr scaledPicture(KImage& page);
    bool showThumbnail(const Tape* tape);
    void updateBookmarkLine(const Tape* tape);
    void updateParts();
    void pressed(int32_t id);

    KPtr<KScrollBarNativeControl> scrollBar;
    KImageControlPtr backButton;
    KImageControlPtr forwardButton;
    KImageControlPtr picture;
    KImageControlPtr filterButton;
    KPtr<KStaticTextNativeControl> filterLabel;
    KImageControlPtr beginningButton;
    KImageControlPtr endButton;
    KPtr<KPopUpListNativeControl> bookmarkList;
    KPtr<KStaticTextNativeControl> bookmarkLine;
    KPtr<KButtonNativeControl> goButton;
    KPtr<KStaticTextNativeControl> counter;
    TapeObjectMenuPtr filterMenu;
    KBagPtr bookmarks;
    // The kinds' pictures read so far, by type: walking shows one per step.
    std::map<int32_t, KAlphaImagePtr> kindPictures;
    KPtr<Tape> tape;
    // Which tape the list and the bar were made for; compared, never used.
    const Tape* followedTape = nullptr;
    int32_t lastShownPosition = -1;
    int32_t shownPosition = 0;
    int32_t filter = 0;
    int32_t barCount = -1;
    bool pictureIsPage = false;
    int32_t pictureType = -1;
    // The page the picture was scaled from, and how often it had changed
    // then: an unchanged page is not scaled again.
    uint64_t scaledPage = 0;
    uint32_t scaledPageChanges = 0;
};

using NavigationControlPtr = KPtr<NavigationControl>;
