#include "FrameworkTestSupport.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(RecordingWindow, KWindow)
