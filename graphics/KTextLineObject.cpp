#include "graphics/KTextLineObject.h"

#include "graphics/KTextBlock.h"
#include "graphics/KTextBlockObject.h"
#include "graphics/KTextLine.h"
#include "kernel/KClass.h"

K_DEFINE_CLASS(KTextLineObject, KGraphicObject)

namespace {

KTextBlock blockOf(const KTextLine& line)
{
    KTextBlock block;
    *block.getLine(0) = line;
    return block;
}

} // namespace

KTextLineObject::KTextLineObject()
    : laidOut(new KTextBlockObject())
{
}

KTextLineObject::KTextLineObject(const KTextLine& line)
    : laidOut(new KTextBlockObject(blockOf(line)))
{
}

KTextLineObject::~KTextLineObject() = default;

KThing* KTextLineObject::deepCopy() const
{
    auto* copy = new KTextLineObject();
    copy->laidOut = static_cast<KTextBlockObject*>(laidOut->deepCopy());
    return copy;
}

void KTextLineObject::setTextLine(const KTextLine& line) { laidOut->setTextBlock(blockOf(line)); }

const KTextLine& KTextLineObject::getTextLine() const { return *laidOut->getTextBlock().getLine(0); }

void KTextLineObject::setTextColour(const KColor& colour) { laidOut->setTextColour(colour); }
void KTextLineObject::clearTextColour() { laidOut->clearTextColour(); }
void KTextLineObject::setSelection(int32_t start, int32_t length) { laidOut->setSelection(start, length); }
void KTextLineObject::clearSelection() { laidOut->clearSelection(); }
void KTextLineObject::setSelectionColour(const KColor& colour) { laidOut->setSelectionColour(colour); }

int32_t KTextLineObject::getWidth() const { return laidOut->getBounds().width; }
int32_t KTextLineObject::getHeight() const { return laidOut->getHeight(); }

std::vector<KWideRectangle> KTextLineObject::getCharacterBoxes(int32_t start, int32_t length) const
{
    return laidOut->getCharacterBoxes(start, length);
}

int32_t KTextLineObject::getCharPositionAt(const KWidePoint& p) const { return laidOut->getCharPositionAt(p); }

KGraphicRectangle KTextLineObject::getBounds() const { return laidOut->getBounds(); }

void KTextLineObject::drawRegion(KGraphicDevice& device, const KGraphicRectangle& source,
                                 const KGraphicRectangle& target)
{
    laidOut->drawRegion(device, source, target);
}

void KTextLineObject::drawIn(KGraphicDevice& device, const KGraphicRectangle& target)
{
    laidOut->drawIn(device, target);
}

void KTextLineObject::drawAt(KGraphicDevice& device, const KGraphicPoint& p) { laidOut->drawAt(device, p); }
