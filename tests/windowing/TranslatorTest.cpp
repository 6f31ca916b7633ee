#include "WindowingTestSupport.h"

#include "windowing/KApplicationEvent.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KNativeEvent.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowEvent.h"
#include "windowing/KWindowManager.h"

namespace {

namespace Message = KNativeMessage;
namespace MK = KMouseKeys;

struct Seen {
    std::string what;
    int32_t code = 0;
    bool down = false;
    int32_t modifiers = 0;
    uint32_t time = 0;
};

class InputApp : public KApplication {
public:
    KEventReturn doMouseDown(KMouseEvent& e) override { return mouse("down", e); }
    KEventReturn doMouseUp(KMouseEvent& e) override { return mouse("up", e); }
    KEventReturn doMouseMoved(KMouseEvent& e) override { return mouse("moved", e); }
    KEventReturn doKeyDown(KKeyEvent& e) override
    {
        seen.push_back({ "key", e.getKeyCode(), false, e.getModifiers(), e.getTime() });
        return 1;
    }
    KEventReturn doKeyUp(KKeyEvent& e) override
    {
        seen.push_back({ "key up", e.getKeyCode(), false, e.getModifiers(), e.getTime() });
        return 1;
    }
    KEventReturn doKeyRepeat(KKeyEvent& e) override
    {
        seen.push_back({ "key repeat", e.getKeyCode(), false, e.getModifiers(), e.getTime() });
        return 1;
    }
    KEventReturn doDataReceived(KApplicationEvent& e) override
    {
        auto* text = static_cast<KString*>(e.getParameter("Received Data"));
        seen.push_back({ std::string("data ") + (text ? text->c_str() : "?") });
        return 1;
    }
    KEventReturn doOpenDocument(KApplicationEvent& e) override
    {
        seen.push_back({ std::string("open ") + e.getFilePath().c_str() });
        return 1;
    }
    KEventReturn doActivate(KApplicationEvent&) override
    {
        seen.push_back({ "activate" });
        return 1;
    }
    KEventReturn doDeactivate(KApplicationEvent&) override
    {
        seen.push_back({ "deactivate" });
        return 1;
    }
    KEventReturn doWindowMoved(KWindowEvent&) override
    {
        seen.push_back({ "window moved" });
        return 1;
    }
    KEventReturn doWindowPaint(KWindowEvent&) override
    {
        seen.push_back({ "paint" });
        return 1;
    }

    KEventReturn mouse(const char* what, KMouseEvent& e)
    {
        seen.push_back({ what, e.getButton(), e.isButtonDown(), e.getModifiers(), e.getTime() });
        lastLocal = e.getLocal();
        lastGlobal = e.getGlobal();
        return 1;
    }

    std::vector<Seen> seen;
    KEventPoint lastLocal;
    KEventPoint lastGlobal;
};

class TranslatorTest : public FakeLayerTest {
protected:
    void SetUp() override
    {
        FakeLayerTest::SetUp();
        app = new InputApp();
        window = new KWindow();
        window->open(KWindow::Hidden);
    }
    void TearDown() override
    {
        window->close();
        window.clear();
        app.clear();
        FakeLayerTest::TearDown();
    }
    void deliver(int32_t message, int32_t param1 = 0, int32_t param2 = 0)
    {
        kksDeliverNativeRecord(record(message, window.get(), param1, param2));
    }
    std::vector<std::string> seenNames() const
    {
        std::vector<std::string> names;
        for (auto& s : app->seen)
            names.push_back(s.what);
        return names;
    }

    KWindowManager manager;
    KPtr<InputApp> app;
    KWindowPtr window;
};

TEST_F(TranslatorTest, SecondButtonIsIgnoredWhileTheFirstIsDown)
{
    deliver(Message::LeftDown, MK::LeftButton);
    deliver(Message::MouseMove, MK::LeftButton);
    deliver(Message::RightDown, MK::LeftButton | MK::RightButton);
    deliver(Message::RightUp, MK::LeftButton);
    deliver(Message::LeftUp, 0);
    deliver(Message::LeftUp, 0);
    ASSERT_EQ(seenNames(), (std::vector<std::string> { "down", "moved", "up" }));
    EXPECT_EQ(app->seen[0].code, KMouseEvent::Left);
    EXPECT_TRUE(app->seen[0].down);
    EXPECT_EQ(app->seen[1].code, KMouseEvent::Left);
    EXPECT_TRUE(app->seen[1].down);
    EXPECT_EQ(app->seen[2].code, KMouseEvent::Left);
    EXPECT_FALSE(app->seen[2].down);

    deliver(Message::RightDown, MK::RightButton);
    deliver(Message::RightUp, 0);
    EXPECT_EQ(app->seen.size(), 5u);
    EXPECT_EQ(app->seen[3].code, KMouseEvent::Right);
}

TEST_F(TranslatorTest, LostButtonUpIsMadeUpBeforeTheNextMouseEvent)
{
    deliver(Message::LeftDown, MK::LeftButton);
    // The button went up outside any window; the next move says so.
    deliver(Message::MouseMove, 0);
    ASSERT_EQ(seenNames(), (std::vector<std::string> { "down", "up", "moved" }));
    EXPECT_EQ(app->seen[1].code, KMouseEvent::Left);
    EXPECT_EQ(app->seen[2].code, KMouseEvent::NoButton);
    EXPECT_FALSE(app->seen[2].down);

    // A new press of a button believed down.
    app->seen.clear();
    deliver(Message::RightDown, MK::RightButton);
    deliver(Message::RightDown, MK::RightButton);
    EXPECT_EQ(seenNames(), (std::vector<std::string> { "down", "up", "down" }));

    // A press of the other button once the first is known to be up.
    app->seen.clear();
    deliver(Message::LeftDown, MK::LeftButton);
    ASSERT_EQ(seenNames(), (std::vector<std::string> { "up", "down" }));
    EXPECT_EQ(app->seen[0].code, KMouseEvent::Right);
    EXPECT_EQ(app->seen[1].code, KMouseEvent::Left);
}

TEST_F(TranslatorTest, MouseEventsCarryPointsModifiersAndTime)
{
    KNativeRecord r = record(Message::MouseMove, window.get(), MK::Shift | MK::Control, kPackPoint(-3, 417));
    r.x = 1203;
    r.y = -5;
    r.time = 4242;
    kksDeliverNativeRecord(r);
    ASSERT_EQ(app->seen.size(), 1u);
    EXPECT_EQ(app->lastLocal.x, -3);
    EXPECT_EQ(app->lastLocal.y, 417);
    EXPECT_EQ(app->lastGlobal.x, 1203);
    EXPECT_EQ(app->lastGlobal.y, -5);
    EXPECT_EQ(app->seen[0].modifiers, 3);
    EXPECT_EQ(app->seen[0].time, 4242u);

    // Mouse events need a window.
    kksDeliverNativeRecord(record(Message::MouseMove));
    EXPECT_EQ(app->seen.size(), 1u);
}

TEST_F(TranslatorTest, KeyDownMapsTheKeyTableAndCtrlW)
{
    struct Case {
        int32_t virtualKey;
        int32_t code;
    };
    const Case table[] = {
        { 0x70, 256 }, { 0x7E, 270 }, { 0x26, 271 }, { 0x28, 272 }, { 0x25, 273 }, { 0x27, 274 },
        { 0x24, 275 }, { 0x23, 276 }, { 0x21, 277 }, { 0x22, 278 }, { 0x2F, 279 }, { 0x2E, 280 },
        { 0x08, 281 }, { 0x09, 282 }, { 0x0D, 283 }, { 0x1B, 284 },
    };
    for (const Case& c : table) {
        app->seen.clear();
        deliver(Message::KeyDown, c.virtualKey);
        ASSERT_EQ(app->seen.size(), 1u) << c.virtualKey;
        EXPECT_EQ(app->seen[0].code, c.code) << c.virtualKey;
    }

    app->seen.clear();
    deliver(Message::KeyDown, 'A');
    deliver(Message::KeyDown, 'W');
    deliver(Message::KeyDown, KVirtualKey::Snapshot);
    EXPECT_TRUE(app->seen.empty());

    layer.setModifiers(2 | 8);
    deliver(Message::KeyDown, 'W');
    deliver(Message::KeyDown, KVirtualKey::Snapshot);
    ASSERT_EQ(app->seen.size(), 1u);
    EXPECT_EQ(app->seen[0].code, 87);
    EXPECT_EQ(app->seen[0].modifiers, 10);
}

TEST_F(TranslatorTest, CharactersFromSpaceUpAreKeysTheRestNativeEvents)
{
    deliver(Message::Char, 'a');
    deliver(Message::Char, 0xE9);
    deliver(Message::Char, ' ');
    ASSERT_EQ(app->seen.size(), 3u);
    EXPECT_EQ(app->seen[0].code, 'a');
    EXPECT_EQ(app->seen[1].code, 0xE9);
    EXPECT_EQ(app->seen[2].code, ' ');

    KEventPtr control(kksCreateEvent(record(Message::Char, window.get(), 13)));
    ASSERT_TRUE(control);
    EXPECT_TRUE(control->isEqualOrSubClass(KNativeEvent::classRecord));
    ASSERT_NE(control->getNativeRecord(), nullptr);
    EXPECT_EQ(control->getNativeRecord()->param1, 13);
}

TEST_F(TranslatorTest, KeysAreLetGoAndRepeatedUnderThePressCode)
{
    // A table key and a printable key, each pressed, repeated and let go.
    deliver(Message::KeyDown, KVirtualKey::Left);
    deliver(Message::KeyDown, KVirtualKey::Left, KKeyRecord::Repeat);
    deliver(Message::KeyUp, KVirtualKey::Left);
    deliver(Message::KeyDown, 'A');
    deliver(Message::Char, 'a');
    deliver(Message::KeyDown, 'A', KKeyRecord::Repeat);
    deliver(Message::Char, 'a', KKeyRecord::Repeat);
    deliver(Message::KeyUp, 'A', 'a');
    // A key that types nothing and is not in the table makes no release.
    deliver(Message::KeyUp, KVirtualKey::Shift);
    deliver(Message::KeyUp, KVirtualKey::Snapshot);
    EXPECT_EQ(seenNames(), (std::vector<std::string> { "key", "key repeat", "key up", "key", "key repeat", "key up" }));
    std::vector<int32_t> codes;
    for (auto& s : app->seen)
        codes.push_back(s.code);
    EXPECT_EQ(codes, (std::vector<int32_t> { 273, 273, 273, 'a', 'a', 'a' }));

    // Control with a printable key is that character with modifier 2;
    // Ctrl+W stays key 87, down and up.
    app->seen.clear();
    layer.setModifiers(2);
    deliver(Message::KeyDown, 'C');
    deliver(Message::Char, 'c');
    deliver(Message::KeyUp, 'C', 'c');
    deliver(Message::KeyDown, 'W');
    deliver(Message::KeyUp, 'W', 'w');
    ASSERT_EQ(seenNames(), (std::vector<std::string> { "key", "key up", "key", "key up" }));
    EXPECT_EQ(app->seen[0].code, 'c');
    EXPECT_EQ(app->seen[0].modifiers, 2);
    EXPECT_EQ(app->seen[1].code, 'c');
    EXPECT_EQ(app->seen[2].code, 87);
    EXPECT_EQ(app->seen[3].code, 87);
}

TEST_F(TranslatorTest, ALostCaptureIsTheMissingButtonUp)
{
    // Nothing is down: a lost capture means nothing.
    deliver(Message::CaptureChanged, 0, kPackPoint(5, 5));
    EXPECT_TRUE(app->seen.empty());

    deliver(Message::LeftDown, MK::LeftButton, kPackPoint(10, 10));
    deliver(Message::MouseMove, MK::LeftButton, kPackPoint(20, 30));
    deliver(Message::CaptureChanged, 0, kPackPoint(25, 35));
    ASSERT_EQ(seenNames(), (std::vector<std::string> { "down", "moved", "up" }));
    EXPECT_EQ(app->seen[2].code, KMouseEvent::Left);
    EXPECT_EQ(app->lastLocal.x, 25);
    EXPECT_EQ(app->lastLocal.y, 35);
    // The real release, should it come late, finds the button up already.
    deliver(Message::LeftUp, 0, kPackPoint(25, 35));
    EXPECT_EQ(app->seen.size(), 3u);
}

TEST_F(TranslatorTest, PostedBytesAssembleReceivedData)
{
    for (char c : std::string("Hi there"))
        deliver(Message::PostedData, static_cast<unsigned char>(c));
    EXPECT_EQ(queueLength(), 0);
    deliver(Message::PostedData, 0);
    // The text arrives as a queued event.
    EXPECT_TRUE(app->seen.empty());
    EXPECT_EQ(queueLength(), 1);
    processQueue();
    ASSERT_EQ(seenNames(), (std::vector<std::string> { "data Hi there" }));

    // A terminator without text makes nothing.
    deliver(Message::PostedData, 0);
    EXPECT_EQ(queueLength(), 0);
}

TEST_F(TranslatorTest, DropOpensTheFirstFileOnly)
{
    int32_t drop = layer.addDrop({ "/tmp/first.tpd", "/tmp/second.tpd" });
    deliver(Message::DropFiles, drop);
    EXPECT_EQ(seenNames(), (std::vector<std::string> { "open /tmp/first.tpd" }));
    deliver(Message::DropFiles, drop + 1);
    EXPECT_EQ(app->seen.size(), 1u);
}

TEST_F(TranslatorTest, WindowMessagesNeedAKnownOpenWindow)
{
    deliver(Message::Move, 30, 40);
    EXPECT_EQ(window->getClientBounds().x, 30);
    EXPECT_EQ(window->getClientBounds().y, 40);
    deliver(Message::Size, 320, 200);
    EXPECT_EQ(window->getClientBounds().width, 320);
    EXPECT_EQ(window->getClientBounds().height, 200);
    deliver(Message::Paint);
    EXPECT_EQ(seenNames(), (std::vector<std::string> { "window moved", "paint" }));

    KPtr<KWindow> stranger(new KWindow());
    kksDeliverNativeRecord(record(Message::Move, stranger.get(), 1, 1));
    kksDeliverNativeRecord(record(Message::Paint, stranger.get()));
    window->close();
    deliver(Message::Paint);
    deliver(Message::Close);
    EXPECT_EQ(app->seen.size(), 2u);
}

TEST_F(TranslatorTest, ApplicationActivationOnlyOnAChange)
{
    kksDeliverNativeRecord(record(Message::ActivateApp, nullptr, 1));
    kksDeliverNativeRecord(record(Message::ActivateApp, nullptr, 1));
    EXPECT_TRUE(app->hasAppFlags(KApplication::Active));
    kksDeliverNativeRecord(record(Message::ActivateApp, nullptr, 0));
    kksDeliverNativeRecord(record(Message::ActivateApp, nullptr, 0));
    EXPECT_FALSE(app->hasAppFlags(KApplication::Active));
    EXPECT_EQ(seenNames(), (std::vector<std::string> { "activate", "deactivate" }));
}

TEST_F(TranslatorTest, TimerMessageOnlyWakesTheLoop)
{
    int before = layer.wakeUpCount();
    EXPECT_EQ(kksCreateEvent(record(Message::Timer, window.get())), nullptr);
    EXPECT_EQ(layer.wakeUpCount(), before + 1);
}

TEST_F(TranslatorTest, NativeModalDialogRefusesEverything)
{
    int dialog = 0;
    KEvent::setNativeModalWindow(&dialog);
    deliver(Message::LeftDown, MK::LeftButton);
    EXPECT_EQ(processNow(new KApplicationEvent(KApplicationEvent::QuitRequest)), 1);
    KEvent::setNativeModalWindow(nullptr);
    EXPECT_TRUE(app->seen.empty());
    EXPECT_EQ(layer.quitCount(), 0);
}

} // namespace
