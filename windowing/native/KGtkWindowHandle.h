#pragma once

#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <map>

class KGtkNativeLayer;
struct KGtkStyledState;
struct KGtkMenuStrip;

// What a window handle of the GTK layer is: the widgets of one KWindow and
// what its signal handlers remember between calls.
// A key held down, by its hardware code: what its press delivered, so that
// its release is told under the same code.
struct KGtkHeldKey {
    int32_t virtualKey = 0;
    int32_t character = 0;
    // False when a control of the window took the press itself.
    bool delivered = false;
};

struct KGtkWindowHandle {
    KGtkNativeLayer* layer = nullptr;
    KWindow* owner = nullptr;
    KNativeWindowKind kind = KNativeWindowKind::Normal;
    bool resizable = true;
    GtkWidget* window = nullptr;
    // The menu strip over the overlay, when the window has one.
    GtkWidget* box = nullptr;
    GtkWidget* overlay = nullptr;
    GtkWidget* area = nullptr;
    GtkWidget* fixed = nullptr;
    int32_t lastX = INT32_MIN;
    int32_t lastY = INT32_MIN;
    int32_t lastWidth = -1;
    int32_t lastHeight = -1;
    std::map<guint16, KGtkHeldKey> heldKeys;
    KGtkMenuStrip* menuStrip = nullptr;
    // The client size last asked for.
    KNativeRect client;
};

// Sizes the window again for the client size last asked for, after the
// menu strip came, went, showed or hid.
void kGtkRefitFrame(KGtkWindowHandle& window);

// The client area's height plus the menu strip's, when it shows.
int32_t kGtkMenuStripHeight(const KGtkWindowHandle& window);
void kGtkDestroyMenuStrip(KGtkWindowHandle& window);

// A control handle: the widget placed in the window (cleared by GTK when
// the widget goes), the inner widget that holds the value when it is not
// that one (a text view or tree view in its scrolled window, the drawing
// area of a swatch or picture), and the window it sits in.
struct KGtkControlHandle {
    KGtkWindowHandle* window = nullptr;
    GtkWidget* widget = nullptr;
    GtkWidget* inner = nullptr;
    KNativeControlKind kind = KNativeControlKind::Button;
    int32_t tag = 0;
    // Set while the program changes the widget: GTK's change signals then
    // tell the framework nothing.
    bool updating = false;
    int32_t textLimit = 0;
    KNativeColour colour;
    cairo_surface_t* picture = nullptr;
    // What a styled text field keeps beside its buffer.
    KGtkStyledState* styled = nullptr;
};

// A number typed into a spin field counts only once GTK reads it (on
// leaving the field). A press on a button or a Return that the framework
// takes comes first: the typed number is read before, so that it is part
// of what the dialog sees.
void kGtkCommitTypedValue(KGtkWindowHandle& window);
