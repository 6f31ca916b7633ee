// The main window's in-place editors (images, movies, texts, actor
// positions) and its brush.

#include "app/SceneTapePage.h"
#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusTapeHost.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "app/UndoStep.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorAction.h"
#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "kmultimedia/EditSprite.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "tape/StylusImage.h"
#include "tape/StylusMovie.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KTextFormatMenu.h"
#include "windowing/KWindowManager.h"

#include <algorithm>

namespace {

KGraphicRectangle inflated(const KGraphicRectangle& r, int32_t by)
{
    return KGraphicRectangle(int16_t(r.x - by), int16_t(r.y - by), int16_t(r.width + 2 * by),
                             int16_t(r.height + 2 * by));
}

// The element as it looks on the page, as a picture of its own size.
KImagePtr pictureOf(TapeObject& element)
{
    KGraphicRectangle bounds = element.getBounds();
    KImagePtr picture(
        new KImage(KGraphicSize(std::max<int16_t>(1, bounds.width), std::max<int16_t>(1, bounds.height))));
    element.drawOn(picture->getDevice(), bounds, KGraphicRectangle(0, 0, bounds.width, bounds.height));
    return picture;
}

bool placeableAction(int32_t action)
{
    return action == ActorAction::EnterOnScene || action == ActorAction::MoveResize
           || action == ActorAction::JumpToPosition;
}

} // namespace

// --- Opening an editor by a press ---------------------------------------------------

bool StylusWindow::editElementAt(const KGraphicPoint& local)
{
    if (!tape || !tape->hasCurrentElement())
        return false;
    TapeObject* element = tape->getCurrentElement();
    switch (element->getType()) {
    case TextType: {
        auto* text = dynamic_cast<StylusText*>(element);
        if (!text || !inflated(element->getBounds(), kEditSlop).contains(local))
            return false;
        startEditText(*text);
        return true;
    }
    case ImageType:
        if (!inflated(element->getBounds(), kEditSlop).contains(local))
            return false;
        openEditImage(static_cast<StylusImage&>(*element));
        return true;
    case MovieType:
        if (!inflated(element->getBounds(), kEditSlop).contains(local))
            return false;
        openEditMovie(static_cast<StylusMovie&>(*element));
        return true;
    case ActorActionType: {
        auto* action = dynamic_cast<ActorAction*>(element);
        if (!action || action->getAction() == ActorAction::ExitFromScene)
            return false;
        auto* actor = dynamic_cast<Actor*>(tape->getActor(action->getActorName()));
        if (!actor || !inflated(actor->getBounds(), kEditSlop).contains(local))
            return false;
        startEditActorPosition(*action);
        return true;
    }
    default:
        return false;
    }
}

// The page without the element, which the editor shows instead.
void StylusWindow::redrawWithout(int32_t position)
{
    tape->setPositionQuietly(position - 1);
    tape->rebuildPage();
    tape->setPositionQuietly(position);
}

void StylusWindow::stopEditing()
{
    closeEditImage();
    closeEditMovie();
    stopEditText();
    stopEditActorPosition();
    if (editMode == EditMode::Paste) {
        editMode = EditMode::None;
        if (StylusActions* actions = StylusActions::current())
            actions->finishPastePlacement(false);
        redrawPage(true);
    }
    editMode = EditMode::None;
    // The mark must never stay in the page, nor in a picture saved of it;
    // a full redraw that follows restores it anyway.
    hideHighlight(true);
    updateBrushPosition();
}

// --- Images and movies ---------------------------------------------------------------

void StylusWindow::openEditImage(StylusImage& element)
{
    openEditPicture(element, EditMode::Image, kTranslate("EditImage Already Open!"));
}

// The element's picture floats in the edit frame over the page without it.
void StylusWindow::openEditPicture(TapeObject& element, EditMode mode, const KString& alreadyOpen)
{
    if (isEditing()) {
        TapeHost::get().alert(kTranslate("TaleLoom"), alreadyOpen);
        return;
    }
    if (!tape || !spriteSystem)
        return;
    hideBrush();
    editPicture = pictureOf(element);
    edited = element;
    redrawWithout(tape->getPosition());
    spriteSystem->startEdit(element.getBounds(), *editPicture);
    editMode = mode;
}

// An image or a movie takes the rectangle the user gave it.
void StylusWindow::finishInPlaceEdit(TapeObject& element)
{
    KGraphicRectangle placed = spriteSystem->endEdit();
    editMode = EditMode::None;
    editPicture.clear();
    edited.clear();
    auto* graphic = dynamic_cast<TapeGraphicObject*>(&element);
    if (graphic && placed != graphic->getBounds() && !placed.isEmpty()) {
        UndoStep step(tape.get(), UndoHistory::Name::Move);
        step.willChange(*graphic);
        graphic->setBounds(placed);
        tape->elementChanged(element);
        tape->setModified();
        tape->invalidatePreviewsFrom(tape->getPosition(), false);
    }
    redrawPage(true);
    TapeHost::get().refreshThumbnails();
    updateBrushPosition();
}

void StylusWindow::closeEditImage()
{
    if (editMode != EditMode::Image || !edited)
        return;
    finishInPlaceEdit(*TapeObjectPtr(edited));
}

void StylusWindow::openEditMovie(StylusMovie& element)
{
    openEditPicture(element, EditMode::Movie, kTranslate("EditMovie Already Open!"));
}

void StylusWindow::closeEditMovie()
{
    if (editMode != EditMode::Movie || !edited)
        return;
    finishInPlaceEdit(*TapeObjectPtr(edited));
}

// --- Texts ---------------------------------------------------------------------------

void StylusWindow::startEditText(StylusText& element)
{
    if (isEditing()) {
        TapeHost::get().alert("StylusWindow::startEditText", kTranslate("EditField Already Open!"));
        return;
    }
    if (!tape || !spriteSystem)
        return;
    KGraphicRectangle bounds = element.getBounds();
    KGraphicPoint origin = spriteSystem->getOrigin();
    editField = kAdopt(
        new KEditFieldControl(0, KWideRectangle(bounds.x + origin.x, bounds.y + origin.y, bounds.width, bounds.height),
                              KEditFieldControl::StyledText));
    hideBrush();
    addControl(*editField);
    editField->setTextBlock(element.getTextBlock());
    editField->setBackColour(element.getBackColour());
    editField->setTransparentBackground(element.isTransparent());
    editField->setFocus(true);
    tape->setModified();
    if (StylusApplication* application = StylusApplication::current()) {
        if (KTextFormatMenu* menu = application->getFormatMenu()) {
            menu->setEnabled(true);
            editField->setFormatMenu(menu);
        }
    }
    editField->selectAll();
    edited = element;
    element.setEdited(true);
    spriteSystem->startEdit(bounds, *editField);
    editMode = EditMode::Text;
    redrawPage(true);
}

KEditFieldControl* StylusWindow::getEditField() const { return editField.get(); }

namespace {

// Blanks, tabs and line breaks show nothing; neither does a no-break space.
bool hasVisibleCharacter(const KString& text)
{
    for (int32_t i = 0; i < text.getLength(); ++i) {
        auto c = static_cast<unsigned char>(text.charAt(i));
        if (c > ' ' && c != 0xA0)
            return true;
    }
    return false;
}

// Whether the two texts show alike: the same characters, alignment and
// runs of the same look.
bool looksTheSame(const KTextBlock& a, const KTextBlock& b)
{
    KNativeStyledText first = KEditFieldControl::toNative(a);
    KNativeStyledText second = KEditFieldControl::toNative(b);
    if (first.text != second.text || first.alignment != second.alignment || first.runs.size() != second.runs.size())
        return false;
    for (size_t i = 0; i < first.runs.size(); ++i) {
        if (first.runs[i].length != second.runs[i].length || !(first.runs[i].style == second.runs[i].style))
            return false;
    }
    return true;
}

} // namespace

void StylusWindow::stopEditText()
{
    if (editMode != EditMode::Text)
        return;
    StylusTextPtr element(dynamic_cast<StylusText*>(edited.get()));
    KEditFieldControlPtr field = editField;
    editMode = EditMode::None;
    edited.clear();
    editField.clear();
    KGraphicRectangle placed = spriteSystem ? spriteSystem->endEdit() : KGraphicRectangle();
    // Walking over a text edits it in place: only a real change marks the
    // story changed and sends the thumbnails after it.
    bool changed = false;
    UndoStep step(tape.get(), UndoHistory::Name::Typing);
    if (field) {
        if (element) {
            KTextBlock typed = field->getTextBlock();
            if (!looksTheSame(typed, element->getTextBlock())
                || !(field->getBackColour() == element->getBackColour())) {
                step.willChange(*element);
                element->setTextBlock(typed);
                element->setBackColour(field->getBackColour());
                changed = true;
            }
        }
        field->setFormatMenu(nullptr);
        removeControl(*field);
    }
    if (StylusApplication* application = StylusApplication::current()) {
        if (KTextFormatMenu* menu = application->getFormatMenu())
            menu->setEnabled(false);
    }
    if (element && tape) {
        element->setEdited(false);
        int32_t index = tape->findIndexOf(*element);
        if (!hasVisibleCharacter(element->getPlainText()) && index >= 0) {
            tape->removeRange(index, index);
        } else {
            if (!placed.isEmpty() && placed != element->getBounds()) {
                step.willChange(*element);
                element->setRect(placed);
                changed = true;
            }
            if (changed) {
                tape->elementChanged(*element);
                tape->setModified();
                tape->invalidatePreviewsFrom(std::max(index, 0), false);
            }
        }
    }
    updateBrushPosition();
    redrawPage(true);
    TapeHost::get().refreshThumbnails();
}

// --- Actor positions -------------------------------------------------------------------

void StylusWindow::startEditActorPosition(ActorAction& action)
{
    if (isEditing()) {
        TapeHost::get().alert(kTranslate("TaleLoom"), kTranslate("Already Editing!"));
        return;
    }
    if (!placeableAction(action.getAction())) {
        TapeHost::get().alert(
            kTranslate("Edit Actor Position"),
            kTranslate(
                "Actor position can be edited only for 'Enter on Scene', 'Move / Resize' or 'Jump To Position'"));
        return;
    }
    auto* actor = tape ? dynamic_cast<Actor*>(tape->getActor(action.getActorName())) : nullptr;
    KAlphaImage* frame = actor ? actor->getFrameImage(actor->getFrame()) : nullptr;
    if (!actor || !frame || !spriteSystem)
        return;
    hideBrush();
    edited = action;
    editPicture = frame;
    EditSprite& sprite = spriteSystem->getEditSprite();
    if (StylusTapeHost::instance().limitActorSize())
        sprite.setMaximumSize(KGraphicSize(kLimitedActorWidth, kLimitedActorHeight));
    else
        sprite.clearMaximumSize();
    actor->hide();
    spriteSystem->startEdit(actor->getBounds(), *editPicture);
    editMode = EditMode::ActorPosition;
}

// The frame's corner is the actor's new place, and its size against the
// frame's own gives the scale.
void StylusWindow::stopEditActorPosition()
{
    if (editMode != EditMode::ActorPosition || !edited)
        return;
    KPtr<ActorAction> action(static_cast<ActorAction*>(edited.get()));
    KGraphicRectangle placed = spriteSystem->endEdit();
    KGraphicSize frameSize = editPicture ? editPicture->getSize() : KGraphicSize();
    editMode = EditMode::None;
    editPicture.clear();
    edited.clear();
    if (auto* actor = dynamic_cast<Actor*>(tape->getActor(action->getActorName())))
        actor->show();
    if (!placed.isEmpty() && frameSize.width > 0 && frameSize.height > 0) {
        UndoStep step(tape.get(), UndoHistory::Name::Move);
        step.willChange(*action);
        action->setPosition(placed.getOrigin());
        action->setScale(KAnimationVector(float(placed.width) / float(frameSize.width),
                                          float(placed.height) / float(frameSize.height)));
        tape->elementChanged(*action);
        tape->setModified();
        tape->invalidatePreviewsFrom(tape->getPosition(), false);
    }
    redrawPage(true);
    updateBrushPosition();
}

// --- Brush -----------------------------------------------------------------------------

// A disc of the brush's colour with a thin dark ring, so that it shows on a
// page of its own colour too.
KAlphaImagePtr StylusWindow::brushImage(int16_t size) const
{
    ToolPalette* palette = ToolPalette::current();
    KColor colour = palette ? palette->getBrushColor() : KColor(KColor::White);
    KGraphicRectangle whole(0, 0, size, size);
    KAlphaImagePtr image(new KAlphaImage(KGraphicSize(size, size)));
    KImagePtr mask(new KImage(KGraphicSize(size, size)));
    mask->getDevice().fillRectangle(whole, KColor(KColor::White));
    mask->getDevice().setForeground(KColor(KColor::Black));
    mask->getDevice().fillOval(whole);
    KGraphicDevice& device = image->getDevice();
    device.fillRectangle(whole, KColor(KColor::White));
    if (size > 4) {
        device.setForeground(KColor(0x4000, 0x4000, 0x4000));
        device.fillOval(whole);
        device.setForeground(colour);
        device.fillOval(KGraphicRectangle(1, 1, int16_t(size - 2), int16_t(size - 2)));
    } else {
        device.setForeground(colour);
        device.fillOval(whole);
    }
    image->setMask(*mask);
    image->setBlendMode(KAlphaImage::Masked);
    return image;
}

void StylusWindow::updateBrushSprite()
{
    if (!spriteSystem)
        return;
    ToolPalette* palette = ToolPalette::current();
    int16_t size = std::max<int16_t>(1, palette ? palette->getBrushSize() : ToolPalette::kDefaultBrushSize);
    bool shown = brush && brush->isVisible();
    KAnimationPoint at = brush ? brush->getPosition() : KAnimationPoint();
    if (brush)
        spriteSystem->removeSprite(*brush);
    brush = kAdopt(new KSprite());
    brush->addFrame(*brushImage(size));
    brush->setPosition(at);
    if (shown)
        brush->show();
    else
        brush->hide();
    spriteSystem->addSprite(*brush);
}

void StylusWindow::moveBrushTo(const KGraphicPoint& pagePoint)
{
    if (!brush)
        return;
    brush->setPosition(float(pagePoint.x), float(pagePoint.y));
    if (!brush->isVisible() && windowMode != WindowMode::Playing)
        brush->show();
}

void StylusWindow::updateBrushPosition()
{
    KWindowManager* manager = KWindowManager::current();
    if (!brush || isEditing() || !tapeIsIdle() || isPlayMode() || (manager && manager->getModalCount() > 0))
        return;
    int32_t x = 0;
    int32_t y = 0;
    KNativeLayer* layer = KNativeLayer::current();
    if (!layer || !layer->cursorPosition(x, y))
        return;
    KGraphicPoint local = toPage(globalToLocal(KGraphicPoint(int16_t(x), int16_t(y))));
    KGraphicRectangle page(KGraphicPoint(), spriteSystem->getPageSize());
    if (!page.contains(local)) {
        hideBrush();
        return;
    }
    int16_t half = int16_t(brush->getFrameSize().width / 2);
    moveBrushTo(KGraphicPoint(int16_t(local.x - half), int16_t(local.y - half)));
}

void StylusWindow::hideBrush()
{
    if (brush && brush->isVisible())
        brush->hide();
}

KSprite* StylusWindow::getBrushSprite() const { return brush.get(); }

bool StylusWindow::isBrushShown() const { return brush && brush->isVisible(); }

bool StylusWindow::composePage(KImage& picture)
{
    if (!scenePage)
        return false;
    hideHighlight(true);
    bool brushWas = isBrushShown();
    bool pauseWas = pauseMarker && pauseMarker->isVisible();
    bool waitWas = waitMarker && waitMarker->isVisible();
    hideBrush();
    for (KSprite* marker : { pauseMarker.get(), waitMarker.get() }) {
        if (marker)
            marker->hide();
    }
    scenePage->composeInto(picture);
    if (brushWas)
        brush->show();
    if (pauseWas)
        pauseMarker->show();
    if (waitWas)
        waitMarker->show();
    return picture.hasImage();
}
