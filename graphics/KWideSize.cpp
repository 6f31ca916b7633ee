#include "graphics/KWideSize.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KWideSize, KThing)
