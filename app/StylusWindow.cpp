#include "app/StylusWindow.h"

#include "app/SceneTapePage.h"
#include "app/actors/ActorLoading.h"
#include "tape/Tape.h"
#include "graphics/KColor.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KClass.h"
#include "kmultimedia/KSpriteSystem.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>

namespace {

StylusWindow* gStylusWindow = nullptr;

} // namespace

K_DEFINE_CLASS(StylusWindow, KWindow)

// Centred on the screen.
StylusWindow::StylusWindow()
{
    gStylusWindow = this;
    setTitle("TaleLoom");
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(screenWidth, screenHeight);
    int32_t x = screenWidth > kDefaultWidth ? (screenWidth - kDefaultWidth) / 2 : 0;
    int32_t y = screenHeight > kDefaultHeight ? (screenHeight - kDefaultHeight) / 2 : 0;
    setBounds(KGraphicRectangle(int16_t(x), int16_t(y), kDefaultWidth, kDefaultHeight));
}

StylusWindow::~StylusWindow()
{
    if (gStylusWindow == this)
        gStylusWindow = nullptr;
}

StylusWindow* StylusWindow::current() { return gStylusWindow; }

void StylusWindow::open(int32_t mode)
{
    KWindow::open(mode);
    if (isOpen())
        finishOpen();
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
}

// The scene holds the window as its device and the window holds the scene
// as a layer: removing the layer undoes both.
void StylusWindow::close()
{
    releaseTape();
    if (StylusSpriteSystemPtr scene = spriteSystem) {
        spriteSystem.clear();
        scene->pause();
        removeLayer(*scene);
        scene->detachDevice();
    }
    KWindow::close();
}

StylusSpriteSystem& StylusWindow::getSpriteSystem() const { return spriteSystem.getObject(); }

bool StylusWindow::hasSpriteSystem() const { return spriteSystem.get() != nullptr; }

KGraphicRectangle StylusWindow::getPageRectangle() const
{
    if (!spriteSystem)
        return KGraphicRectangle();
    return KGraphicRectangle(spriteSystem->getOrigin(), spriteSystem->getPageSize());
}

void StylusWindow::showTape(Tape& shown, KDirectory* actorsDirectory)
{
    if (!spriteSystem)
        return;
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
}

Tape* StylusWindow::getTape() const { return tape.get(); }

void StylusWindow::releaseTape()
{
    if (TapePtr shown = tape) {
        tape.clear();
        shown->stopPlaying();
        shown->clearSpriteSystem();
    }
    scenePage.clear();
}

KGraphicPoint StylusWindow::centredOrigin() const
{
    KGraphicSize page = spriteSystem->getPageSize();
    const KGraphicRectangle& client = getClientBounds();
    int32_t x = std::max<int32_t>(0, (client.width - page.width) / 2);
    int32_t y = std::max<int32_t>(0, (client.height - page.height) / 2);
    return KGraphicPoint(int16_t(x), int16_t(y));
}

// A new place shows at the next paint, which fills the surroundings and
// paints the page whole.
void StylusWindow::placePage()
{
    if (!spriteSystem)
        return;
    spriteSystem->setOrigin(centredOrigin());
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
