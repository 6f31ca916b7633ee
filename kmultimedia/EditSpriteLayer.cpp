#include "kmultimedia/EditSpriteLayer.h"

#include "kernel/KClass.h"
#include "kmultimedia/EditSprite.h"

K_DEFINE_CLASS(EditSpriteLayer, KSpriteLayer)

EditSpriteLayer::EditSpriteLayer()
    : editSprite(new EditSprite())
{
    editSprite->hide();
    addSprite(*editSprite);
}

EditSpriteLayer::~EditSpriteLayer() { editSprite.clear(); }

EditSprite& EditSpriteLayer::getEditSprite() const { return editSprite.getObject(); }

void EditSpriteLayer::show() { setShown(true); }

void EditSpriteLayer::hide() { setShown(false); }

// The frame is dirty either way, so that a hidden frame is wiped too.
void EditSpriteLayer::setShown(bool value)
{
    shown = value ? 1 : 0;
    if (value)
        editSprite->show();
    else
        editSprite->hide();
    editSprite->setDirty(true);
}

KGraphicRectangle EditSpriteLayer::getRectangle() const { return editSprite->getRectangle(); }

void EditSpriteLayer::setRectangle(const KGraphicRectangle& rectangle) { editSprite->setRectangle(rectangle); }

void EditSpriteLayer::setMaximumSize(const KGraphicSize& size) { editSprite->setMaximumSize(size); }

void EditSpriteLayer::clearMaximumSize() { editSprite->clearMaximumSize(); }

void EditSpriteLayer::setMinimumSize(const KGraphicSize& size) { editSprite->setMinimumSize(size); }

void EditSpriteLayer::setAllowShiftMove(bool allow) { editSprite->setAllowShiftMove(allow); }

bool EditSpriteLayer::getAllowShiftMove() const { return editSprite->getAllowShiftMove(); }

KEventReturn EditSpriteLayer::doMouseDown(KMouseEvent& event) { return shown ? editSprite->mouseDown(event) : 0; }

KEventReturn EditSpriteLayer::doMouseMoved(KMouseEvent& event) { return shown ? editSprite->mouseDragged(event) : 0; }

KEventReturn EditSpriteLayer::doMouseUp(KMouseEvent& event) { return shown ? editSprite->mouseUp(event) : 0; }
