#pragma once

#include "windowing/native/KGLibNativeLayer.h"

#include <string>
#include <vector>

typedef struct _GtkWidget GtkWidget;
struct KGtkWindowHandle;

// The GLib layer plus GTK when a display can be opened. Each KWindow is a
// GtkWindow holding an overlay: a GtkDrawingArea that shows the window's
// back buffer, and over it a GtkFixed where controls sit at their pixel
// positions (it lets the pointer through where there is no control). GTK's
// signal handlers play the part of a window procedure: they build a native
// record and hand it to the translator. Without a display the layer stays
// headless.
class KGtkNativeLayer : public KGLibNativeLayer {
public:
    KGtkNativeLayer();
    ~KGtkNativeLayer() override;

    bool initialize() override;
    void shutDown() override;
    int32_t modifierState() const override;
    bool cursorPosition(int32_t& x, int32_t& y) override;
    bool hasDisplay() const override { return display; }

    void* openWindow(KWindow& owner, const KNativeWindowSetup& setup) override;
    void closeWindow(void* handle) override;
    void showWindow(void* handle, bool visible) override;
    void setWindowTitle(void* handle, const char* title) override;
    void setWindowBounds(void* handle, const KNativeRect& client) override;
    void restackWindows(const std::vector<void*>& backToFront) override;
    void setWindowEnabled(void* handle, bool enabled) override;
    void setWindowModal(void* handle, bool modal) override;
    void invalidateWindow(void* handle, const KNativeRect& area) override;
    void setWindowTooltip(void* handle, const char* text) override;
    void setAccessibleControls(void* handle, const std::vector<KNativeAccessible>& controls) override;
    void screenSize(int32_t& width, int32_t& height) const override;
    void setWindowFullScreen(void* handle, bool fullScreen) override;
    KNativeRect workArea() const override;
    void addRecentFile(const char* path) override;

    void* createControl(void* window, const KNativeControlSetup& setup) override;
    void destroyControl(void* control) override;
    void setControlBounds(void* control, const KNativeRect& bounds) override;
    void setControlText(void* control, const char* text) override;
    void setControlEnabled(void* control, bool enabled) override;
    void setControlVisible(void* control, bool visible) override;
    void setControlValue(void* control, double value) override;
    void setControlItems(void* control, const std::vector<std::string>& items) override;
    void setControlRange(void* control, const KNativeControlRange& range) override;
    void setControlTextLimit(void* control, int32_t limit) override;
    void setControlColour(void* control, const KNativeColour& colour) override;
    void setControlPicture(void* control, const KNativeImageData& picture) override;
    bool controlValue(void* control, double& value) override;
    bool controlText(void* control, std::string& text) override;
    void setControlStyledText(void* control, const KNativeStyledText& text) override;
    bool controlStyledText(void* control, KNativeStyledText& text) override;
    void selectControlText(void* control, int32_t start, int32_t length) override;
    bool controlSelection(void* control, int32_t& start, int32_t& length) override;
    void changeControlTextStyle(void* control, const KNativeStyleChange& change) override;
    void sendControlKey(void* control, int32_t key, int32_t modifiers) override;
    void focusControl(void* control) override;
    int32_t popUpMenu(void* window, const std::vector<KNativeMenuItem>& items, int32_t x, int32_t y) override;
    void setMenuBar(void* window, const std::vector<KNativeMenuItem>& menus) override;
    void updateMenuBar(void* window, const std::vector<KNativeMenuItem>& menus) override;
    void showMenuBar(void* window, bool shown) override;
    void removeMenuBar(void* window) override;
    void editControlText(void* control, KNativeTextEdit edit) override;

    int32_t doubleClickTime() const override;
    int32_t doubleClickDistance() const override;
    void setCursorShape(KCursorShape shape) override;
    void setCursorVisible(bool visible) override;

    bool setClipboard(const KNativeClipboardContent& content) override;
    bool clipboardHasFormat(const char* format) override;
    bool clipboardText(std::string& text) override;
    bool clipboardImage(KNativeImageData& image) override;
    bool clipboardData(const char* format, std::vector<uint8_t>& data) override;
    void storeClipboard() override;

    bool chooseFile(const KNativeChooserRequest& request, std::string& path) override;
    bool chooseColour(const char* title, KNativeColour& colour) override;
    int32_t messageBox(const KNativeAlertRequest& alert) override;
    bool runPageSetup(KNativePageSetupRequest& request) override;
    bool printPaperSize(double& widthPoints, double& heightPoints) override;
    bool isPrintLandscape() override;
    int32_t runPrintJob(const KNativePrintJob& job, std::string& error) override;
    void beep() override;

    bool droppedFile(int32_t drop, char* buffer, int32_t size) override;

    // The GtkWindow behind a window handle; null without a display.
    GtkWidget* gtkWindowOf(void* handle) const;
    // The window's GtkMenuBar, or null.
    GtkWidget* gtkMenuBarOf(void* handle) const;
    // The drawing area that shows the window's back buffer.
    GtkWidget* gtkAreaOf(void* handle) const;
    // The widget of a control handle, as placed in its window (a text or a
    // list sits in a scrolled window).
    GtkWidget* gtkControlOf(void* control) const;

    // The Shift and Control state of the key event being delivered, which
    // the translator's modifiers follow until it is cleared (-1): the
    // keyboard's state now may already hold keys pressed after it.
    void setEventModifiers(int32_t flags) { eventModifiers = flags; }
    // Remembers the pointer's position from a motion event.
    void notePointer(int32_t x, int32_t y);
    // Keeps the files of a drop; the number names them in the record.
    int32_t noteDrop(const std::vector<std::string>& files);
    // The window the program's own boxes belong to: the active one, else
    // the last one opened.
    GtkWidget* dialogParent() const;

private:
    void applyCursor(KGtkWindowHandle& handle) const;
    void connectClipboard(bool connect);

    bool display = false;
    int32_t pointerX = 0;
    int32_t pointerY = 0;
    bool pointerKnown = false;
    uint32_t pointerTime = 0;
    int32_t pointerQueryPeriod = 0;
    int32_t eventModifiers = -1;
    KCursorShape cursorShape = KCursorShape::Normal;
    bool cursorVisible = true;
    std::vector<KGtkWindowHandle*> handles;
    std::vector<std::vector<std::string>> drops;
};
