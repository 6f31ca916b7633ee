#pragma once

#include "app/AppForward.h"
#include "app/StylusModes.h"
#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "kmultimedia/KMultimediaForward.h"
#include "project/ProjectForward.h"
#include "tape/StrokeRecorder.h"
#include "tape/TapeForward.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowingForward.h"

#include <memory>

class KTimer;

// The program's main window. It shows the page through the scene's sprite
// system, its one layer: the document's page, centred when the window is
// larger. Over the page float the brush (a round sprite of the brush's size
// and colour that follows the mouse), the pause and wait markers, and the
// in-place editors of images, movies, texts and actor positions.
//
// The window paints strokes with the tool palette's brush, walks and plays
// the tape by the keys of the current window mode, and answers the tape's
// questions about the page (through the program's tape host). A paint of
// the window redraws nothing that the back buffer still holds: only after
// opening, a resize or a move of the page are the surroundings filled and
// the page painted whole.
class StylusWindow : public KWindow {
    K_DECLARE_CLASS(StylusWindow)
public:
    // The page of a window without a tape, and of a new story.
    static constexpr int32_t kDefaultWidth = 800;
    static constexpr int32_t kDefaultHeight = 600;
    // The pause marker stands this far from the page's right edge, at this
    // top; the wait marker's right edge stands kWaitMarkerInset inside the
    // page's top right corner.
    static constexpr int32_t kMarkerInset = 96;
    static constexpr int32_t kMarkerTop = 16;
    static constexpr int32_t kWaitMarkerInset = 16;
    static constexpr int32_t kMarkerSize = 64;
    static constexpr int32_t kBlinkInterval = 1000;
    static constexpr int32_t kHighlightInterval = 500;
    static constexpr int32_t kCursorHideInterval = 3000;
    // A press this near an element's rectangle still opens its editor.
    static constexpr int32_t kEditSlop = 6;
    // The biggest actor that may be placed while "LimitActorSize" is on.
    static constexpr int16_t kLimitedActorWidth = 320;
    static constexpr int16_t kLimitedActorHeight = 240;

    StylusWindow();
    ~StylusWindow() override;

    static StylusWindow* current();

    // Opens the native window, then `finishOpen`.
    void open(OpenMode mode) override;
    // Lets go of the scene first, so that no frame reaches a closed window.
    void close() override;
    // Makes the scene, attaches it to the window, builds the brush and the
    // markers and shows the page. Harmless when run again.
    void finishOpen();

    void timerFired(KTimer& timer) override;
    KEventReturn doPaint(KWindowEvent& event) override;
    KEventReturn doResized(KWindowEvent& event) override;
    KEventReturn doClose(KWindowEvent& event) override;
    KEventReturn doDeactivate(KWindowEvent& event) override;
    KEventReturn doKeyDown(KKeyEvent& event) override;
    // In the player: whether this key (0 for a click) ends the program.
    bool playerQuits(int32_t keyCode, bool control);
    KEventReturn doMouseEnter(KMouseEvent& event) override;
    KEventReturn doMouseLeave(KMouseEvent& event) override;
    KEventReturn doMouseDown(KMouseEvent& event) override;
    KEventReturn doMouseMoved(KMouseEvent& event) override;
    KEventReturn doMouseUp(KMouseEvent& event) override;

    // --- The scene and the tape -------------------------------------------
    // The scene; error 18 when the window has not been opened.
    StylusSpriteSystem& getSpriteSystem() const;
    bool hasSpriteSystem() const;
    // Where the page stands in the window.
    KGraphicRectangle getPageRectangle() const;
    // Shows the tape on the page: the scene takes the tape's page size,
    // the actors the tape names come from the folder when one is given, and
    // the page is built as it stands at the tape's position. A tape shown
    // before lets go of the page. Window mode 1 follows.
    void showTape(Tape& tape, KDirectory* actorsDirectory);
    // The tape shown lets go of the page; the page stays as it is.
    void releaseTape();
    Tape* getTape() const;
    // The story the window shows, for its title; not owned.
    void setProject(StylusProject* shown) { project = shown; }
    StylusProject* getProject() const { return project; }

    // --- Modes ---------------------------------------------------------------
    WindowMode getWindowMode() const { return windowMode; }
    void setWindowMode(WindowMode mode);
    EditMode getEditMode() const { return editMode; }
    bool isEditing() const { return editMode != EditMode::None; }
    bool isPlayMode() const { return windowMode == WindowMode::Playing || windowMode == WindowMode::Paused; }
    // The paste placement belongs to the clipboard; the window only knows
    // that it is open.
    void beginPastePlacement();

    // --- Page ------------------------------------------------------------------
    // Rebuilds the page at the tape's position when `redraw`, and shows the
    // kind of the element before the position on the tool palette.
    void redrawPage(bool redraw);
    // Closes whatever in-place editor is open and puts the brush back.
    void stopEditing();
    void showHighlight();
    // Takes the element's mark away; the page under it comes back when
    // `restore`.
    void hideHighlight(bool restore);
    bool isHighlightShown() const { return highlightShown; }
    void updateTitle();
    // The page as it stands, with its actors but without the brush, the
    // markers or a highlight.
    bool composePage(KImage& picture);

    // --- Play ------------------------------------------------------------------
    void enterPlayMode();
    void stopPlayMode();
    // The blinking pause marker at the page's top right.
    void showPauseMarks(bool shown);
    // The blinking marker that points out a wait for the user; it stays
    // hidden while the play is paused.
    void showWaitMarks(bool shown);
    bool areWaitMarksShown() const { return waitMarksShown; }
    KSprite* getWaitMarker() const;
    KSprite* getPauseMarker() const;
    void stopBlink();
    bool isCursorShown() const { return cursorShown; }
    // A wait for the user shows the cursor and keeps it until it ends;
    // the cursor timer of the play does not hide it meanwhile.
    void showCursorForWait(bool shown);
    // The wait is over: the cursor goes back to the play's rule.
    void releaseCursorFromWait(bool shown);
    // The application tells the window when it fills the screen.
    void setFullScreenShown(bool shown) { fullScreenShown = shown; }
    bool isFullScreenShown() const { return fullScreenShown; }

    // --- Strokes and actor motions ---------------------------------------------
    bool hasCurrentStroke() const { return strokes.isOpen(); }
    bool hasCurrentMotion() const;
    // `point` is in page coordinates. The thin pen paints one pixel wide
    // and gives the palette its size back at the end.
    void startStroke(const KGraphicPoint& point, bool thin);
    void continueStroke(const KGraphicPoint& point, bool shift);
    void endStroke(const KGraphicPoint& point, bool shift);
    // Ends a stroke or a motion left open by a lost button release.
    void endOpenDrags();
    void startMotionDrag(const KGraphicPoint& point, Actor& actor, const KString& name);
    void continueMotionDrag(const KGraphicPoint& point);
    void endMotionDrag(const KGraphicPoint& point);

    // --- In-place editors --------------------------------------------------------
    void openEditImage(StylusImage& element);
    void closeEditImage();
    void openEditMovie(StylusMovie& element);
    void closeEditMovie();
    // Types over the text element in place: an edit field of styled text
    // stands at its rectangle, all of it selected, and the text format
    // menu works on it. Refused with an alert while another editor is open.
    void startEditText(StylusText& element);
    // The field's text and rectangle go back into the element; a text left
    // without a visible character is taken off the tape.
    void stopEditText();
    // The open edit field, or null.
    KEditFieldControl* getEditField() const;
    // Places the actor of an "Enter", "Move" or "Jump" action.
    void startEditActorPosition(ActorAction& action);
    void stopEditActorPosition();
    // Makes the tape's element at the position open its editor when the
    // press at `local` lies on it; true when one opened.
    bool editElementAt(const KGraphicPoint& local);

    // --- Brush -------------------------------------------------------------------
    void updateBrushSprite();
    // Puts the brush under the mouse, unless something else has the mouse.
    void updateBrushPosition();
    void hideBrush();
    bool isBrushShown() const;
    KSprite* getBrushSprite() const;

private:
    // The page's place for the window's present size.
    KGraphicPoint centredOrigin() const;
    void placePage();
    // The window's area around the page, in the face colour.
    void fillSurroundings();
    KGraphicPoint toPage(const KGraphicPoint& windowPoint) const;
    bool tapeIsIdle() const;

    void makeTimers();
    void stopTimers();
    void buildSprites();
    void dropSprites();
    void restartCursorTimer();
    void startBlink();
    void showMarkers();
    void setCursorShown(bool shown);
    void moveBrushTo(const KGraphicPoint& pagePoint);
    KAlphaImagePtr brushImage(int16_t size) const;

    KEventReturn pressOnPage(KMouseEvent& event);
    KEventReturn keyWhileEditing(KKeyEvent& event);
    KEventReturn keyWhilePlaying(KKeyEvent& event);
    KEventReturn keyWhilePaused(KKeyEvent& event);
    bool stepKeys(int32_t code, bool shift, bool control);
    bool brushKeys(int32_t code);
    bool paletteKeys(int32_t code, bool shift);
    // The front actor on the scene under the point, and its name.
    Actor* actorAt(const KGraphicPoint& local, KString& name) const;
    void openEditPicture(TapeObject& element, EditMode mode, const KString& alreadyOpen);
    void finishInPlaceEdit(TapeObject& element);
    void redrawWithout(int32_t position);

    StylusSpriteSystemPtr spriteSystem;
    TapePtr tape;
    SceneTapePagePtr scenePage;
    StylusProject* project = nullptr;
    KSpritePtr brush;
    KSpritePtr pauseMarker;
    KSpritePtr waitMarker;
    KPtr<KTimer> blinkTimer;
    KPtr<KTimer> highlightTimer;
    KPtr<KTimer> cursorTimer;
    StrokeRecorder strokes;
    ActorMotionPtr motion;
    KPtr<Actor> motionActor;
    TapeObjectPtr edited;
    KImagePtr editPicture;
    KEditFieldControlPtr editField;
    WindowMode windowMode = WindowMode::None;
    EditMode editMode = EditMode::None;
    int16_t savedBrushSize = 0;
    bool thinPen = false;
    bool highlightShown = false;
    bool blinkOn = false;
    bool pauseMarksShown = false;
    bool waitMarksShown = false;
    bool cursorHeldByWait = false;
    bool cursorShown = true;
    bool fullScreenShown = false;
    // The back buffer no longer holds the surroundings and the page.
    bool layoutStale = true;
};
