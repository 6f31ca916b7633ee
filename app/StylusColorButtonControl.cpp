#include "app/StylusColorButtonControl.h"

#include "app/ArtResources.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KPixelBuffer.h"
#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KWindow.h"

namespace {

uint32_t channel(uint32_t pixel, int shift) { return pixel >> shift & 0xFF; }

// The button's art tinted by the colour: its light inside takes the
// colour, its dark outline stays dark. Outside the mask the picture must
// stay white, as masked drawing needs.
void tint(KImage& picture, const KImage& mask, const KColor& colour)
{
    uint32_t tone = colour.getNative();
    KPixelBuffer pixels;
    KPixelBuffer maskPixels;
    KImage& maskImage = const_cast<KImage&>(mask);
    if (!picture.getDevice().beginPixelAccess(pixels))
        return;
    bool masked = maskImage.getDevice().beginPixelAccess(maskPixels);
    for (int32_t y = 0; y < pixels.height; ++y) {
        for (int32_t x = 0; x < pixels.width; ++x) {
            uint32_t* pixel = pixels.at(x, y);
            bool inside = !masked || !maskPixels.contains(x, y) || channel(*maskPixels.at(x, y), 8) < 128;
            if (!inside) {
                *pixel = KPixelBuffer::kColourBits;
                continue;
            }
            uint32_t mixed = 0;
            for (int shift = 16; shift >= 0; shift -= 8)
                mixed |= (channel(*pixel, shift) * channel(tone, shift) + 127) / 255 << shift;
            *pixel = mixed;
        }
    }
    if (masked)
        maskImage.getDevice().endPixelAccess(KWideRectangle());
    picture.getDevice().endPixelAccess(KWideRectangle(0, 0, pixels.width, pixels.height));
}

// The picture of a colour: the rounded art when it is there, a plain
// square otherwise.
KAlphaImagePtr makePicture(const KColor& colour)
{
    KAlphaImagePtr picture(new KAlphaImage());
    KImagePtr mask(new KImage());
    KGraphicSize size(StylusColorButtonControl::kSide, StylusColorButtonControl::kSide);
    if (ArtResources::loadImage(ArtResources::kColourButton, *picture)
        && ArtResources::loadImage(ArtResources::kColourButtonMask, *mask) && picture->getSize() == size
        && mask->getSize() == size) {
        tint(*picture, *mask, colour);
        picture->setMask(*mask);
    } else {
        picture->setSize(size);
        picture->getDevice().fillRectangle(KGraphicRectangle(0, 0, size.width, size.height), colour);
    }
    picture->setBlendMode(KAlphaImage::PerPixel);
    return picture;
}

} // namespace

K_DEFINE_CLASS(StylusColorButtonControl, KImageControl)

StylusColorButtonControl::StylusColorButtonControl() { setColor(KColor(KColor::Black)); }

StylusColorButtonControl::StylusColorButtonControl(int32_t id, const KWideRectangle& bounds)
    : KImageControl(id, bounds)
{
    setColor(KColor(KColor::Black));
}

StylusColorButtonControl::~StylusColorButtonControl() = default;

void StylusColorButtonControl::setColor(const KColor& colour)
{
    KAlphaImagePtr picture = makePicture(colour);
    setPicture(picture.get());
}

KColor StylusColorButtonControl::getColor() const
{
    KAlphaImage* picture = getPicture();
    if (!picture)
        return KColor(KColor::Black);
    return picture->getDevice().getPixel(kSample, kSample);
}

void StylusColorButtonControl::setSelected(bool value)
{
    if (selected == value)
        return;
    selected = value;
    draw();
}

// The frame is black with a white line inside it, so that it shows around
// the darkest and the lightest colour alike.
void StylusColorButtonControl::paintPicture(KWindow& target, const KWideRectangle& bounds)
{
    KImageControl::paintPicture(target, bounds);
    if (!selected)
        return;
    KGraphicStateGuard state(target);
    KGraphicRectangle outer = bounds.toGraphic();
    target.setPenSize(kFrameWidth);
    target.frameRectangle(outer, KColor(KColor::Black));
    target.setPenSize(1);
    target.frameRectangle(KGraphicRectangle(int16_t(outer.x + kFrameWidth), int16_t(outer.y + kFrameWidth),
                                            int16_t(outer.width - 2 * kFrameWidth),
                                            int16_t(outer.height - 2 * kFrameWidth)),
                          KColor(KColor::White));
}

void StylusColorButtonControl::describe(KJsonWriter& out) const
{
    KImageControl::describe(out);
    out.member("selected", selected);
    KColor colour = getColor();
    out.key("colour");
    out.beginArray();
    out.value(int32_t(colour.getRed()));
    out.value(int32_t(colour.getGreen()));
    out.value(int32_t(colour.getBlue()));
    out.endArray();
}
