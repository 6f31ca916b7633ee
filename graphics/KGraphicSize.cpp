#include "graphics/KGraphicSize.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KGraphicSize, KThing)

KThing* KGraphicSize::deepCopy() const { return new KGraphicSize(*this); }
