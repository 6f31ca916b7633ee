#include "kernel/KComparable.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"

K_DEFINE_ABSTRACT_CLASS(KComparable, KThing)

namespace {
bool notOverridden(const KSourceLocation& where = KSourceLocation::current())
{
    KErrorHandler::raiseError(KError::MethodShouldNotBeCalled, where);
    return true;
}
} // namespace

bool KComparable::operator==(const KComparable&) const { return notOverridden(); }
bool KComparable::operator!=(const KComparable&) const { return notOverridden(); }
bool KComparable::operator>(const KComparable&) const { return notOverridden(); }
bool KComparable::operator<(const KComparable&) const { return notOverridden(); }
bool KComparable::operator>=(const KComparable&) const { return notOverridden(); }
bool KComparable::operator<=(const KComparable&) const { return notOverridden(); }
