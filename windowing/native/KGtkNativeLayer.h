#pragma once

#include "windowing/native/KGLibNativeLayer.h"

typedef struct _GtkWidget GtkWidget;

// The GLib layer plus GTK windows when a display can be opened. Each
// KWindow is a GtkWindow holding a GtkDrawingArea; GTK's signal handlers
// play the part of a window procedure: they build a native record and hand
// it to the translator. Without a display the layer stays headless.
class KGtkNativeLayer : public KGLibNativeLayer {
public:
    KGtkNativeLayer();
    ~KGtkNativeLayer() override;

    bool initialize() override;
    void shutDown() override;
    int32_t modifierState() const override;
    bool cursorPosition(int32_t& x, int32_t& y) override;
    bool hasDisplay() const override { return display; }
    void* openWindow(KWindow& owner, const char* title, int32_t width, int32_t height) override;
    void closeWindow(void* handle) override;
    void showWindow(void* handle, bool visible) override;
    void setWindowTitle(void* handle, const char* title) override;

    // The GtkWindow behind a window handle; null without a display.
    GtkWidget* gtkWindowOf(void* handle) const;

    // Remembers the pointer's position from a motion event.
    void notePointer(int32_t x, int32_t y);

private:
    bool display = false;
    int32_t pointerX = 0;
    int32_t pointerY = 0;
    bool pointerKnown = false;
    uint32_t pointerTime = 0;
};
