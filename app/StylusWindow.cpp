#include "app/StylusWindow.h"

#include "app/ActorEditor.h"
#include "app/NavigationPalette.h"
#include "app/SceneTapePage.h"
#include "app/StylusActions.h"
#include "app/ToolPalette.h"
#include "app/actors/ActorLoading.h"
#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KClass.h"
#include "kernel/KFileReference.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteLayer.h"
#include "kmultimedia/KSpriteSystem.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "windowing/KApplication.h"
#include "windowing/KBusyCursor.h"
#include "windowing/KCursorManager.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KTimer.h"

#include <algorithm>

namespace {

StylusWindow* gStylusWindow = nullptr;

KTimer* makeTimer(KThing& target, int32_t interval, bool repeat)
{
    auto* timer = new KTimer();
    timer->setTarget(&target);
    timer->setInterval(interval);
    timer->setRepeat(repeat);
    return timer;
}

// A marker: a round sign in the page's top right corner, orange for a
// pause, blue for a wait, with a white ring so it shows on any page.
KAlphaImagePtr markerImage(const KColor& colour)
{
    int16_t size = StylusWindow::kMarkerSize;
    KGraphicRectangle whole(0, 0, size, size);
    KAlphaImagePtr image(new KAlphaImage(KGraphicSize(size, size)));
    KImagePtr mask(new KImage(KGraphicSize(size, size)));
    mask->getDevice().fillRectangle(whole, KColor(KColor::White));
    mask->getDevice().setForeground(KColor(KColor::Black));
    mask->getDevice().fillOval(whole);
    KGraphicDevice& device = image->getDevice();
    device.fillRectangle(whole, KColor(KColor::White));
    device.setForeground(KColor(KColor::White));
    device.fillOval(whole);
    device.setForeground(colour);
    device.fillOval(KGraphicRectangle(4, 4, int16_t(size - 8), int16_t(size - 8)));
    image->setMask(*mask);
    image->setBlendMode(KAlphaImage::Masked);
    return image;
}

// The wait marker: the round sign with a white hand that points at the
// page, so that a reader who cannot hear still sees that the story waits.
KAlphaImagePtr waitMarkerImage(const KColor& colour)
{
    KAlphaImagePtr image = markerImage(colour);
    KGraphicDevice& device = image->getDevice();
    int16_t s = StylusWindow::kMarkerSize;
    auto at = [s](int32_t x, int32_t y) { return KGraphicPoint(int16_t(x * s / 64), int16_t(y * s / 64)); };
    device.setForeground(KColor(KColor::White));
    // The finger points down to the left, towards the page's content.
    device.fillPolygon({ at(14, 50), at(26, 24), at(32, 30), at(44, 14), at(52, 22), at(36, 36), at(42, 42) });
    device.fillOval(KGraphicRectangle(at(34, 28).x, at(34, 28).y, int16_t(14 * s / 64), int16_t(14 * s / 64)));
    return image;
}

} // namespace

K_DEFINE_CLASS(StylusWindow, KWindow)

// Centred on the screen.
StylusWindow::StylusWindow()
{
    gStylusWindow = this;
    setTitle(kTranslate("TaleLoom"));
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(screenWidth, screenHeight);
    int32_t width = std::min<int32_t>(kDefaultWidth, screenWidth > 0 ? screenWidth : kDefaultWidth);
    int32_t height = std::min<int32_t>(kDefaultHeight, screenHeight > 0 ? screenHeight : kDefaultHeight);
    int32_t x = screenWidth > width ? (screenWidth - width) / 2 : 0;
    int32_t y = screenHeight > height ? (screenHeight - height) / 2 : 0;
    setBounds(KGraphicRectangle(int16_t(x), int16_t(y), int16_t(width), int16_t(height)));
}

StylusWindow::~StylusWindow()
{
    stopTimers();
    if (gStylusWindow == this)
        gStylusWindow = nullptr;
}

StylusWindow* StylusWindow::current() { return gStylusWindow; }

void StylusWindow::open(OpenMode mode)
{
    KWindow::open(mode);
    if (!isOpen())
        return;
    makeTimers();
    finishOpen();
}

void StylusWindow::makeTimers()
{
    if (blinkTimer)
        return;
    blinkTimer = kAdopt(makeTimer(*this, kBlinkInterval, true));
    highlightTimer = kAdopt(makeTimer(*this, kHighlightInterval, false));
    cursorTimer = kAdopt(makeTimer(*this, kCursorHideInterval, false));
}

void StylusWindow::stopTimers()
{
    for (KTimer* timer : { blinkTimer.get(), highlightTimer.get(), cursorTimer.get() }) {
        if (timer) {
            timer->stop();
            timer->setTarget(nullptr);
        }
    }
}

void StylusWindow::finishOpen()
{
    if (spriteSystem)
        return;
    spriteSystem = kAdopt(new StylusSpriteSystem());
    spriteSystem->setPageSize(KGraphicSize(kDefaultWidth, kDefaultHeight));
    spriteSystem->attachDevice(*this);
    addLayer(*spriteSystem);
    placePage();
    buildSprites();
    updateBrushSprite();
    if (ToolPalette* palette = ToolPalette::current())
        palette->updateState(int32_t(windowMode));
    updateBrushPosition();
}

// The scene holds the window as its device and the window holds the scene
// as a layer: removing the layer undoes both.
void StylusWindow::close()
{
    stopTimers();
    strokes.release(0, 0, false);
    releaseTape();
    dropSprites();
    if (StylusSpriteSystemPtr scene = spriteSystem) {
        spriteSystem.clear();
        scene->pause();
        removeLayer(*scene);
        scene->detachDevice();
    }
    KWindow::close();
}

KEventReturn StylusWindow::doClose(KWindowEvent&)
{
    // Closing the main window is quitting, with the save question.
    if (KApplication* application = KApplication::current())
        application->requestQuit();
    return 1;
}

void StylusWindow::buildSprites()
{
    pauseMarker = kAdopt(new KSprite());
    pauseMarker->addFrame(*markerImage(KColor(0xEF00, 0x8600, 0)));
    waitMarker = kAdopt(new KSprite());
    waitMarker->addFrame(*waitMarkerImage(KColor(0x1000, 0x6000, 0xE700)));
    for (KSprite* marker : { pauseMarker.get(), waitMarker.get() }) {
        marker->hide();
        spriteSystem->addSprite(*marker);
    }
    placePage();
}

void StylusWindow::dropSprites()
{
    if (!spriteSystem)
        return;
    for (KSprite* sprite : { brush.get(), pauseMarker.get(), waitMarker.get() }) {
        if (sprite)
            spriteSystem->removeSprite(*sprite);
    }
    brush.clear();
    pauseMarker.clear();
    waitMarker.clear();
}

void StylusWindow::timerFired(KTimer& timer)
{
    if (&timer == blinkTimer.get()) {
        blinkOn = !blinkOn;
        showMarkers();
    } else if (&timer == highlightTimer.get()) {
        hideHighlight(true);
    } else if (&timer == cursorTimer.get()) {
        if (windowMode == WindowMode::Playing && !cursorHeldByWait)
            setCursorShown(false);
    }
}

StylusSpriteSystem& StylusWindow::getSpriteSystem() const { return spriteSystem.getObject(); }

bool StylusWindow::hasSpriteSystem() const { return spriteSystem.get() != nullptr; }

KGraphicRectangle StylusWindow::getPageRectangle() const
{
    if (!spriteSystem)
        return KGraphicRectangle();
    return KGraphicRectangle(spriteSystem->getOrigin(), spriteSystem->getPageSize());
}

KGraphicPoint StylusWindow::toPage(const KGraphicPoint& windowPoint) const
{
    KGraphicPoint origin = spriteSystem ? spriteSystem->getOrigin() : KGraphicPoint();
    return KGraphicPoint(int16_t(windowPoint.x - origin.x), int16_t(windowPoint.y - origin.y));
}

bool StylusWindow::tapeIsIdle() const { return !tape || tape->getPlayState() == Tape::PlayState::Stopped; }

// --- Tape ---------------------------------------------------------------------

void StylusWindow::showTape(Tape& shown, KDirectory* actorsDirectory)
{
    if (!spriteSystem)
        return;
    stopEditing();
    releaseTape();
    tape = shown;
    if (actorsDirectory)
        loadTapeActors(shown, *actorsDirectory);
    if (spriteSystem->getPageSize() != shown.getPageSize() && !shown.getPageSize().isEmpty()) {
        spriteSystem->setPageSize(shown.getPageSize());
        placePage();
    }
    scenePage = kAdopt(new SceneTapePage(*spriteSystem));
    shown.setSpriteSystem(*scenePage);
    shown.rebuildPage();
    setWindowMode(WindowMode::TapeEditing);
    updateTitle();
    redrawPage(false);
}

Tape* StylusWindow::getTape() const { return tape.get(); }

void StylusWindow::releaseTape()
{
    endOpenDrags();
    if (TapePtr shown = tape) {
        tape.clear();
        shown->stopPlaying();
        shown->clearSpriteSystem();
    }
    scenePage.clear();
}

// --- Modes --------------------------------------------------------------------

void StylusWindow::setWindowMode(WindowMode mode)
{
    windowMode = mode;
    if (ToolPalette* palette = ToolPalette::current())
        palette->updateState(int32_t(mode));
}

void StylusWindow::beginPastePlacement()
{
    stopEditing();
    hideBrush();
    editMode = EditMode::Paste;
}

void StylusWindow::updateTitle()
{
    if (windowMode == WindowMode::None)
        setWindowMode(WindowMode::TapeEditing);
    ActorEditor* editor = ActorEditor::current();
    if (windowMode == WindowMode::ActorEditing && editor && editor->isEditing()) {
        setTitle(editor->titleText());
        return;
    }
    KString name = kTranslate("Untitled");
    if (project && project->hasFile())
        name = project->getFile()->getPath().getName();
    setTitle(name + " - " + kTranslate("TaleLoom"));
}

// --- Page ---------------------------------------------------------------------

void StylusWindow::redrawPage(bool redraw)
{
    if (!tape)
        return;
    KBusyCursor busy;
    if (redraw)
        tape->rebuildPage();
    if (ToolPalette* palette = ToolPalette::current())
        palette->setElementIndicator(tape->getToolEntry());
    if (NavigationPalette* navigation = NavigationPalette::current())
        navigation->getControl().followTape();
}

void StylusWindow::showHighlight()
{
    if (!tape || !spriteSystem || !tape->hasCurrentElement() || !tapeIsIdle())
        return;
    TapeObject* element = tape->getCurrentElement();
    KGraphicRectangle area = element->getBounds();
    if (area.isEmpty())
        return;
    KGraphicDevice* device = spriteSystem->getPageDevice();
    if (!device)
        return;
    element->drawHighlighted(*device, area, area);
    spriteSystem->refresh(area);
    highlightShown = true;
    if (highlightTimer) {
        highlightTimer->stop();
        highlightTimer->start();
    }
}

void StylusWindow::hideHighlight(bool restore)
{
    if (highlightTimer)
        highlightTimer->stop();
    if (!highlightShown)
        return;
    highlightShown = false;
    if (restore && tape)
        tape->rebuildPage();
}

// --- Play ---------------------------------------------------------------------

void StylusWindow::enterPlayMode()
{
    hideHighlight(true);
    hideBrush();
    setWindowMode(WindowMode::Playing);
    restartCursorTimer();
}

void StylusWindow::stopPlayMode()
{
    if (cursorTimer)
        cursorTimer->stop();
    cursorHeldByWait = false;
    setCursorShown(true);
    stopBlink();
    setWindowMode(WindowMode::TapeEditing);
}

void StylusWindow::restartCursorTimer()
{
    if (!cursorTimer)
        return;
    cursorTimer->stop();
    cursorTimer->start();
}

void StylusWindow::setCursorShown(bool shown)
{
    if (cursorShown == shown)
        return;
    cursorShown = shown;
    if (KCursorManager* cursors = KCursorManager::current()) {
        if (shown)
            cursors->showCursor();
        else
            cursors->hideCursor();
    }
}

void StylusWindow::showPauseMarks(bool shown)
{
    if (!pauseMarker)
        return;
    if (shown) {
        pauseMarksShown = true;
        startBlink();
    } else {
        stopBlink();
    }
}

// While paused the wait is dropped by the tape, and its marker with it;
// the wait shows it again when it starts over on resuming.
void StylusWindow::showWaitMarks(bool shown)
{
    waitMarksShown = shown;
    if (shown)
        startBlink();
    else if (!pauseMarksShown)
        stopBlink();
    else
        showMarkers();
}

KSprite* StylusWindow::getWaitMarker() const { return waitMarker.get(); }

KSprite* StylusWindow::getPauseMarker() const { return pauseMarker.get(); }

void StylusWindow::startBlink()
{
    blinkOn = true;
    showMarkers();
    if (blinkTimer && !blinkTimer->isRunning())
        blinkTimer->start();
}

// Each marker shows in the on half of the blink while it is wanted; the
// wait's not while the play is paused.
void StylusWindow::showMarkers()
{
    bool pauseOn = blinkOn && pauseMarksShown;
    bool waitOn = blinkOn && waitMarksShown && !pauseMarksShown;
    for (auto [marker, on] : { std::pair(pauseMarker.get(), pauseOn), std::pair(waitMarker.get(), waitOn) }) {
        if (!marker)
            continue;
        if (on)
            marker->show();
        else
            marker->hide();
    }
}

void StylusWindow::stopBlink()
{
    if (blinkTimer)
        blinkTimer->stop();
    blinkOn = false;
    pauseMarksShown = false;
    waitMarksShown = false;
    showMarkers();
}

void StylusWindow::showCursorForWait(bool shown)
{
    cursorHeldByWait = shown;
    setCursorShown(shown);
}

void StylusWindow::releaseCursorFromWait(bool shown)
{
    cursorHeldByWait = false;
    setCursorShown(shown);
    if (shown && windowMode == WindowMode::Playing)
        restartCursorTimer();
}

// --- Layout -------------------------------------------------------------------

KGraphicPoint StylusWindow::centredOrigin() const
{
    KGraphicSize page = spriteSystem->getPageSize();
    const KGraphicRectangle& client = getClientBounds();
    int32_t x = std::max<int32_t>(0, (client.width - page.width) / 2);
    int32_t y = std::max<int32_t>(0, (client.height - page.height) / 2);
    return KGraphicPoint(int16_t(x), int16_t(y));
}

// A new place shows at the next paint, which fills the surroundings and
// paints the page whole. The markers keep to the page's top right.
void StylusWindow::placePage()
{
    if (!spriteSystem)
        return;
    spriteSystem->setOrigin(centredOrigin());
    KGraphicSize page = spriteSystem->getPageSize();
    if (pauseMarker)
        pauseMarker->setPosition(float(page.width - kMarkerInset), float(kMarkerTop));
    if (waitMarker)
        waitMarker->setPosition(float(page.width - kWaitMarkerInset - kMarkerSize), float(kWaitMarkerInset));
    layoutStale = true;
    invalidate();
}

KEventReturn StylusWindow::doResized(KWindowEvent&)
{
    placePage();
    return 0;
}

void StylusWindow::fillSurroundings()
{
    KGraphicRectangle page = getPageRectangle();
    KGraphicRectangle client(0, 0, getClientBounds().width, getClientBounds().height);
    KColor face(KColor::ButtonFace2);
    int32_t pageRight = page.getRight();
    int32_t pageBottom = int32_t(page.y) + page.height;
    // Above, below, left and right of the page.
    fillRectangle(KGraphicRectangle(0, 0, client.width, page.y), face);
    fillRectangle(KGraphicRectangle(0, int16_t(pageBottom), client.width, int16_t(client.height - pageBottom)), face);
    fillRectangle(KGraphicRectangle(0, page.y, page.x, page.height), face);
    fillRectangle(KGraphicRectangle(int16_t(pageRight), page.y, int16_t(client.width - pageRight), page.height), face);
}

// The back buffer keeps what the frames brought, so a paint asked for by a
// frame has nothing to do; the layer then paints the page only when the
// layout changed.
KEventReturn StylusWindow::doPaint(KWindowEvent&)
{
    if (!spriteSystem || !layoutStale)
        return 0;
    layoutStale = false;
    fillSurroundings();
    spriteSystem->repaintPage();
    return 0;
}

KEventReturn StylusWindow::doDeactivate(KWindowEvent&)
{
    endOpenDrags();
    hideBrush();
    return 0;
}
