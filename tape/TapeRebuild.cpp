// Making the page and the scene show the tape at its position.

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicStateGuard.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapePage.h"
#include "tape/WipeOut.h"

namespace {

// The actor editor's stage: a rectangle of this size in the middle of the
// page, framed in green, and the area around it that the animator should
// keep in mind, framed in red.
constexpr int16_t kStageWidth = 320;
constexpr int16_t kStageHeight = 240;
constexpr int16_t kStageFramePen = 2;
constexpr int16_t kOuterGuideX = 79;
constexpr int16_t kOuterGuideY = 59;

bool removesActors(const TapeObject* element)
{
    auto* transition = dynamic_cast<const WipeOut*>(element);
    return transition && transition->getRemovesActors();
}

// Marks the page as being rebuilt for the scope's length.
class RebuildingScope {
public:
    explicit RebuildingScope(TapePage& page)
        : page(page)
    {
        page.setRebuilding(true);
    }
    ~RebuildingScope() { page.setRebuilding(false); }
    RebuildingScope(const RebuildingScope&) = delete;
    RebuildingScope& operator=(const RebuildingScope&) = delete;

private:
    TapePage& page;
};

} // namespace

void Tape::setSpriteSystem(TapePage& page)
{
    if (spriteSystem.get() == &page)
        return;
    if (spriteSystem)
        spriteSystem->releaseActors(*this);
    spriteSystem = page;
    pageCache.clear();
}

void Tape::clearSpriteSystem()
{
    stopActors();
    spriteSystem.clear();
    pageCache.clear();
}

// A blank page is black; a frame of an actor shows the stage it is drawn on.
void Tape::clearPage(KGraphicDevice& device)
{
    KGraphicRectangle whole = spriteSystem->getPageBounds();
    KGraphicStateGuard guard(device);
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.fillRectangle(whole, KColor(KColor::Black));
    if (frameKind != ActorFrame)
        return;
    KGraphicRectangle stage(0, 0, kStageWidth, kStageHeight);
    stage.centreIn(whole);
    TapeHost::get().drawFrameBackground(device, stage);
    device.setPenSize(kStageFramePen);
    stage.grow(kStageFramePen, kStageFramePen);
    device.frameRectangle(stage, KColor(KColor::Green));
    stage.grow(kOuterGuideX, kOuterGuideY);
    device.frameRectangle(stage, KColor(KColor::Red));
}

// While playing the page is blank black on a story and white on a frame.
void Tape::fillBlankPage()
{
    if (!spriteSystem)
        return;
    KGraphicRectangle whole = spriteSystem->getPageBounds();
    KGraphicDevice& device = spriteSystem->getPageDevice();
    KGraphicStateGuard guard(device);
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.fillRectangle(whole, KColor(frameKind == ActorFrame ? KColor::White : KColor::Black));
    spriteSystem->refresh(whole);
}

// A page transition paints over all that went before, so the page is drawn
// from the last one before the limit. A transition at index 0 is not
// looked for: the page starts black there and it is drawn as the first
// element. Actor elements are not drawn here but replayed by
// synchroniseActors, and switched-off elements not at all.
void Tape::rebuildPage()
{
    if (!spriteSystem)
        return;
    TapePagePtr page = spriteSystem;
    int32_t limit = rebuildLimit();
    int32_t first = findPreviousPage(limit);
    KGraphicDevice& device = page->getPageDevice();
    TapeBusyCursor busy;

    // A frame's stage depends on the main window's background, which the
    // snapshots would not follow.
    bool snapshots = frameKind == Story;
    int32_t from = pageCache.begin(*this, device, first, limit, snapshots);
    {
        RebuildingScope rebuilding(*page);
        if (from == first)
            clearPage(device);
        for (int32_t i = from; i < limit; ++i) {
            TapeObject* element = getAt(i);
            if (element && element->isActive()) {
                int32_t type = element->getType();
                if (type != ActorActionType && type != ActorMotionType)
                    element->drawOnPage();
            }
            pageCache.advance(*this, i);
        }
    }
    pageCache.end();
    page->refreshAll();
    synchroniseActors();
}

// Actors are sprites above the page: their state at the position is
// recomputed from the last transition that cleared the stage.
void Tape::synchroniseActors()
{
    if (!spriteSystem)
        return;
    stopActors();
    int32_t limit = rebuildLimit();
    int32_t first = 0;
    for (int32_t i = limit - 1; i >= 1; --i) {
        TapeObject* element = getAt(i);
        if (element && element->getType() == PageTransitionType && removesActors(element)) {
            first = i;
            break;
        }
    }
    spriteSystem->synchroniseActors(*this, first, limit);
}

void Tape::stopActors()
{
    if (spriteSystem)
        spriteSystem->stopActors(*this);
}

void Tape::resetActors()
{
    if (spriteSystem)
        spriteSystem->resetActors(*this);
}
