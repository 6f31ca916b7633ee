#include "kmultimedia/KMediaSupport.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KMediaSupport, KThing)

KMediaSupport::~KMediaSupport() = default;

void KMediaSupport::setKinds(int32_t value)
{
    if (!opened)
        kinds = value;
}

bool KMediaSupport::open()
{
    opened = true;
    return true;
}

void KMediaSupport::close() { opened = false; }
