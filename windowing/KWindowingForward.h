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
class KPaletteWindow;
class KDialog;
class KAlert;
class KDialogHandler;
class KInteractiveElement;
class KLayer;
class KControlsLayer;
class KControl;
class KButtonNativeControl;
class KStaticTextNativeControl;
class KDragObject;
class KDragObjectsLayer;
class KCursorManager;
class KKeyboardManager;
class KClipboardManager;

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
using KPaletteWindowPtr = KPtr<KPaletteWindow>;
using KDialogPtr = KPtr<KDialog>;
using KAlertPtr = KPtr<KAlert>;
using KDialogHandlerPtr = KPtr<KDialogHandler>;
using KInteractiveElementPtr = KPtr<KInteractiveElement>;
using KLayerPtr = KPtr<KLayer>;
using KControlsLayerPtr = KPtr<KControlsLayer>;
using KControlPtr = KPtr<KControl>;
using KButtonNativeControlPtr = KPtr<KButtonNativeControl>;
using KStaticTextNativeControlPtr = KPtr<KStaticTextNativeControl>;
using KDragObjectPtr = KPtr<KDragObject>;
using KDragObjectsLayerPtr = KPtr<KDragObjectsLayer>;
using KCursorManagerPtr = KPtr<KCursorManager>;
using KKeyboardManagerPtr = KPtr<KKeyboardManager>;
using KClipboardManagerPtr = KPtr<KClipboardManager>;
