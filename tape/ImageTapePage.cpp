#include "tape/ImageTapePage.h"

#include "kernel/KClass.h"

namespace {

// The page of a new document when nobody says otherwise.
const KGraphicSize kDefaultPageSize(640, 480);

} // namespace

K_DEFINE_CLASS(ImageTapePage, TapePage)

ImageTapePage::ImageTapePage()
    : ImageTapePage(kDefaultPageSize)
{
}

ImageTapePage::ImageTapePage(const KGraphicSize& size)
    : image(new KImage(size))
{
}

ImageTapePage::~ImageTapePage() = default;

KImage& ImageTapePage::getPageImage() { return *image; }

KGraphicDevice& ImageTapePage::getPageDevice() { return image->getDevice(); }

KGraphicSize ImageTapePage::getPageSize() { return image->getSize(); }

void ImageTapePage::setPageSize(const KGraphicSize& size)
{
    image = new KImage(size);
    clearRefreshed();
}

void ImageTapePage::refresh(const KGraphicRectangle& changed)
{
    ++refreshCount;
    if (changed.isEmpty())
        return;
    if (refreshed.isEmpty())
        refreshed = changed;
    else
        refreshed.uniteWith(changed);
}

void ImageTapePage::refreshSpriteLayer() { refreshAll(); }

void ImageTapePage::clearRefreshed()
{
    refreshed = KGraphicRectangle();
    refreshCount = 0;
}

void ImageTapePage::stopActors(Tape&) { ++stopActorsCount; }

void ImageTapePage::resetActors(Tape&) { ++resetActorsCount; }

void ImageTapePage::synchroniseActors(Tape&, int32_t first, int32_t limit)
{
    ++synchroniseCount;
    synchronisedFirst = first;
    synchronisedLimit = limit;
}
