#include "graphics/KPattern.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KPattern, KAlphaImage)
