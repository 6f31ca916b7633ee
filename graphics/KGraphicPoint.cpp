#include "graphics/KGraphicPoint.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KGraphicPoint, KThing)
