#include "graphics/KGraphicRectangle.h"

#include "graphics/KWideRectangle.h"
#include "kernel/KClass.h"

K_DEFINE_CLASS(KGraphicRectangle, KThing)

KWideRectangle KGraphicRectangle::toWide() const { return { x, y, width, height }; }
