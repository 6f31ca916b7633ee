#pragma once

#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kmultimedia/KMultimediaForward.h"
#include "kmultimedia/KSpriteSystem.h"
#include "windowing/KLayer.h"

// The scene of the page as a layer of the main window. It owns the page's
// sprite system, whose background is the page image: everything painted on
// the page goes to that image's device and is then announced by
// `refresh(rectangle)`. Above the page stand the layer of actors, a second
// sprite layer, and on top of all the edit frame's layer.
//
// Mouse events reach the scene's sprite layers in page terms (the local
// point less the page's origin on the window), the top layer first; the
// layer that takes a press (answer 4) gets the moves and the release.
class StylusSpriteSystem : public KLayer {
    K_DECLARE_CLASS(StylusSpriteSystem)
public:
    StylusSpriteSystem();
    ~StylusSpriteSystem() override;

    // --- The page ----------------------------------------------------------

    // The page's size: the buffer and the page image. A new size makes new
    // buffers (and a new, black page) when a device is attached.
    void setPageSize(const KGraphicSize& size);
    KGraphicSize getPageSize() const;
    // The target of the frames, normally the window. Attaching makes the
    // buffers and a new black page image; a page size not set yet takes
    // the device's.
    void attachDevice(KGraphicDevice& device);
    void detachDevice();
    // The page image and its device; null before a device is attached.
    KImage* getPageImage() const;
    KGraphicDevice* getPageDevice() const;
    // The area of the page image changed; the next frame shows it.
    void refresh(const KGraphicRectangle& rectangle);
    // Where the page stands on the device. A new place is painted whole at
    // the next paint.
    void setOrigin(const KGraphicPoint& origin);
    KGraphicPoint getOrigin() const;

    // --- The scene -----------------------------------------------------------

    void addActor(KSprite& sprite);
    // Takes the sprite away at once and wipes the place it was drawn at.
    void removeActor(KSprite& sprite);
    // Sprites of the second layer.
    void addSprite(KSprite& sprite);
    void removeSprite(KSprite& sprite);
    // Further layers stand below the edit frame.
    void addLayer(KSpriteLayer& layer);
    bool removeLayer(KSpriteLayer& layer);
    void setUpdateMode(KSpriteSystem::UpdateMode mode);
    void redrawAll();
    // Runs a frame now, as the frame timer would.
    void drawFrame();
    void pause();
    void resume();

    // --- Editing -------------------------------------------------------------

    // Shows the edit frame around the object at the rectangle (page terms).
    void startEdit(const KGraphicRectangle& rectangle, KGraphicObject& object);
    // The same for a text being typed: the clock is held and the control
    // takes the keyboard.
    void startEdit(const KGraphicRectangle& rectangle, KControl& control);
    // Hides the frame, lets the clock go on, and gives the final rectangle.
    KGraphicRectangle endEdit();
    bool isEditing() const;

    // --- Window side ---------------------------------------------------------

    KEventReturn doMouseDown(KMouseEvent& event) override;
    KEventReturn doMouseMoved(KMouseEvent& event) override;
    KEventReturn doMouseUp(KMouseEvent& event) override;
    // Paints the page whole when its window is not the target of the frames
    // or when asked to by `repaintPage`; a window that is the target keeps
    // what the frames brought in its back buffer.
    KEventReturn doPaint(KWindowEvent& event) override;
    // The window's back buffer lost the page: the next paint shows it whole.
    void repaintPage() { pagePaintPending = true; }
    bool isPagePaintPending() const { return pagePaintPending; }
    // The window is let go with the layer, so that neither keeps the other.
    void resetWindow() override;

    KSpriteSystem& getSpriteSystem() const;
    KSpriteLayer& getActorLayer() const;
    KSpriteLayer& getOverlayLayer() const;
    EditSpriteLayer& getEditLayer() const;
    EditSprite& getEditSprite() const;

private:
    using Route = KEventReturn (KSpriteLayer::*)(KMouseEvent&);
    // A copy of the event in page terms.
    KMouseEvent* toPage(KMouseEvent& event) const;
    KEventReturn offerToLayers(KMouseEvent& event, Route route);
    void keepEditLayerOnTop();
    void showEdit(const KGraphicRectangle& rectangle);

    KSpriteLayerPtr actorLayer;
    KSpriteLayerPtr overlayLayer;
    KSpriteSystemPtr spriteSystem;
    // What the scene may draw on: the page's rectangle on the device.
    KGraphicRectangle drawingArea;
    EditSpriteLayerPtr editLayer;
    // The layer that took the press, until the release.
    KSpriteLayerPtr pressedLayer;
    bool holdingForText = false;
    bool pagePaintPending = true;
};
