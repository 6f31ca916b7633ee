#include "graphics/KGraphicObject.h"

#include "kernel/KClass.h"

K_DEFINE_ABSTRACT_CLASS(KGraphicObject, KThing)
