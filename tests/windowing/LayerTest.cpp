#include "FrameworkTestSupport.h"

#include "windowing/KControlsLayer.h"
#include "windowing/KDragObject.h"
#include "windowing/KDragObjectsLayer.h"

namespace {

namespace Message = KNativeMessage;
namespace MK = KMouseKeys;

using Seen = std::vector<std::string>;

// A layer over only part of its window.
class PartLayer : public RecordingLayer {
public:
    PartLayer(std::string name, const KWideRectangle& area)
        : RecordingLayer(std::move(name))
    {
        setPosition(area.getOrigin());
        setSize(area.getSize());
    }
};

class LayerTest : public FrameworkTest { };

TEST_F(LayerTest, PressesGoTopDownAndACaptureKeepsTheMovesAndTheRelease)
{
    KPtr<RecordingWindow> window = openWindow("window", KGraphicRectangle(100, 50, 200, 100));
    KPtr<RecordingLayer> bottom(new RecordingLayer("bottom"));
    KPtr<PartLayer> top(new PartLayer("top", KWideRectangle(0, 0, 50, 50)));
    window->addLayer(*bottom);
    window->addLayer(*top);

    // Every layer is offered the press, the top one first; the one that
    // answers 4 holds the mouse until the release, wherever it goes.
    bottom->downAnswer = 4;
    mouse(*window, Message::LeftDown, MK::LeftButton, 10, 10);
    EXPECT_EQ(seen(), (Seen { "top down 10,10", "bottom down 10,10" }));
    EXPECT_EQ(cursor->getCaptureLayer(), bottom.get());
    EXPECT_EQ(cursor->getCaptureWindow(), window.get());
    seen().clear();
    mouse(*window, Message::MouseMove, MK::LeftButton, 20, 20);
    mouse(*window, Message::LeftUp, 0, 30, 30);
    // After the release the pointer's target is found anew.
    EXPECT_EQ(seen(), (Seen { "bottom moved 20,20", "window moved 20,20", "app moved", "bottom up 30,30",
                              "window up 30,30", "top enter", "window enter", "app enter" }));
    EXPECT_EQ(cursor->getCaptureLayer(), nullptr);

    // Without a capture a move goes to the layer under the pointer only.
    seen().clear();
    mouse(*window, Message::MouseMove, 0, 100, 80);
    mouse(*window, Message::MouseMove, 0, 10, 10);
    EXPECT_EQ(seen(), (Seen { "bottom moved 100,80", "window moved 100,80", "app moved", "top moved 10,10",
                              "window moved 10,10", "app moved" }));

    // Nobody answers: the window, then the application. A window that
    // answers 4 holds the mouse itself.
    bottom->downAnswer = 0;
    window->downAnswer = 4;
    seen().clear();
    mouse(*window, Message::LeftDown, MK::LeftButton, 60, 60);
    EXPECT_EQ(seen(), (Seen { "top down 60,60", "bottom down 60,60", "window down 60,60" }));
    EXPECT_EQ(cursor->getCaptureWindow(), window.get());
    EXPECT_EQ(cursor->getCaptureLayer(), nullptr);
    seen().clear();
    mouse(*window, Message::MouseMove, MK::LeftButton, 5, 5);
    mouse(*window, Message::LeftUp, 0, 5, 5);
    EXPECT_EQ(seen(), (Seen { "window moved 5,5", "app moved", "window up 5,5" }));
    EXPECT_EQ(cursor->getCaptureWindow(), nullptr);

    // A window with input off swallows mouse events as handled.
    window->setEnabled(false);
    seen().clear();
    KMouseEventPtr press(new KMouseEvent(KMouseEvent::Down, window.get()));
    EXPECT_EQ(processNow(press.get()), 1);
    mouse(*window, Message::MouseMove, 0, 7, 7);
    EXPECT_TRUE(seen().empty());
}

TEST_F(LayerTest, ThePolledPointerDrivesEnterAndLeave)
{
    KPtr<RecordingWindow> left = openWindow("left", KGraphicRectangle(0, 0, 100, 100));
    KPtr<RecordingWindow> right = openWindow("right", KGraphicRectangle(200, 0, 100, 100));
    KPtr<PartLayer> part(new PartLayer("part", KWideRectangle(50, 50, 50, 50)));
    right->addLayer(*part);

    // The loop hands the pointer's position to the cursor manager; an
    // enter goes to the layer, the window and the application in turn.
    layer.setCursor(10, 10);
    layer.script(record(Message::Null));
    app->doOneLoop();
    EXPECT_EQ(seen(), (Seen { "left enter", "app enter" }));
    seen().clear();
    layer.script(record(Message::Null));
    app->doOneLoop();
    EXPECT_TRUE(seen().empty());

    cursor->update(KGraphicPoint(210, 10));
    cursor->update(KGraphicPoint(260, 60));
    cursor->update(KGraphicPoint(150, 60));
    EXPECT_EQ(seen(), (Seen { "left leave", "app leave", "right enter", "app enter", "right leave", "app leave",
                              "part enter", "right enter", "app enter", "part leave", "right leave", "app leave" }));

    // A hidden window is not under the pointer; the front one of two is.
    seen().clear();
    KPtr<RecordingWindow> over = openWindow("over", KGraphicRectangle(0, 0, 50, 50));
    cursor->update(KGraphicPoint(20, 20));
    over->hide();
    cursor->update(KGraphicPoint(21, 21));
    EXPECT_EQ(seen(), (Seen { "over enter", "app enter", "over leave", "app leave", "left enter", "app enter" }));

    // A closing window loses the hover without events.
    seen().clear();
    left->close();
    EXPECT_EQ(cursor->getHoverWindow(), nullptr);
    EXPECT_TRUE(seen().empty());
}

TEST_F(LayerTest, ControlsLayerFindsHoversAndPresses)
{
    KPtr<RecordingWindow> window = openWindow("window", KGraphicRectangle(0, 0, 200, 100));
    KPtr<RecordingControl> box(new RecordingControl("box", KWideRectangle(10, 10, 80, 60)));
    KPtr<RecordingControl> inner(new RecordingControl("inner", KWideRectangle(5, 5, 20, 20)));
    KPtr<RecordingControl> hidden(new RecordingControl("hidden", KWideRectangle(100, 10, 40, 40)));
    box->addChild(*inner);
    window->addControl(*box);
    window->addControl(*hidden);
    hidden->hide();
    KControlsLayer& controls = *window->getControlsLayer();

    // The deepest control holds the point; a hidden or disabled one is
    // never found, and nothing there is the error.
    EXPECT_EQ(controls.findControl(KGraphicPoint(20, 20)), inner.get());
    EXPECT_EQ(inner->getWindowBounds(), KWideRectangle(15, 15, 20, 20));
    EXPECT_EQ(controls.findControl(KGraphicPoint(50, 50)), box.get());
    inner->setEnabled(false);
    EXPECT_EQ(controls.findControl(KGraphicPoint(20, 20)), box.get());
    inner->setEnabled(true);
    {
        ErrorRecorder errors;
        EXPECT_EQ(controls.getControl(KGraphicPoint(110, 20)), nullptr);
        EXPECT_EQ(errors.lastCode(), KError::PointerNull);
    }
    EXPECT_EQ(controls.getControl(int32_t(0)), box.get());
    // The layer lets the points it has no control at through.
    EXPECT_FALSE(controls.contains(KWidePoint(150, 80)));

    // Hover follows the pointer with enter and leave (which go on to the
    // window and the application when the control leaves them); with tool
    // tips on, the control's tip shows while it is hovered.
    app->setAppFlags(KApplication::ToolTips);
    inner->setTooltip("Inside");
    mouse(*window, Message::MouseMove, 0, 20, 20);
    EXPECT_EQ(native(*window).tooltip, "Inside");
    mouse(*window, Message::MouseMove, 0, 60, 60);
    EXPECT_EQ(native(*window).tooltip, "");
    EXPECT_EQ(seen(),
              (Seen { "inner enter", "window enter", "app enter", "inner moved 20,20", "box moved 20,20",
                      "window moved 20,20", "app moved", "inner leave", "window leave", "app leave", "box enter",
                      "window enter", "app enter", "box moved 60,60", "window moved 60,60", "app moved" }));

    // A press walks up the parents until one answers; the one that answers
    // 4 gets the moves and the release even off itself.
    box->downAnswer = 4;
    seen().clear();
    mouse(*window, Message::LeftDown, MK::LeftButton, 20, 20);
    EXPECT_EQ(controls.getPressed(), box.get());
    mouse(*window, Message::MouseMove, MK::LeftButton, 150, 90);
    mouse(*window, Message::LeftUp, 0, 150, 90);
    EXPECT_EQ(controls.getPressed(), nullptr);
    EXPECT_EQ(controls.getHover(), nullptr);
    Seen pressed { "box leave",           "window leave", "app leave",        "inner enter",
                   "window enter",        "app enter",    "inner down 20,20", "box down 20,20",
                   "inner leave",         "window leave", "app leave",        "box moved 150,90",
                   "window moved 150,90", "app moved",    "box up 150,90",    "window up 150,90",
                   "window enter",        "app enter" };
    EXPECT_EQ(seen(), pressed);

    // Removing a control ends its hover.
    mouse(*window, Message::MouseMove, 0, 50, 50);
    EXPECT_EQ(controls.getHover(), box.get());
    window->removeControl(*box);
    EXPECT_EQ(controls.getHover(), nullptr);
    EXPECT_EQ(box->getWindow(), nullptr);
}

class DragTest : public FrameworkTest {
protected:
    void SetUp() override
    {
        FrameworkTest::SetUp();
        window = openWindow("window", KGraphicRectangle(0, 0, 200, 200));
        objects = new KDragObjectsLayer();
        window->addLayer(*objects);
        a = new KDragObject(KWideRectangle(10, 10, 40, 40));
        b = new KDragObject(KWideRectangle(100, 100, 30, 30));
        objects->addObject(*a);
        objects->addObject(*b);
    }
    void press(int32_t x, int32_t y, int32_t keys = 0)
    {
        mouse(*window, Message::LeftDown, MK::LeftButton | keys, x, y);
    }
    void drag(int32_t x, int32_t y) { mouse(*window, Message::MouseMove, MK::LeftButton, x, y); }
    void release(int32_t x, int32_t y) { mouse(*window, Message::LeftUp, 0, x, y); }

    KPtr<RecordingWindow> window;
    KDragObjectsLayerPtr objects;
    KDragObjectPtr a;
    KDragObjectPtr b;
};

TEST_F(DragTest, OneObjectMovesOrResizesByItsHandleOnTheGrid)
{
    cursor->setGrid(5);
    press(20, 20);
    EXPECT_TRUE(a->isSelected());
    EXPECT_EQ(objects->getActiveHandle(), KDragObject::Move);
    EXPECT_EQ(cursor->getCaptureLayer(), objects.get());
    // The outline inverts the page while it is shown, and is gone after.
    EXPECT_EQ(window->getPixel(10, 10).getNative(), 0xFFFFFFu);
    drag(33, 27);
    EXPECT_EQ(objects->getDragRectangle(), KWideRectangle(20, 15, 40, 40));
    EXPECT_EQ(window->getPixel(10, 10).getNative(), 0u);
    EXPECT_EQ(window->getPixel(20, 15).getNative(), 0xFFFFFFu);
    release(33, 27);
    EXPECT_EQ(a->getBounds(), KWideRectangle(20, 15, 40, 40));
    EXPECT_EQ(window->getPixel(20, 15).getNative(), 0u);
    EXPECT_FALSE(objects->isDragging());

    // The bottom right handle moves only the bottom and right edges.
    press(59, 54);
    EXPECT_EQ(objects->getActiveHandle(), KDragObject::BottomRight);
    release(71, 61);
    EXPECT_EQ(a->getBounds(), KWideRectangle(20, 15, 50, 45));

    // Integer division cuts a negative edge toward zero: -8 becomes -5.
    press(21, 16);
    EXPECT_EQ(objects->getActiveHandle(), KDragObject::TopLeft);
    release(-7, 2);
    EXPECT_EQ(a->getBounds(), KWideRectangle(-5, 0, 75, 60));
}

TEST_F(DragTest, TwoSelectedObjectsMoveTogetherAndAMissKeepsTheSelection)
{
    press(20, 20);
    release(20, 20);
    press(110, 110, MK::Shift);
    release(110, 110);
    EXPECT_EQ(objects->countSelected(), 2);
    EXPECT_EQ(objects->getSelectionBounds(), KWideRectangle(10, 10, 120, 120));

    // A press on a corner handle of one of them still moves both.
    press(49, 49);
    EXPECT_EQ(objects->getActiveHandle(), KDragObject::Move);
    EXPECT_EQ(objects->getDragRectangle(), KWideRectangle(10, 10, 120, 120));
    release(59, 54);
    EXPECT_EQ(a->getBounds(), KWideRectangle(20, 15, 40, 40));
    EXPECT_EQ(b->getBounds(), KWideRectangle(110, 105, 30, 30));

    // A press outside all objects is not taken and keeps the selection;
    // a press on an object without Shift selects it alone.
    seen().clear();
    press(180, 20);
    EXPECT_EQ(objects->countSelected(), 2);
    EXPECT_EQ(cursor->getCaptureLayer(), nullptr);
    EXPECT_EQ(seen(), (Seen { "window down 180,20", "app down" }));
    release(180, 20);
    objects->deselectAll();
    a->setSelected(true);
    press(115, 110);
    release(115, 110);
    EXPECT_FALSE(a->isSelected());
    EXPECT_TRUE(b->isSelected());
    {
        ErrorRecorder errors;
        EXPECT_EQ(objects->getDragObject(KGraphicPoint(180, 180)), nullptr);
        EXPECT_EQ(errors.lastCode(), KError::PointerNull);
    }
}

TEST_F(LayerTest, ActionsRunFromTheElementUpToTheApplication)
{
    KPtr<RecordingWindow> window = openWindow("window", KGraphicRectangle(0, 0, 200, 100));
    KPtr<RecordingControl> parent(new RecordingControl("parent", KWideRectangle(0, 0, 100, 100)));
    KPtr<RecordingControl> child(new RecordingControl("child", KWideRectangle(0, 0, 10, 10)));
    parent->addChild(*child);
    window->addControl(*parent);

    processNow(new KActionEvent(1, child.get()));
    EXPECT_EQ(seen(), (Seen { "app handleEvent", "child action", "parent action", "window action", "app action" }));
    seen().clear();
    processNow(new KControlActionEvent(1, child.get()));
    EXPECT_EQ(seen(), (Seen { "child control action", "parent control action", "window control action",
                              "app control action" }));

    // A source that is no element takes the root route, which ends with
    // the application's general handler.
    seen().clear();
    KPtr<KString> stranger(new KString("x"));
    processNow(new KActionEvent(1, stranger.get()));
    EXPECT_EQ(seen(), (Seen { "app handleEvent" }));

    // A layer's own element gets its turn between the element and the window.
    KPtr<RecordingLayer> layerOf(new RecordingLayer("layer"));
    window->addLayer(*layerOf);
    KPtr<KInteractiveElement> element(new KInteractiveElement());
    element->setLayer(layerOf.get());
    element->setWindow(window.get());
    seen().clear();
    processNow(new KActionEvent(1, element.get()));
    EXPECT_EQ(seen(), (Seen { "app handleEvent", "layer action", "window action", "app action" }));
}

TEST_F(LayerTest, ElementsShowHideAndTakeTheFocusByTheirFlags)
{
    KPtr<RecordingWindow> window = openWindow("window", KGraphicRectangle(0, 0, 200, 100));
    KPtr<KInteractiveElement> element(new KInteractiveElement());
    EXPECT_EQ(element->getElementFlags(), KInteractiveElement::kDefaultFlags);
    EXPECT_TRUE(element->isEnabled());
    EXPECT_FALSE(element->isVisible());
    // Without a window nothing changes.
    element->setVisible(true);
    EXPECT_FALSE(element->isVisible());
    element->setWindow(window.get());
    element->setPosition(KWidePoint(4, 5));
    element->setSize(KWideSize(6, 7));
    int32_t before = native(*window).invalidations;
    element->setVisible(true);
    EXPECT_TRUE(element->isVisible());
    EXPECT_GT(native(*window).invalidations, before);
    EXPECT_EQ(native(*window).lastInvalidated, (KNativeRect { 4, 5, 6, 7 }));

    // A click gives the focus; a key does only to elements that take it by key.
    element->setFocus(true);
    EXPECT_TRUE(element->hasFocus());
    EXPECT_TRUE(element->hasElementFlag(KInteractiveElement::InFocusChain));
    element->setFocus(false);
    EXPECT_FALSE(element->hasFocus());
    element->setElementFlag(KInteractiveElement::SkipOnTab, true);
    element->setFocus(true, true);
    EXPECT_FALSE(element->hasFocus());
    element->setElementFlag(KInteractiveElement::SkipOnTab, false);
    element->setFocus(true, true);
    EXPECT_TRUE(element->hasFocus());
    element->setFocus(false);
    element->setEnabled(false);
    element->setFocus(true);
    EXPECT_FALSE(element->hasFocus());
    element->hide();
    EXPECT_FALSE(element->isVisible());
}

} // namespace
