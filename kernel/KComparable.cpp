#include "kernel/KComparable.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"

K_DEFINE_ABSTRACT_CLASS(KComparable, KThing)

namespace {
bool notOverridden(const char* location)
{
    KErrorHandler::raiseError(KError::MethodShouldNotBeCalled, location);
    return true;
}
}

bool KComparable::operator==(const KComparable&) const { return notOverridden("KComparable::operator=="); }
bool KComparable::operator!=(const KComparable&) const { return notOverridden("KComparable::operator!="); }
bool KComparable::operator>(const KComparable&) const { return notOverridden("KComparable::operator>"); }
bool KComparable::operator<(const KComparable&) const { return notOverridden("KComparable::operator<"); }
bool KComparable::operator>=(const KComparable&) const { return notOverridden("KComparable::operator>="); }
bool KComparable::operator<=(const KComparable&) const { return notOverridden("KComparable::operator<="); }
