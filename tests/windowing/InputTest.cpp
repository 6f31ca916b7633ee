#include "FrameworkTestSupport.h"

#include "windowing/KBusyCursor.h"
#include "windowing/KClipboardManager.h"
#include "windowing/KControlsLayer.h"
#include "windowing/KDialogHandler.h"

namespace {

namespace Message = KNativeMessage;
namespace MK = KMouseKeys;

using Seen = std::vector<std::string>;

// Notes the click flags of every press.
class ClickLayer : public KLayer {
public:
    KEventReturn doMouseDown(KMouseEvent& event) override
    {
        flags.push_back(event.getClickFlags());
        return 0;
    }
    std::vector<int32_t> flags;
};

class InputTest : public FrameworkTest { };

TEST_F(InputTest, DoubleClicksNeedNearTimeAndPlaceAndAThirdClickIsSingle)
{
    layer.setDoubleClick(400, 4);
    KPtr<RecordingWindow> window = openWindow("window", KGraphicRectangle(0, 0, 200, 200));
    KPtr<ClickLayer> clicks(new ClickLayer());
    window->addLayer(*clicks);
    auto click = [&](int32_t x, int32_t y, uint32_t after) {
        layer.advance(after);
        mouse(*window, Message::LeftDown, MK::LeftButton, x, y);
        mouse(*window, Message::LeftUp, 0, x, y);
    };
    constexpr int32_t Double = KMouseEvent::DoubleClick | KMouseEvent::SamePosition;
    constexpr int32_t Same = KMouseEvent::SamePosition;
    click(10, 10, 1000);
    click(12, 13, 100); // near in both: a double click
    click(12, 13, 100); // a third: single, though near
    click(12, 13, 100); // and the fourth is the next double
    click(15, 13, 100); // 3 pixels off is still near, but it follows a double
    click(19, 13, 100); // 4 pixels off is far
    click(19, 13, 400); // as long as the double click time is far
    click(19, 13, 399);
    EXPECT_EQ(clicks->flags, (std::vector<int32_t> { 0, Double, Same, Double, Same, 0, Same, Double }));
}

TEST_F(InputTest, KeysGoToHandlersFocusWindowAndApplication)
{
    KPtr<RecordingWindow> window = openWindow("window", KGraphicRectangle(0, 0, 200, 100));
    KPtr<RecordingControl> first(new RecordingControl("first", KWideRectangle(0, 0, 10, 10)));
    KPtr<RecordingControl> skipped(new RecordingControl("skipped", KWideRectangle(20, 0, 10, 10)));
    KPtr<RecordingControl> second(new RecordingControl("second", KWideRectangle(40, 0, 10, 10)));
    KPtr<RecordingControl> hidden(new RecordingControl("hidden", KWideRectangle(60, 0, 10, 10)));
    skipped->setElementFlag(KInteractiveElement::SkipOnTab, true);
    for (auto* control : { first.get(), skipped.get(), second.get(), hidden.get() })
        window->addControl(*control);
    hidden->hide();
    auto key = [&](int32_t virtualKey) { kksDeliverNativeRecord(record(Message::KeyDown, window.get(), virtualKey)); };

    // Without a focus: the window, then the application.
    key(KVirtualKey::F1);
    EXPECT_EQ(seen(), (Seen { "window key 256", "app key 256" }));

    // Tab moves the focus through the controls that take it by key.
    seen().clear();
    key(KVirtualKey::Tab);
    EXPECT_EQ(keyboard->getFocus(), first.get());
    EXPECT_TRUE(first->hasFocus());
    key(KVirtualKey::Tab);
    EXPECT_EQ(keyboard->getFocus(), second.get());
    EXPECT_FALSE(first->hasFocus());
    key(KVirtualKey::Tab);
    EXPECT_EQ(keyboard->getFocus(), first.get());
    layer.setModifiers(1);
    key(KVirtualKey::Tab);
    EXPECT_EQ(keyboard->getFocus(), second.get());
    layer.setModifiers(0);
    EXPECT_EQ(seen(), (Seen { "first key 282", "second key 282", "first key 282" }));

    // The focus element comes first; a key it takes goes no further.
    seen().clear();
    second->keyAnswer = 1;
    key(KVirtualKey::F1);
    EXPECT_EQ(seen(), (Seen { "second key 256" }));
    // Handlers come before everything.
    struct Handler : KThing {
        KEventReturn handleEvent(KEvent&) override
        {
            see("handler");
            return 1;
        }
    };
    KPtr<Handler> handler(new Handler());
    EXPECT_TRUE(keyboard->addHandler(*handler));
    EXPECT_FALSE(keyboard->addHandler(*handler));
    seen().clear();
    key(KVirtualKey::F1);
    EXPECT_EQ(seen(), (Seen { "handler" }));
    keyboard->removeHandler(*handler);

    // A key typed anywhere goes to the window of the focus element.
    KPtr<RecordingWindow> other = openWindow("other", KGraphicRectangle(300, 0, 100, 100));
    second->keyAnswer = 0;
    seen().clear();
    kksDeliverNativeRecord(record(Message::KeyDown, other.get(), KVirtualKey::F1));
    EXPECT_EQ(seen(), (Seen { "second key 256", "window key 256", "app key 256" }));

    // The focus goes with its window's deactivation and close.
    kksDeliverNativeRecord(record(Message::Activate, window.get(), 0));
    EXPECT_FALSE(keyboard->hasFocus());
    EXPECT_FALSE(second->hasFocus());
    keyboard->setFocus(*first);
    window->close();
    EXPECT_FALSE(keyboard->hasFocus());
}

TEST_F(InputTest, CursorShapesNestTheBusyCursorAndCountHiding)
{
    cursor->setCursor(KCursorShape::Cross);
    {
        KBusyCursor busy;
        EXPECT_EQ(layer.cursorShape(), KCursorShape::Wait);
        {
            KBusyCursor nested;
            EXPECT_EQ(cursor->getCursor(), KCursorShape::Wait);
        }
        EXPECT_EQ(layer.cursorShape(), KCursorShape::Wait);
    }
    EXPECT_EQ(layer.cursorShape(), KCursorShape::Cross);
    cursor->endWait();
    EXPECT_EQ(layer.cursorShape(), KCursorShape::Cross);

    cursor->hideCursor();
    cursor->hideCursor();
    cursor->showCursor();
    EXPECT_FALSE(layer.cursorVisible());
    cursor->showCursor();
    EXPECT_TRUE(layer.cursorVisible());
    cursor->showCursor();
    EXPECT_TRUE(layer.cursorVisible());
    EXPECT_FALSE(cursor->isCursorHidden());
}

// run() makes the managers in their order, routes the input through them
// and takes them down at the end.
TEST_F(InputTest, RunMakesTheManagersThatTheRoutesReach)
{
    keyboard.clear();
    cursor.clear();
    manager.clear();
    ASSERT_EQ(KCursorManager::current(), nullptr);
    KPtr<RecordingLayer> press(new RecordingLayer("layer"));
    press->downAnswer = 4;
    app->onInit = [&] {
        EXPECT_NE(KCursorManager::current(), nullptr);
        EXPECT_NE(KKeyboardManager::current(), nullptr);
        EXPECT_NE(KClipboardManager::current(), nullptr);
        EXPECT_NE(KDialogHandler::current(), nullptr);
        EXPECT_EQ(layer.cursorShape(), KCursorShape::Normal);
        KWindow* main = app->getMainWindow();
        main->addLayer(*press);
        main->show(true);
        mouse(*main, Message::LeftDown, MK::LeftButton, 5, 6);
        EXPECT_EQ(KCursorManager::current()->getCaptureLayer(), press.get());
        mouse(*main, Message::LeftUp, 0, 5, 6);
        app->requestQuit();
    };
    Watchdog watchdog(60000);
    app->run("RecordingWindow", 1, std::vector<const char*> { "taleloom" }.data());
    EXPECT_EQ(seen(),
              (Seen { "layer down 5,6", "layer up 5,6", "window up 5,6", "layer enter", "window enter", "app enter" }));
    EXPECT_EQ(KCursorManager::current(), nullptr);
    EXPECT_EQ(KKeyboardManager::current(), nullptr);
    EXPECT_EQ(KClipboardManager::current(), nullptr);
    EXPECT_EQ(KDialogHandler::current(), nullptr);
    EXPECT_EQ(KWindowManager::current(), nullptr);
}

} // namespace
