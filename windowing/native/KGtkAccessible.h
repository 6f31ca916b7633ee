#pragma once

#include "windowing/KNativeTypes.h"

#include <gtk/gtk.h>

#include <vector>

// The drawing area of a window, whose accessible object has a child for
// every control the program draws there itself, so that a screen reader
// finds the controls by name, kind and place and follows the focus ring.
GtkWidget* kGtkCanvasNew();

// Replaces the canvas's accessible children. A list of the same length
// updates the children in place, so a reader keeps its place; a focus
// that moved is announced.
void kGtkSetAccessibleControls(GtkWidget* canvas, const std::vector<KNativeAccessible>& controls);
