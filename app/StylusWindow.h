#pragma once

#include "app/AppForward.h"
#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "kmultimedia/KMultimediaForward.h"
#include "tape/TapeForward.h"
#include "windowing/KWindow.h"

// The program's main window. It shows the page through the scene's sprite
// system, its one layer: a black page of the document's size, centred when
// the window is larger. The system's frame timer brings each frame to the
// window's back buffer, only the rectangles that changed, and those alone
// are shown again. A paint of the window redraws nothing that the back
// buffer still holds: only after opening, a resize or a move of the page
// are the surroundings filled and the page painted whole.
class StylusWindow : public KWindow {
    K_DECLARE_CLASS(StylusWindow)
public:
    // The default document size.
    static constexpr int32_t kDefaultWidth = 640;
    static constexpr int32_t kDefaultHeight = 480;

    StylusWindow();
    ~StylusWindow() override;

    // Opens the native window, then `finishOpen`.
    void open(int32_t mode) override;
    // Lets go of the scene first, so that no frame reaches a closed window.
    void close() override;
    // Makes the scene, attaches it to the window and shows the black page.
    void finishOpen();

    KEventReturn doPaint(KWindowEvent& event) override;
    KEventReturn doResized(KWindowEvent& event) override;

    // The scene; error 18 when the window has not been opened.
    StylusSpriteSystem& getSpriteSystem() const;
    bool hasSpriteSystem() const;
    // Where the page stands in the window.
    KGraphicRectangle getPageRectangle() const;

    // Shows the tape on the page: the scene takes the tape's page size,
    // the actors the tape names come from the folder when one is given, and
    // the page is built as it stands at the tape's position. A tape shown
    // before lets go of the page.
    void showTape(Tape& tape, KDirectory* actorsDirectory);
    // The tape shown lets go of the page; the page stays as it is.
    void releaseTape();
    Tape* getTape() const;

    static StylusWindow* current();

private:
    // The page's place for the window's present size.
    KGraphicPoint centredOrigin() const;
    void placePage();
    // The window's area around the page, in the face colour.
    void fillSurroundings();

    StylusSpriteSystemPtr spriteSystem;
    TapePtr tape;
    SceneTapePagePtr scenePage;
    // The back buffer no longer holds the surroundings and the page.
    bool layoutStale = true;
};
