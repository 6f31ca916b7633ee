#include "kernel/KUnknownObject.h"

namespace {

bool gKept = false;

} // namespace

KUnknownObject::KUnknownObject(int32_t id)
    : classID(id)
{
}

KUnknownObject::KUnknownObject(const KUnknownObject& other)
    : KThing(other)
    , classID(other.classID)
{
}

KThing* KUnknownObject::deepCopy() const { return new KUnknownObject(*this); }

bool KUnknownObject::isKept() { return gKept; }

KUnknownObject::KeepScope::KeepScope()
    : saved(gKept)
{
    gKept = true;
}

KUnknownObject::KeepScope::~KeepScope() { gKept = saved; }
