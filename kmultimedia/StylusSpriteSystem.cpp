#include "kmultimedia/StylusSpriteSystem.h"

#include "graphics/KGraphicObject.h"
#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "kmultimedia/EditSprite.h"
#include "kmultimedia/EditSpriteLayer.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteLayer.h"
#include "kmultimedia/KSpriteSystem.h"
#include "windowing/KControl.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KWindow.h"

K_DEFINE_CLASS(StylusSpriteSystem, KLayer)

StylusSpriteSystem::StylusSpriteSystem()
    : actorLayer(new KSpriteLayer())
    , overlayLayer(new KSpriteLayer())
    , spriteSystem(new KSpriteSystem())
    , editLayer(new EditSpriteLayer())
{
    // The page goes to the window in changed rectangles only.
    spriteSystem->setUpdateMode(KSpriteSystem::Rectangles);
    spriteSystem->addLayer(*actorLayer);
    spriteSystem->addLayer(*overlayLayer);
    spriteSystem->addLayer(*editLayer);
}

StylusSpriteSystem::~StylusSpriteSystem()
{
    pressedLayer.clear();
    spriteSystem->removeAllLayers();
    spriteSystem.clear();
    editLayer.clear();
    overlayLayer.clear();
    actorLayer.clear();
}

KSpriteSystem& StylusSpriteSystem::getSpriteSystem() const { return spriteSystem.getObject(); }
KSpriteLayer& StylusSpriteSystem::getActorLayer() const { return actorLayer.getObject(); }
KSpriteLayer& StylusSpriteSystem::getOverlayLayer() const { return overlayLayer.getObject(); }
EditSpriteLayer& StylusSpriteSystem::getEditLayer() const { return editLayer.getObject(); }
EditSprite& StylusSpriteSystem::getEditSprite() const { return editLayer->getEditSprite(); }

// --- The page ------------------------------------------------------------------

void StylusSpriteSystem::setPageSize(const KGraphicSize& size)
{
    KGraphicRectangle destination = spriteSystem->getDestinationRect();
    destination.setSize(size);
    spriteSystem->setDestinationRect(destination);
    drawingArea = destination;
    spriteSystem->setBufferRect(KGraphicRectangle(KGraphicPoint(0, 0), size));
    pagePaintPending = true;
}

KGraphicSize StylusSpriteSystem::getPageSize() const { return spriteSystem->getBufferRect().getSize(); }

void StylusSpriteSystem::attachDevice(KGraphicDevice& device)
{
    spriteSystem->attachDevice(device);
    drawingArea = spriteSystem->getDestinationRect();
    pagePaintPending = true;
}

void StylusSpriteSystem::detachDevice() { spriteSystem->detachDevice(); }

KImage* StylusSpriteSystem::getPageImage() const { return spriteSystem->getBackground(); }

KGraphicDevice* StylusSpriteSystem::getPageDevice() const
{
    KImage* page = getPageImage();
    return page ? &page->getDevice() : nullptr;
}

void StylusSpriteSystem::refresh(const KGraphicRectangle& rectangle)
{
    if (spriteSystem->getUpdateMode() == KSpriteSystem::Full)
        return;
    spriteSystem->invalidate(rectangle);
}

void StylusSpriteSystem::setOrigin(const KGraphicPoint& origin)
{
    KGraphicRectangle destination = spriteSystem->getDestinationRect();
    destination.setOrigin(origin);
    spriteSystem->setDestinationRect(destination);
    drawingArea = destination;
    pagePaintPending = true;
}

KGraphicPoint StylusSpriteSystem::getOrigin() const { return spriteSystem->getDestinationRect().getOrigin(); }

// --- The scene -------------------------------------------------------------------

void StylusSpriteSystem::addActor(KSprite& sprite) { actorLayer->addSprite(sprite); }

void StylusSpriteSystem::removeActor(KSprite& sprite)
{
    KGraphicRectangle drawn = sprite.getDrawnRect();
    actorLayer->removeSprite(sprite);
    refresh(drawn);
}

void StylusSpriteSystem::addSprite(KSprite& sprite) { overlayLayer->addSprite(sprite); }

void StylusSpriteSystem::removeSprite(KSprite& sprite)
{
    KGraphicRectangle drawn = sprite.getDrawnRect();
    overlayLayer->removeSprite(sprite);
    refresh(drawn);
}

void StylusSpriteSystem::addLayer(KSpriteLayer& layer)
{
    spriteSystem->addLayer(layer);
    keepEditLayerOnTop();
}

bool StylusSpriteSystem::removeLayer(KSpriteLayer& layer)
{
    if (&layer == editLayer.get() || &layer == actorLayer.get() || &layer == overlayLayer.get())
        return false;
    return spriteSystem->removeLayer(layer);
}

void StylusSpriteSystem::keepEditLayerOnTop() { spriteSystem->moveLayerToTop(*editLayer); }

void StylusSpriteSystem::setUpdateMode(KSpriteSystem::UpdateMode mode) { spriteSystem->setUpdateMode(mode); }

void StylusSpriteSystem::redrawAll() { spriteSystem->redrawAll(); }

void StylusSpriteSystem::drawFrame() { spriteSystem->drawFrame(); }

void StylusSpriteSystem::pause() { spriteSystem->pause(); }

void StylusSpriteSystem::resume() { spriteSystem->resume(); }

// --- Editing ---------------------------------------------------------------------

void StylusSpriteSystem::showEdit(const KGraphicRectangle& rectangle)
{
    editLayer->setRectangle(rectangle);
    editLayer->show();
    keepEditLayerOnTop();
    spriteSystem->drawFrame();
}

void StylusSpriteSystem::startEdit(const KGraphicRectangle& rectangle, KGraphicObject& object)
{
    EditSprite& sprite = getEditSprite();
    sprite.clearTextControl();
    sprite.setGraphicObject(object);
    showEdit(rectangle);
}

void StylusSpriteSystem::startEdit(const KGraphicRectangle& rectangle, KControl& control)
{
    EditSprite& sprite = getEditSprite();
    sprite.clearGraphicObject();
    sprite.setTextControl(control);
    showEdit(rectangle);
    spriteSystem->pause();
    holdingForText = true;
    control.show();
    control.setFocus(true);
}

KGraphicRectangle StylusSpriteSystem::endEdit()
{
    EditSprite& sprite = getEditSprite();
    editLayer->hide();
    if (KControl* control = sprite.getTextControl())
        control->hide();
    if (holdingForText) {
        holdingForText = false;
        spriteSystem->resume();
    }
    KGraphicRectangle result = sprite.getRectangle();
    sprite.clearGraphicObject();
    sprite.clearTextControl();
    spriteSystem->drawFrame();
    return result;
}

bool StylusSpriteSystem::isEditing() const { return editLayer->isShown(); }

// --- Mouse and paint -------------------------------------------------------------

KMouseEvent* StylusSpriteSystem::toPage(KMouseEvent& event) const
{
    auto* copy = new KMouseEvent(event.getType(), event.getWindow());
    KGraphicPoint origin = getOrigin();
    copy->setLocal({ event.getLocal().x - origin.x, event.getLocal().y - origin.y });
    copy->setGlobal(event.getGlobal());
    copy->setButton(event.getButton());
    copy->setButtonDown(event.isButtonDown());
    copy->setModifiers(event.getModifiers());
    copy->setClickFlags(event.getClickFlags());
    copy->setTime(event.getTime());
    copy->setLayer(event.getLayer());
    return copy;
}

KEventReturn StylusSpriteSystem::offerToLayers(KMouseEvent& event, Route route)
{
    KPtr<KMouseEvent> page = kAdopt(toPage(event));
    KBag& layers = spriteSystem->getLayers();
    for (int32_t i = layers.getSize() - 1; i >= 0; --i) {
        KSpriteLayerPtr layer(static_cast<KSpriteLayer*>(layers.getAt(i)));
        if (!layer)
            continue;
        KEventReturn answer = ((*layer).*route)(*page);
        if (answer == 0)
            continue;
        if (answer == 4 && route == &KSpriteLayer::doMouseDown)
            pressedLayer = layer;
        return answer;
    }
    return 0;
}

KEventReturn StylusSpriteSystem::doMouseDown(KMouseEvent& event)
{
    pressedLayer.clear();
    return offerToLayers(event, &KSpriteLayer::doMouseDown);
}

KEventReturn StylusSpriteSystem::doMouseMoved(KMouseEvent& event)
{
    if (!pressedLayer)
        return offerToLayers(event, &KSpriteLayer::doMouseMoved);
    KPtr<KMouseEvent> page = kAdopt(toPage(event));
    return pressedLayer->doMouseMoved(*page);
}

KEventReturn StylusSpriteSystem::doMouseUp(KMouseEvent& event)
{
    if (!pressedLayer)
        return offerToLayers(event, &KSpriteLayer::doMouseUp);
    KSpriteLayerPtr layer = pressedLayer;
    pressedLayer.clear();
    KPtr<KMouseEvent> page = kAdopt(toPage(event));
    return layer->doMouseUp(*page);
}

KEventReturn StylusSpriteSystem::doPaint(KWindowEvent&)
{
    KWindow* window = getWindow();
    if (!window || !spriteSystem->getOffscreen())
        return 0;
    if (spriteSystem->getDevice() == window && !pagePaintPending)
        return 0;
    pagePaintPending = false;
    spriteSystem->paintTo(*window, spriteSystem->getDestinationRect());
    return 0;
}

void StylusSpriteSystem::resetWindow()
{
    if (KWindow* window = getWindow(); window && spriteSystem->getDevice() == window)
        spriteSystem->detachDevice();
    KLayer::resetWindow();
}
