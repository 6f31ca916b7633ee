#include "graphics/KGraphicSize.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KGraphicSize, KThing)
