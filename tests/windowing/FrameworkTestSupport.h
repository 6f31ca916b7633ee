#pragma once

#include "WindowingTestSupport.h"

#include "windowing/KActionEvent.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KCursorManager.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KKeyboardManager.h"
#include "windowing/KLayer.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowManager.h"
#include "windowing/KWindowingServices.h"

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

// What the objects of these tests saw, in order.
inline std::vector<std::string>& seen()
{
    static std::vector<std::string> entries;
    return entries;
}

inline void see(const std::string& entry) { seen().push_back(entry); }

inline std::string pointText(const KEventPoint& p) { return std::to_string(p.x) + "," + std::to_string(p.y); }

// An application that notes what reaches it and answers with set values.
class RecordingApp : public KApplication {
public:
    KEventReturn doMouseEnter(KMouseEvent&) override { return note("app enter", 0); }
    KEventReturn doMouseLeave(KMouseEvent&) override { return note("app leave", 0); }
    KEventReturn doMouseDown(KMouseEvent&) override { return note("app down", 0); }
    KEventReturn doMouseMoved(KMouseEvent&) override { return note("app moved", 0); }
    KEventReturn doMouseUp(KMouseEvent&) override { return note("app up", 0); }
    KEventReturn doKeyDown(KKeyEvent& e) override { return note("app key " + std::to_string(e.getKeyCode()), 0); }
    KEventReturn doKeyUp(KKeyEvent& e) override { return note("app key up " + std::to_string(e.getKeyCode()), 0); }
    KEventReturn doAction(KActionEvent&) override { return note("app action", 0); }
    KEventReturn doControlAction(KControlActionEvent&) override { return note("app control action", 0); }
    KEventReturn doClipboardChanged(KApplicationEvent&) override { return note("app clipboard changed", 1); }
    KEventReturn doDataReceived(KApplicationEvent& e) override
    {
        auto* text = static_cast<KString*>(e.getParameter("Received Data"));
        received.push_back(text ? text->c_str() : "(none)");
        return 1;
    }
    KEventReturn handleEvent(KEvent& e) override
    {
        if (e.isEqualOrSubClass(KActionEvent::classRecord))
            see("app handleEvent");
        return 0;
    }
    void doInit() override
    {
        if (onInit)
            onInit();
    }
    int32_t fatalError(const char* title, const char* text) override
    {
        std::fprintf(stderr, "rescue offered: %s / %s\n", title, text);
        return 1;
    }

    std::vector<std::string> received;
    std::function<void()> onInit;

private:
    KEventReturn note(const std::string& what, KEventReturn answer)
    {
        see(what);
        return answer;
    }
};

// A window that notes its mouse and key events; the answers are settable.
class RecordingWindow : public KWindow {
    K_DECLARE_CLASS(RecordingWindow)
public:
    KEventReturn doMouseEnter(KMouseEvent&) override { return note("enter", 0); }
    KEventReturn doMouseLeave(KMouseEvent&) override { return note("leave", 0); }
    KEventReturn doMouseDown(KMouseEvent& e) override { return note("down " + pointText(e.getLocal()), downAnswer); }
    KEventReturn doMouseMoved(KMouseEvent& e) override { return note("moved " + pointText(e.getLocal()), 0); }
    KEventReturn doMouseUp(KMouseEvent& e) override { return note("up " + pointText(e.getLocal()), 0); }
    KEventReturn doKeyDown(KKeyEvent& e) override { return note("key " + std::to_string(e.getKeyCode()), keyAnswer); }
    KEventReturn doAction(KActionEvent&) override { return note("action", 0); }
    KEventReturn doControlAction(KControlActionEvent&) override { return note("control action", 0); }

    std::string name = "window";
    KEventReturn downAnswer = 0;
    KEventReturn keyAnswer = 0;

private:
    KEventReturn note(const std::string& what, KEventReturn answer)
    {
        see(name + " " + what);
        return answer;
    }
};

// A layer that notes its mouse events; it covers its rectangle, or the
// whole window when it has none.
class RecordingLayer : public KLayer {
public:
    explicit RecordingLayer(std::string layerName)
        : name(std::move(layerName))
    {
    }
    KEventReturn doMouseEnter(KMouseEvent&) override { return note("enter", 0); }
    KEventReturn doMouseLeave(KMouseEvent&) override { return note("leave", 0); }
    KEventReturn doMouseDown(KMouseEvent& e) override { return note("down " + pointText(e.getLocal()), downAnswer); }
    KEventReturn doMouseMoved(KMouseEvent& e) override { return note("moved " + pointText(e.getLocal()), 0); }
    KEventReturn doMouseUp(KMouseEvent& e) override { return note("up " + pointText(e.getLocal()), 0); }
    KEventReturn doAction(KActionEvent&) override { return note("action", 0); }
    KEventReturn doEvent(KEvent&) override { return note("event", 0); }

    std::string name;
    KEventReturn downAnswer = 0;

private:
    KEventReturn note(const std::string& what, KEventReturn answer)
    {
        see(name + " " + what);
        return answer;
    }
};

// A drawn control that notes what reaches it.
class RecordingControl : public KControl {
public:
    RecordingControl(std::string controlName, const KWideRectangle& bounds)
        : name(std::move(controlName))
    {
        setPosition(bounds.getOrigin());
        setSize(bounds.getSize());
    }
    KEventReturn doMouseEnter(KMouseEvent&) override { return note("enter", 0); }
    KEventReturn doMouseLeave(KMouseEvent&) override { return note("leave", 0); }
    KEventReturn doMouseDown(KMouseEvent& e) override { return note("down " + pointText(e.getLocal()), downAnswer); }
    KEventReturn doMouseMoved(KMouseEvent& e) override { return note("moved " + pointText(e.getLocal()), 0); }
    KEventReturn doMouseUp(KMouseEvent& e) override { return note("up " + pointText(e.getLocal()), 0); }
    KEventReturn doAction(KActionEvent&) override { return note("action", 0); }
    KEventReturn doControlAction(KControlActionEvent&) override { return note("control action", 0); }
    KEventReturn doKeyDown(KKeyEvent& e) override { return note("key " + std::to_string(e.getKeyCode()), keyAnswer); }

    std::string name;
    KEventReturn downAnswer = 0;
    KEventReturn keyAnswer = 0;

private:
    KEventReturn note(const std::string& what, KEventReturn answer)
    {
        see(name + " " + what);
        return answer;
    }
};

// Runs a step when its timer fires.
class Step : public KThing {
public:
    explicit Step(std::function<void()> action)
        : action(std::move(action))
    {
    }
    void timerFired(KTimer&) override { action(); }

private:
    std::function<void()> action;
};

// A timer that runs the action once after the delay; keep the result alive.
struct Scheduled {
    KPtr<Step> step;
    KTimerPtr timer;
};

inline Scheduled schedule(int32_t milliseconds, std::function<void()> action)
{
    Scheduled scheduled { new Step(std::move(action)), new KTimer() };
    scheduled.timer->setInterval(milliseconds);
    scheduled.timer->setTarget(scheduled.step.get());
    scheduled.timer->start();
    return scheduled;
}

// Steps run by scripted native records, the way a user's input would run
// them: unlike a timer's, a step may run a nested loop (a modal dialog)
// that fires timers and delivers the next steps.
inline std::vector<std::function<void()>>& scriptedSteps()
{
    static std::vector<std::function<void()>> steps;
    return steps;
}

constexpr int32_t kStepMessage = 0x7F00;

inline KEventReturn runScriptedStep(const KNativeRecord& record)
{
    if (record.message != kStepMessage)
        return 0;
    auto step = scriptedSteps().at(size_t(record.param1));
    step();
    return 1;
}

// Ends a loop that runs too long: fails the test and closes every window,
// which ends any modal loop.
class ModalWatchdog : public KThing {
public:
    explicit ModalWatchdog(int32_t milliseconds)
        : timer(new KTimer())
    {
        timer->setInterval(milliseconds);
        timer->setTarget(this);
        timer->start();
    }
    ~ModalWatchdog() override { timer->stop(); }
    void timerFired(KTimer&) override
    {
        ADD_FAILURE() << "a modal loop ran past its watchdog";
        if (KWindowManager* manager = KWindowManager::current())
            manager->closeAll();
        if (KApplication* application = KApplication::current())
            application->clearAppFlags(KApplication::Running);
    }

private:
    KTimerPtr timer;
};

// A fake layer, an application with the framework's services, a window
// manager and the cursor and keyboard managers.
class FrameworkTest : public FakeLayerTest {
protected:
    void SetUp() override
    {
        FakeLayerTest::SetUp();
        scriptedSteps().clear();
        if (!KClass::hasClass("RecordingWindow"))
            RecordingWindow::registerClass();
        seen().clear();
        KCursorManager::resetClickHistory();
        app = new RecordingApp();
        manager = new KWindowManager();
        cursor = new KCursorManager();
        keyboard = new KKeyboardManager();
    }
    void TearDown() override
    {
        if (manager)
            manager->closeAll();
        keyboard.clear();
        cursor.clear();
        manager.clear();
        app.clear();
        FakeLayerTest::TearDown();
    }

    KPtr<RecordingWindow> openWindow(const std::string& name, const KGraphicRectangle& bounds,
                                     KWindow::OpenMode mode = KWindow::Normal)
    {
        KPtr<RecordingWindow> window(new RecordingWindow());
        window->name = name;
        window->setBounds(bounds);
        window->open(mode);
        processQueue();
        return window;
    }

    // Runs the step when the loop reaches the layer's clock plus the delay.
    void scriptStep(uint32_t delay, std::function<void()> step)
    {
        kServices().nativeMessage = &runScriptedStep;
        scriptedSteps().push_back(std::move(step));
        KNativeRecord r = record(kStepMessage, nullptr, int32_t(scriptedSteps().size() - 1));
        layer.scriptAt(layer.now() + delay, r);
    }

    const KFakeNativeLayer::Window& native(KWindow& window) { return *layer.windowOf(window.getNativeWindow()); }

    // A mouse record at a point of the window (client terms); its screen
    // position follows from the window's place.
    void mouse(KWindow& window, int32_t message, int32_t keys, int32_t x, int32_t y)
    {
        KNativeRecord r = record(message, &window, keys, kPackPoint(x, y));
        r.x = window.getClientBounds().x + x;
        r.y = window.getClientBounds().y + y;
        r.time = layer.now();
        kksDeliverNativeRecord(r);
    }

    KPtr<RecordingApp> app;
    KPtr<KWindowManager> manager;
    KPtr<KCursorManager> cursor;
    KPtr<KKeyboardManager> keyboard;
};
