#pragma once

#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "windowing/KWindowingForward.h"

// A top-level window in a native frame. It is opened and closed through the
// native layer, and the events of its frame reach it through the do...
// operations, whose defaults do nothing but agree to a close.
class KWindow : public KThing {
    K_DECLARE_CLASS(KWindow)
public:
    enum OpenMode : int32_t { Normal = 0, Hidden = 1 };
    enum StateFlag : int32_t { IsOpen = 1, HiddenAtOpen = 2 };

    struct Bounds {
        int32_t x = 0;
        int32_t y = 0;
        int32_t width = 0;
        int32_t height = 0;
    };

    KWindow();
    ~KWindow() override;

    virtual void open(int32_t mode);
    virtual void close();
    virtual void show(bool visible);
    virtual void hide();

    virtual KEventReturn doPaint(KWindowEvent& event);
    virtual KEventReturn doEraseBackground(KWindowEvent& event);
    virtual KEventReturn doClose(KWindowEvent& event);
    virtual KEventReturn doActivate(KWindowEvent& event);
    virtual KEventReturn doDeactivate(KWindowEvent& event);
    virtual KEventReturn doMoved(KWindowEvent& event);
    virtual KEventReturn doResized(KWindowEvent& event);

    bool isOpen() const { return (stateFlags & IsOpen) != 0; }
    bool isVisible() const { return visible; }
    int32_t getStateFlags() const { return stateFlags; }

    void setTitle(const KString& text);
    const KString& getTitle() const { return title; }
    // The frame the native window is opened with; moves and resizes of the
    // native window update the client bounds.
    void setFrame(const Bounds& frame);
    const Bounds& getFrame() const { return frameBounds; }
    void setClientBounds(const Bounds& client) { clientBounds = client; }
    const Bounds& getClientBounds() const { return clientBounds; }

    void setMainWindow(bool value) { mainWindowFlag = value; }
    bool isMainWindow() const { return mainWindowFlag; }

    void* getNativeWindow() const { return nativeWindow; }

private:
    void setNativeWindow(void* handle) { nativeWindow = handle; }

    int32_t stateFlags = 0;
    Bounds frameBounds;
    Bounds clientBounds;
    KString title;
    void* nativeWindow = nullptr;
    bool visible = false;
    bool mainWindowFlag = false;
};
