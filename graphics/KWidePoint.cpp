#include "graphics/KWidePoint.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KWidePoint, KThing)
