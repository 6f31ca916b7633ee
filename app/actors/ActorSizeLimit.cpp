#include "app/actors/ActorSizeLimit.h"

#include "kmultimedia/EditSprite.h"
#include "tape/TapeHost.h"

#include <algorithm>
#include <string>

namespace {

int16_t toShort(double value) { return int16_t(int32_t(value)); }

bool movesLeftEdge(int16_t handle)
{
    return handle == EditSprite::TopLeft || handle == EditSprite::BottomLeft || handle == EditSprite::Left;
}

bool movesTopEdge(int16_t handle)
{
    return handle == EditSprite::TopLeft || handle == EditSprite::TopRight || handle == EditSprite::Top;
}

KString number(int32_t value) { return KString(std::to_string(value).c_str()); }

} // namespace

KGraphicSize fitActorMaximum(const KGraphicSize& maximum, double aspectRatio)
{
    if (!(aspectRatio > 0.0))
        return maximum;
    double width = maximum.width;
    double height = maximum.height;
    if (width / aspectRatio > height)
        width = height * aspectRatio;
    else if (height * aspectRatio > width)
        height = width / aspectRatio;
    return KGraphicSize(toShort(width), toShort(height));
}

KGraphicRectangle limitDraggedRectangle(const KGraphicRectangle& rectangle, int16_t handle, const KGraphicSize& maximum)
{
    int16_t width = std::min(rectangle.width, maximum.width);
    int16_t height = std::min(rectangle.height, maximum.height);
    int32_t x = rectangle.x;
    int32_t y = rectangle.y;
    if (movesLeftEdge(handle))
        x = rectangle.getRight() - width;
    if (movesTopEdge(handle))
        y = rectangle.getBottom() - height;
    return KGraphicRectangle(int16_t(x), int16_t(y), width, height);
}

KString actorResolutionRefusal(int32_t width, int32_t height, int32_t screenWidth, int32_t screenHeight)
{
    // TRANSLATORS: %1 is the actor's size and %2 the screen's, as "1024x768".
    return tapeTranslate("This actor's resolution (%1) exceeds the screen resolution (%2); this actor cannot be "
                         "opened for editing.")
        .withArguments({ number(width) + "x" + number(height), number(screenWidth) + "x" + number(screenHeight) });
}

bool actorFitsScreen(int32_t pageWidth, int32_t pageHeight, int32_t screenWidth, int32_t screenHeight)
{
    return pageWidth <= screenWidth && pageHeight <= screenHeight;
}
