#include "graphics/KWideRectangle.h"

#include "graphics/KGraphicRectangle.h"
#include "kernel/KClass.h"

K_DEFINE_CLASS(KWideRectangle, KThing)

KGraphicRectangle KWideRectangle::toGraphic() const
{
    return { int16_t(x), int16_t(y), int16_t(width), int16_t(height) };
}
