#pragma once

#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include <gtk/gtk.h>

#include <cstdint>

class KGtkNativeLayer;

// What a window handle of the GTK layer is: the widgets of one KWindow and
// what its signal handlers remember between calls.
struct KGtkWindowHandle {
    KGtkNativeLayer* layer = nullptr;
    KWindow* owner = nullptr;
    KNativeWindowKind kind = KNativeWindowKind::Normal;
    bool resizable = true;
    GtkWidget* window = nullptr;
    GtkWidget* overlay = nullptr;
    GtkWidget* area = nullptr;
    GtkWidget* fixed = nullptr;
    int32_t lastX = INT32_MIN;
    int32_t lastY = INT32_MIN;
    int32_t lastWidth = -1;
    int32_t lastHeight = -1;
};

// A control handle: the widget (cleared by GTK when the widget goes) and
// the window it sits in.
struct KGtkControlHandle {
    KGtkWindowHandle* window = nullptr;
    GtkWidget* widget = nullptr;
    int32_t tag = 0;
};
