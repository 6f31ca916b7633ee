#include "windowing/KPictureNativeControl.h"

#include "graphics/KImage.h"
#include "graphics/KPixelBuffer.h"
#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>

K_DEFINE_CLASS(KPictureNativeControl, KControl)

KPictureNativeControl::KPictureNativeControl() = default;

KPictureNativeControl::KPictureNativeControl(int32_t id, const KWideRectangle& bounds)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KPictureNativeControl::~KPictureNativeControl() = default;

void KPictureNativeControl::setPicture(KImage& image)
{
    KNativeImageData pixels;
    KPixelBuffer buffer;
    if (image.getDevice().beginPixelAccess(buffer)) {
        pixels.width = buffer.width;
        pixels.height = buffer.height;
        pixels.pixels.resize(size_t(buffer.width) * size_t(buffer.height));
        for (int32_t y = 0; y < buffer.height; ++y) {
            const uint32_t* row = buffer.row(y);
            std::transform(row, row + buffer.width, pixels.pixels.begin() + ptrdiff_t(y) * buffer.width,
                           [](uint32_t p) { return p & KPixelBuffer::kColourBits; });
        }
        image.getDevice().endPixelAccess(KWideRectangle());
    }
    setPicture(pixels);
}

void KPictureNativeControl::setPicture(const KNativeImageData& pixels)
{
    bool whole
        = pixels.width > 0 && pixels.height > 0 && pixels.pixels.size() == size_t(pixels.width) * size_t(pixels.height);
    picture = whole ? pixels : KNativeImageData();
    pictureChanged();
}

void KPictureNativeControl::clearPicture()
{
    picture = KNativeImageData();
    pictureChanged();
}

void KPictureNativeControl::pictureChanged()
{
    if (hasNativePart())
        KNativeLayer::get().setControlPicture(getNativeControl(), picture);
}

KEventReturn KPictureNativeControl::doNativeEvent(KNativeEvent& event)
{
    if (notificationOf(event) != KControlNotification::Clicked || !isEnabled())
        return 0;
    return sendAction(KControlActionEvent::Clicked);
}

void KPictureNativeControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.member("pictureWidth", picture.width);
    out.member("pictureHeight", picture.height);
}

bool KPictureNativeControl::describeNative(KNativeControlSetup& setup) const
{
    setup.kind = KNativeControlKind::Picture;
    setup.picture = picture;
    return true;
}
