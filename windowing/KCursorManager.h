#pragma once

#include "graphics/KGraphicPoint.h"
#include "kernel/KThingPtr.h"
#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

// Routes the mouse events and owns the cursor's shape and the mouse
// capture. A press goes to the window's layers from the top down, then to
// the window, then to the application; an answer of 4 makes the layer (or
// the window) the capture target, which gets the moves and the release.
// Without a press, the pointer's position, polled each loop turn, decides
// which window and layer it hovers over and produces their enter and
// leave events. A new instance replaces the previous one.
class KCursorManager : public KThing {
    K_DECLARE_CLASS(KCursorManager)
public:
    KCursorManager();
    ~KCursorManager() override;

    static KCursorManager* current();

    KEventReturn doMouseEnter(KMouseEvent& event);
    KEventReturn doMouseLeave(KMouseEvent& event);
    KEventReturn doMouseDown(KMouseEvent& event);
    KEventReturn doMouseMoved(KMouseEvent& event);
    KEventReturn doMouseOther(KMouseEvent& event);
    KEventReturn doMouseUp(KMouseEvent& event);

    // The pointer's position (screen terms), each loop turn; nothing
    // happens while it stays where it was.
    void update(const KGraphicPoint& point);
    // The same, even when the position did not change: the windows or the
    // capture may have.
    void refresh(const KGraphicPoint& point);

    void setCursor(KCursorShape id);
    KCursorShape getCursor() const { return cursorId; }
    // The busy cursor, counted: the shape before the first beginWait comes
    // back with the last endWait.
    void beginWait();
    void endWait();
    void showCursor();
    void hideCursor();
    bool isCursorHidden() const { return hideCount > 0; }

    void captureLayer(KLayer& layer);
    void captureWindow(KWindow& window);
    void releaseCapture();
    // The window of the capture, whether a layer or a window holds it.
    KWindow* getCaptureWindow() const;
    KLayer* getCaptureLayer() const;
    KWindow* getHoverWindow() const;
    KLayer* getHoverLayer() const;
    // A closing window loses the capture and the hover.
    void windowClosed(KWindow& window);

    // The grid that dragged outlines snap to; 1 is none.
    int32_t getGrid() const { return grid; }
    void setGrid(int32_t value) { grid = value > 0 ? value : 1; }

    // Forgets the presses seen so far (they are kept across managers).
    static void resetClickHistory();

private:
    using LayerHandler = KEventReturn (KLayer::*)(KMouseEvent&);
    using WindowHandler = KEventReturn (KWindow::*)(KMouseEvent&);
    using ApplicationHandler = KEventReturn (KApplication::*)(KMouseEvent&);
    struct Route {
        LayerHandler layer;
        WindowHandler window;
        ApplicationHandler application;
    };

    void noteDown(KMouseEvent& event);
    KEventReturn routeMove(KMouseEvent& event, const Route& route);
    KEventReturn routeCrossing(KMouseEvent& event, const Route& route);
    static KEventReturn toApplication(KMouseEvent& event, ApplicationHandler handler);
    void sendCrossing(int32_t type, KWindow& window, KLayer* layer, const KGraphicPoint& point);

    KLayerPtr hoverLayer;
    KWindowPtr hoverWindow;
    KLayerPtr capturedLayer;
    KWindowPtr capturedWindow;
    KGraphicPoint lastPosition;
    bool positionKnown = false;
    KCursorShape cursorId = KCursorShape::Normal;
    int32_t hideCount = 0;
    int32_t waitDepth = 0;
    KCursorShape cursorBeforeWait = KCursorShape::Normal;
    KTimerPtr animationTimer;
    int32_t grid = 1;
};
