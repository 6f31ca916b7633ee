#pragma once

#include "kernel/KForward.h"

// Forward declarations of the windowing framework's classes.

class KApplication;
class KWindow;
class KWindowManager;
class KTimerManager;
class KNativeLayer;
struct KNativeRecord;
class KNativeEvent;
class KWindowEvent;
class KMouseEvent;
class KKeyEvent;
class KMenuEvent;
class KApplicationEvent;
class KActionEvent;
class KControlActionEvent;

using KApplicationPtr = KPtr<KApplication>;
using KWindowPtr = KPtr<KWindow>;
using KWindowManagerPtr = KPtr<KWindowManager>;
using KTimerPtr = KPtr<KTimer>;
using KTimerManagerPtr = KPtr<KTimerManager>;
using KEventPtr = KPtr<KEvent>;
using KNativeEventPtr = KPtr<KNativeEvent>;
using KWindowEventPtr = KPtr<KWindowEvent>;
using KMouseEventPtr = KPtr<KMouseEvent>;
using KKeyEventPtr = KPtr<KKeyEvent>;
using KMenuEventPtr = KPtr<KMenuEvent>;
using KApplicationEventPtr = KPtr<KApplicationEvent>;
using KActionEventPtr = KPtr<KActionEvent>;
using KControlActionEventPtr = KPtr<KControlActionEvent>;
