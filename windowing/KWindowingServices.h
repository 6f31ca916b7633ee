#pragma once

#include "windowing/KWindowingForward.h"

// Puts the framework's own managers into the service slots the event loop
// and the events consult: the clipboard, cursor, keyboard and dialog
// managers and their routes, the message channel, the native messages of
// windows and controls. Slots already filled are left alone.
void kInstallWindowingServices();

// The native-only messages of windows: a control's notification reaches
// the control, an erase request its window; the rest goes to the menus.
KEventReturn kksHandleWindowNativeEvent(KNativeEvent& event);
