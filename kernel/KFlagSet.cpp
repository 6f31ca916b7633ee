#include "kernel/KFlagSet.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KFlagSet, KThing)

KThing* KFlagSet::deepCopy() const { return new KFlagSet(flags); }
