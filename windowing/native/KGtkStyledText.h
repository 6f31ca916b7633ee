#pragma once

#include "windowing/KNativeTypes.h"

#include <gtk/gtk.h>

struct KGtkControlHandle;

// The styled text field: a GtkTextView whose characters carry tags for
// their family, size, face and colour, in a scrolled window without a
// border or scroll bars.

// Makes the widget of the handle (the scrolled window; the view is the
// inner widget) and loads the setup's text and background.
GtkWidget* kGtkMakeStyledText(KGtkControlHandle& control, const KNativeControlSetup& setup);
// Lets go of what the handle keeps for its text.
void kGtkDropStyledText(KGtkControlHandle& control);
void kGtkSetStyledBackground(KGtkControlHandle& control, const KNativeColour& colour);
// Puts the field at its rectangle of the window's client area (first
// time) or moves it there.
void kGtkPlaceStyledText(KGtkControlHandle& control, const KNativeRect& bounds);
