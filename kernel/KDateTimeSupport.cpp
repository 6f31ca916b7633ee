#include "kernel/KDateTimeSupport.h"

std::tm KDateTimeSupport::localNow()
{
    std::time_t now = std::time(nullptr);
    std::tm local {};
    localtime_r(&now, &local);
    return local;
}
