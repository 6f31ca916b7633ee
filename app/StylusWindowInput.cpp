// The main window's mouse and keys: painting, walking the tape and
// controlling play.

#include "app/PlayerMode.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "app/UndoStep.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorMotion.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "tape/Tape.h"
#include "windowing/KApplication.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KWindowManager.h"

#include <cstdlib>

namespace {

constexpr int32_t kShift = 1;
constexpr int32_t kControl = 2;
constexpr int32_t kMovePaneKey = KKeyEvent::F1 + 5; // F6

// The colour keys name the buttons in two rows of eight, light over dark;
// the buttons themselves alternate light and dark.
constexpr int32_t kColourKeyButtons[ToolPalette::kColourCount]
    = { 0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15 };

int32_t colourKeyIndex(int32_t code)
{
    switch (code) {
    case 'q':
        return 0;
    case 'w':
        return 1;
    case 'e':
        return 2;
    case 'r':
        return 3;
    case 't':
        return 4;
    case 'z':
    case 'y':
        return 5;
    case 'u':
        return 6;
    case 'i':
        return 7;
    case 'a':
        return 8;
    case 's':
        return 9;
    case 'd':
        return 10;
    case 'f':
        return 11;
    case 'g':
        return 12;
    case 'h':
        return 13;
    case 'j':
        return 14;
    case 'k':
        return 15;
    default:
        return -1;
    }
}

int32_t lowerCase(int32_t code) { return code >= 'A' && code <= 'Z' ? code - 'A' + 'a' : code; }

KGraphicPoint pointOf(const KEventPoint& p) { return KGraphicPoint(int16_t(p.x), int16_t(p.y)); }

bool modalWindowOpen()
{
    KWindowManager* manager = KWindowManager::current();
    return manager && manager->getModalCount() > 0;
}

} // namespace

// --- Mouse ----------------------------------------------------------------------

// The player shows a story and nothing else: once the play has ended, a
// click or a key ends the program, and Escape or Control+"." end it at any
// time.
bool StylusWindow::playerQuits(int32_t keyCode, bool control)
{
    if (!PlayerMode::isOn())
        return false;
    bool stopped = !tape || tape->getPlayState() == Tape::PlayState::Stopped;
    bool quitKey = keyCode == KKeyEvent::Escape || (keyCode == '.' && control);
    if (!stopped && !quitKey)
        return false;
    if (KApplication* running = KApplication::current())
        running->requestQuit();
    return true;
}

KEventReturn StylusWindow::doMouseDown(KMouseEvent& event)
{
    if (playerQuits(0, false))
        return 1;
    if (!tape || !spriteSystem)
        return 1;
    if (!tapeIsIdle())
        return tape->handleMouseDown(event);
    return pressOnPage(event);
}

// A press while editing: a stroke, a motion, an in-place editor, or nothing.
KEventReturn StylusWindow::pressOnPage(KMouseEvent& event)
{
    bool shift = (event.getModifiers() & kShift) != 0;
    if (editMode == EditMode::Paste)
        return 1;
    KGraphicPoint local = toPage(pointOf(event.getLocal()));
    KString actorName;
    Actor* actor = shift ? actorAt(local, actorName) : nullptr;
    if (isEditing()) {
        stopEditing();
        if (!actor)
            return 1;
    }
    // A release that never came must not leave a stroke open.
    endOpenDrags();
    if (!KGraphicRectangle(KGraphicPoint(), spriteSystem->getPageSize()).contains(local))
        return 1;
    if (actor) {
        startMotionDrag(local, *actor, actorName);
        return 4;
    }
    if (event.getButton() == KMouseEvent::Left && editElementAt(local))
        return 1;
    if (isEditing())
        return 1;
    startStroke(local, (event.getModifiers() & kControl) != 0);
    return 4;
}

KEventReturn StylusWindow::doMouseMoved(KMouseEvent& event)
{
    if (!tapeIsIdle()) {
        setCursorShown(true);
        restartCursorTimer();
        return tape->handleMouseMoved(event);
    }
    if (!spriteSystem)
        return 0;
    // In full screen a release may happen outside every window.
    if (!event.isButtonDown() && !modalWindowOpen())
        endOpenDrags();
    KGraphicPoint local = toPage(pointOf(event.getLocal()));
    bool shift = (event.getModifiers() & kShift) != 0;
    if (strokes.isOpen()) {
        continueStroke(local, shift);
    } else if (motion) {
        continueMotionDrag(local);
    } else if (!isEditing() && brush) {
        int16_t half = int16_t(ToolPalette::current() ? ToolPalette::current()->getBrushSize() / 2 : 0);
        moveBrushTo(KGraphicPoint(int16_t(local.x - half), int16_t(local.y - half)));
    }
    return 1;
}

KEventReturn StylusWindow::doMouseUp(KMouseEvent& event)
{
    if (!tapeIsIdle())
        return tape->handleMouseUp(event);
    if (!spriteSystem)
        return 0;
    KGraphicPoint local = toPage(pointOf(event.getLocal()));
    if (strokes.isOpen())
        endStroke(local, (event.getModifiers() & kShift) != 0);
    else if (motion)
        endMotionDrag(local);
    return 1;
}

KEventReturn StylusWindow::doMouseEnter(KMouseEvent&)
{
    if (!isEditing() && tapeIsIdle())
        updateBrushPosition();
    return 0;
}

KEventReturn StylusWindow::doMouseLeave(KMouseEvent&)
{
    if (!isEditing() && brush && !strokes.isOpen())
        hideBrush();
    return 0;
}

Actor* StylusWindow::actorAt(const KGraphicPoint& local, KString& name) const
{
    if (!tape)
        return nullptr;
    KNamedBag& actors = tape->getActors();
    // The front actor is the one drawn last.
    for (int32_t i = actors.getSize() - 1; i >= 0; --i) {
        auto* actor = dynamic_cast<Actor*>(actors.getObjectAt(i));
        if (actor && actor->isVisible() && actor->getLayer() && actor->getBounds().contains(local)) {
            name = *actors.getKeyAt(i);
            return actor;
        }
    }
    return nullptr;
}

// --- Strokes --------------------------------------------------------------------

void StylusWindow::startStroke(const KGraphicPoint& point, bool thin)
{
    ToolPalette* palette = ToolPalette::current();
    if (!tape || !palette)
        return;
    int16_t size = palette->getBrushSize();
    if (thin) {
        savedBrushSize = size;
        thinPen = true;
        palette->setBrushSize(1, true);
        size = 1;
        updateBrushSprite();
    }
    strokes.press(*tape, point.x, point.y, size, palette->getBrushColor());
    moveBrushTo(strokes.getCursorPosition());
}

void StylusWindow::continueStroke(const KGraphicPoint& point, bool shift)
{
    if (!strokes.isOpen())
        return;
    strokes.move(point.x, point.y, shift);
    moveBrushTo(strokes.getCursorPosition());
}

void StylusWindow::endStroke(const KGraphicPoint& point, bool shift)
{
    if (!strokes.isOpen())
        return;
    StrokePtr stroke;
    {
        UndoStep step(tape.get(), UndoHistory::Name::Stroke);
        stroke = strokes.release(point.x, point.y, shift);
    }
    redrawPage(false);
    if (thinPen) {
        thinPen = false;
        if (ToolPalette* palette = ToolPalette::current())
            palette->setBrushSize(savedBrushSize, true);
        updateBrushSprite();
    }
    if (StylusActions* actions = StylusActions::current())
        actions->elementAdded();
}

bool StylusWindow::hasCurrentMotion() const { return motion.get() != nullptr; }

void StylusWindow::endOpenDrags()
{
    if (strokes.isOpen()) {
        KGraphicPoint last = strokes.getCursorPosition();
        int16_t half = int16_t(strokes.getStroke()->getBrushWidth() / 2);
        endStroke(KGraphicPoint(int16_t(last.x + half), int16_t(last.y + half)), false);
    }
    if (motion && motion->getPointCount() > 0)
        endMotionDrag(motion->getLastPoint());
    else
        motion.clear();
}

// --- Actor motions ----------------------------------------------------------------

// The press starts a path at the actor's place; moves add points a little
// apart and move the actor along; the release puts the motion on the tape.
// A click that never moved puts nothing there.
void StylusWindow::startMotionDrag(const KGraphicPoint& point, Actor& actor, const KString& name)
{
    hideBrush();
    motion = kAdopt(new ActorMotion());
    motion->setActorName(name);
    motion->addPoint(point.x, point.y);
    motionActor = actor;
}

void StylusWindow::continueMotionDrag(const KGraphicPoint& point)
{
    if (!motion || !motionActor)
        return;
    KGraphicPoint last = motion->getLastPoint();
    int32_t step = std::max(1, int32_t(motionActor->getBounds().width) / 32);
    if (std::abs(point.x - last.x) < step && std::abs(point.y - last.y) < step)
        return;
    motion->addPoint(point.x, point.y);
    const KAnimationPoint& at = motionActor->getPosition();
    motionActor->setPosition(at.x + float(point.x - last.x), at.y + float(point.y - last.y));
}

void StylusWindow::endMotionDrag(const KGraphicPoint& point)
{
    ActorMotionPtr finished = motion;
    motion.clear();
    KPtr<Actor> actor = motionActor;
    motionActor.clear();
    if (!finished || !tape)
        return;
    KGraphicPoint last = finished->getLastPoint();
    if (point != last) {
        finished->addPoint(point.x, point.y);
        if (actor) {
            const KAnimationPoint& at = actor->getPosition();
            actor->setPosition(at.x + float(point.x - last.x), at.y + float(point.y - last.y));
        }
    }
    if (finished->getPointCount() < 2) {
        redrawPage(true);
        return;
    }
    {
        UndoStep step(tape.get(), UndoHistory::Name::Insert);
        tape->addElement(*finished);
    }
    redrawPage(false);
    if (StylusActions* actions = StylusActions::current())
        actions->elementAdded();
    updateBrushPosition();
}

// --- Keys -----------------------------------------------------------------------

KEventReturn StylusWindow::doKeyDown(KKeyEvent& event)
{
    if (playerQuits(event.getKeyCode(), (event.getModifiers() & kControl) != 0))
        return 1;
    if (editMode == EditMode::Text)
        return keyWhileEditing(event);
    int32_t code = event.getKeyCode();
    bool shift = (event.getModifiers() & kShift) != 0;
    if ((code == 'M' || code == 'm') && shift && fullScreenShown && !modalWindowOpen()) {
        if (StylusActions* actions = StylusActions::current())
            actions->toggleMenuStrip();
        return 1;
    }
    if (!tape)
        return 0;
    switch (tape->getPlayState()) {
    case Tape::PlayState::Playing:
        return keyWhilePlaying(event);
    case Tape::PlayState::Paused:
        return keyWhilePaused(event);
    default:
        break;
    }
    if (strokes.isOpen() || motion)
        return 0;
    if (paletteKeys(code, shift))
        return 1;
    bool control = (event.getModifiers() & kControl) != 0;
    // Control+Z undoes and Control+Shift+Z redoes; the menu's accelerator
    // takes the first where there is a menu bar.
    if (control && lowerCase(code) == 'z') {
        if (StylusActions* actions = StylusActions::current())
            actions->undoOrRedo(shift);
        return 1;
    }
    if (stepKeys(code, shift, control) || brushKeys(code))
        return 1;
    return 0;
}

// The text editor takes every key while it is open; Escape ends it.
KEventReturn StylusWindow::keyWhileEditing(KKeyEvent& event)
{
    if (event.getKeyCode() == KKeyEvent::Escape)
        stopEditing();
    else if (editField)
        editField->doKeyDown(event);
    return 1;
}

bool StylusWindow::stepKeys(int32_t code, bool shift, bool control)
{
    StylusActions* actions = StylusActions::current();
    if (!actions)
        return false;
    if (editMode == EditMode::Paste && (code == KKeyEvent::Return || code == KKeyEvent::Escape)) {
        actions->finishPastePlacement(code == KKeyEvent::Return);
        return true;
    }
    switch (lowerCase(code)) {
    case 'x':
        if (ToolPalette* palette = ToolPalette::current())
            palette->swapPaletteState();
        return true;
    case KKeyEvent::Backspace:
        actions->deleteLast();
        return true;
    case KKeyEvent::Tab:
        // The palette moves; the key stays unhandled for the focus chain.
        actions->moveToolPalette();
        return false;
    case ' ':
        stopEditing();
        StylusActions::modifyElementOf(*tape);
        return true;
    case KKeyEvent::Left:
    case KKeyEvent::Right: {
        bool back = code == KKeyEvent::Left;
        if (shift) {
            stopEditing();
            if (back)
                tape->goToPreviousPage();
            else
                tape->goToNextPage();
        } else if (control) {
            stopEditing();
            int32_t found = back ? tape->findPreviousOfType(TextType) : tape->findNextOfType(TextType);
            if (found > 0)
                tape->goToPosition(found);
            redrawPage(true);
        } else if (back) {
            actions->goBack();
        } else {
            actions->goForward();
        }
        return true;
    }
    case KKeyEvent::Home:
        actions->goToBeginning();
        return true;
    case KKeyEvent::End:
        actions->goToEnd();
        return true;
    case '.':
        if (!highlightShown)
            showHighlight();
        return true;
    default:
        return false;
    }
}

// The palette never takes the keyboard, so the page lends it keys: F6 and
// Shift+F6 (the desktop's key for moving between panes) walk the palette's
// ring; while the ring is there, Space and Return press its control and
// Escape gives the keys back to the page. A switch mapped to Space then
// reaches every control while the palette scans.
bool StylusWindow::paletteKeys(int32_t code, bool shift)
{
    ToolPalette* palette = ToolPalette::current();
    if (!palette || !palette->isVisible())
        return false;
    if (code == kMovePaneKey) {
        palette->focusNext(shift);
        return true;
    }
    if (!palette->getFocusedControl())
        return false;
    switch (code) {
    case ' ':
    case KKeyEvent::Return:
        palette->pressFocused();
        return true;
    case KKeyEvent::Escape:
        palette->clearFocus();
        return true;
    default:
        return false;
    }
}

bool StylusWindow::brushKeys(int32_t code)
{
    ToolPalette* palette = ToolPalette::current();
    if (!palette)
        return false;
    int16_t size = palette->getBrushSize();
    if (code == '-' || code == '+') {
        if (code == '-' && size > ToolPalette::kMinimumBrushSize)
            palette->setBrushSize(int16_t(size - 1));
        else if (code == '+' && size < ToolPalette::kMaximumBrushSize)
            palette->setBrushSize(int16_t(size + 1));
        return true;
    }
    int32_t index = colourKeyIndex(lowerCase(code));
    if (index < 0)
        return false;
    palette->selectColorButton(kColourKeyButtons[index]);
    return true;
}

KEventReturn StylusWindow::keyWhilePlaying(KKeyEvent& event)
{
    if (tape->handleKeyDown(event))
        return 1;
    int32_t code = event.getKeyCode();
    bool control = (event.getModifiers() & kControl) != 0;
    StylusActions* actions = StylusActions::current();
    if (code == KKeyEvent::Escape || (code == '.' && control)) {
        if (actions)
            actions->stopPlay();
        return 1;
    }
    if (code == ' ') {
        tape->skipToPreviousStop(tape->getPlayIndex() + 1);
        redrawPage(true);
        return 1;
    }
    if (lowerCase(code) == 'p') {
        tape->pausePlaying();
        setWindowMode(WindowMode::Paused);
        return 1;
    }
    return 0;
}

KEventReturn StylusWindow::keyWhilePaused(KKeyEvent& event)
{
    int32_t code = event.getKeyCode();
    bool control = (event.getModifiers() & kControl) != 0;
    if (lowerCase(code) == 'p') {
        tape->resumePlaying();
        setWindowMode(WindowMode::Playing);
        return 1;
    }
    if (code == KKeyEvent::Right || code == KKeyEvent::Left) {
        stopBlink();
        if (code == KKeyEvent::Right)
            tape->skipToNextStop(tape->getPlayIndex() + 1);
        else
            tape->skipToPreviousStop(tape->getPlayIndex());
        redrawPage(true);
        return 1;
    }
    if (code == KKeyEvent::Escape || (code == '.' && control)) {
        if (StylusActions* actions = StylusActions::current())
            actions->stopPlay();
        return 1;
    }
    return 0;
}
