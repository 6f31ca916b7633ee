#pragma once

#include "windowing/KEvent.h"

// Shows the framework's messages (errors, notices) as GTK message boxes
// while a display is there; false puts the plain form back.
void installGtkMessageProc(bool install);

// While a native dialog or job runs its own loop, every framework event is
// refused as handled.
class KGtkNativeModalGuard {
public:
    explicit KGtkNativeModalGuard(void* dialog) { KEvent::setNativeModalWindow(dialog); }
    ~KGtkNativeModalGuard() { KEvent::setNativeModalWindow(nullptr); }
    KGtkNativeModalGuard(const KGtkNativeModalGuard&) = delete;
    KGtkNativeModalGuard& operator=(const KGtkNativeModalGuard&) = delete;
};
