#pragma once

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include "kernel/KSourceLocation.h"
#include <vector>

// A drawing surface in a native frame. The window's device is its back
// buffer: drawing on it marks the changed area for the native side, which
// shows the buffer. Its layers, the last one topmost, get the mouse and
// paint events before the window itself; the do... operations do nothing
// by default but agree to a close.
class KWindow : public KGraphicDevice {
    K_DECLARE_CLASS(KWindow)
public:
    enum class OpenMode : int32_t { Normal = 0, Hidden = 1 };
    using enum OpenMode;
    enum StateFlag : int32_t { IsOpen = 1, HiddenAtOpen = 2 };
    enum WindowFlag : int32_t {
        Closable = 8,
        Resizable = 16,
        InputOff = 32,
        HasMenuBar = 64,
        MenuStrip = 1024,
    };
    // The stacking tiers, back to front: palettes float over the normal
    // windows, modal dialogs over the palettes.
    enum Tier : int32_t { NormalTier = 0, PaletteTier = 1, ModalTier = 2 };
    static constexpr int32_t kDeviceOwner = 1;

    KWindow();
    ~KWindow() override;

    virtual KGraphicSize getMinimumSize() const;
    virtual KGraphicSize getMaximumSize() const;
    // The window's rectangle on the screen. Frames are drawn by the
    // desktop, so it is the client area.
    virtual KGraphicRectangle getFrame() const;
    virtual void open(OpenMode mode);
    virtual void close();
    virtual void show(bool visible);
    virtual void hide();

    virtual KEventReturn doPaint(KWindowEvent& event);
    virtual KEventReturn doEraseBackground(KWindowEvent& event);
    virtual KEventReturn doClose(KWindowEvent& event);
    virtual KEventReturn doActivate(KWindowEvent& event);
    virtual KEventReturn doDeactivate(KWindowEvent& event);
    virtual KEventReturn doAction(KActionEvent& event);
    virtual KEventReturn doControlAction(KControlActionEvent& event);
    virtual KEventReturn doKeyDown(KKeyEvent& event);
    virtual KEventReturn doKeyUp(KKeyEvent& event);
    virtual KEventReturn doKeyRepeat(KKeyEvent& event);
    virtual KEventReturn doMouseEnter(KMouseEvent& event);
    virtual KEventReturn doMouseLeave(KMouseEvent& event);
    virtual KEventReturn doMouseDown(KMouseEvent& event);
    virtual KEventReturn doMouseMoved(KMouseEvent& event);
    virtual KEventReturn doMouseOther(KMouseEvent& event);
    virtual KEventReturn doMouseUp(KMouseEvent& event);
    virtual KEventReturn doMoved(KWindowEvent& event);
    virtual KEventReturn doResized(KWindowEvent& event);

    virtual int32_t getTier() const { return NormalTier; }
    virtual bool isModal() const { return false; }

    // A paint request: the window's doPaint, then its layers from the
    // first up, until a layer answers non-zero. Returns doPaint's answer.
    KEventReturn paint(KWindowEvent& event);

    bool isOpen() const { return (stateFlags & IsOpen) != 0; }
    bool isVisible() const { return visible; }
    int32_t getStateFlags() const { return stateFlags; }
    int32_t getWindowFlags() const { return windowFlags; }
    void setWindowFlags(int32_t flags) { windowFlags = flags; }
    bool hasWindowFlag(int32_t flag) const { return (windowFlags & flag) != 0; }
    // A disabled window takes no input; the window manager disables the
    // windows behind a modal dialog.
    void setEnabled(bool enabled);
    bool isEnabled() const { return !hasWindowFlag(InputOff); }

    void setTitle(const KString& text);
    const KString& getTitle() const { return title; }
    // Moves and sizes the window (its client area, in screen terms).
    void setBounds(const KGraphicRectangle& frame);
    // What the native side reports after a move or a resize; the back
    // buffer follows the size.
    void setClientBounds(const KGraphicRectangle& client);
    const KGraphicRectangle& getClientBounds() const { return clientBounds; }

    void addLayer(KLayer& layer);
    void removeLayer(KLayer& layer);
    // The topmost visible layer that holds the point (client terms).
    KLayer* getLayer(const KGraphicPoint& point) const;
    const std::vector<KLayerPtr>& getLayers() const { return layers; }
    // The layer of the window's controls, made when the first one comes.
    void addControl(KControl& control);
    void removeControl(KControl& control);
    KControlsLayer* getControlsLayer() const;

    KGraphicPoint globalToLocal(const KGraphicPoint& point) const;
    KGraphicPoint localToGlobal(const KGraphicPoint& point) const;
    void invalidate();
    void invalidate(const KWideRectangle& area);

    void setMainWindow(bool value) { mainWindowFlag = value; }
    bool isMainWindow() const { return mainWindowFlag; }

    void setNativeWindow(void* handle) { nativeWindow = handle; }
    void* getNativeWindow() const { return nativeWindow; }

protected:
    // Opens the native frame the setup describes; a failed creation raises
    // with the caller as location.
    void openWith(OpenMode mode, const KNativeWindowSetup& setup,
                  const KSourceLocation& where = KSourceLocation::current());
    // The native frame of a plain window.
    virtual KNativeWindowSetup makeNativeSetup() const;
    void surfaceChanged(const KWideRectangle& changed) override;

private:
    void attachBackBuffer();
    void resizeBackBuffer(int32_t width, int32_t height);
    KControlsLayer& controlsLayer();

    std::vector<KLayerPtr> layers;
    KControlsLayerPtr controls;
    int32_t windowFlags = Closable | Resizable;
    int32_t stateFlags = 0;
    KGraphicRectangle frameBounds;
    KGraphicRectangle clientBounds;
    KString title;
    void* nativeWindow = nullptr;
    bool visible = false;
    bool mainWindowFlag = false;
    bool painting = false;
};
