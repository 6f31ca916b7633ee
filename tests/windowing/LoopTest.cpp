#include "WindowingTestSupport.h"

#include "tests/support/TestSupport.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowEvent.h"
#include "windowing/KWindowManager.h"

#include <cstdio>

namespace {

std::vector<std::string>& journal()
{
    static std::vector<std::string> entries;
    return entries;
}

void note(const std::string& entry) { journal().push_back(entry); }

class LoopApp : public KApplication {
public:
    void doInit() override
    {
        note("doInit " + std::to_string(getState()));
        if (onInit)
            onInit(*this);
    }
    void doExit() override { note("doExit " + std::to_string(getState())); }
    KEventReturn doQuit(KApplicationEvent&) override
    {
        note("doQuit " + std::to_string(getState()));
        return quitAnswer;
    }
    int32_t fatalError(const char* title, const char* text) override
    {
        std::fprintf(stderr, "rescue offered: %s / %s\n", title, text);
        return 1;
    }

    KEventReturn quitAnswer = 2;
    void (*onInit)(LoopApp& application) = nullptr;
};

// The main window of these tests; it notes its close.
class LoopWindow : public KWindow {
    K_DECLARE_CLASS(LoopWindow)
public:
    void close() override
    {
        if (isOpen())
            note("close window");
        KWindow::close();
    }
};
K_DEFINE_CLASS(LoopWindow, KWindow)

// Records the order in which events are processed.
class ChainEvent : public KEvent {
public:
    ChainEvent(std::string eventName, std::vector<KEvent*> followers = {})
        : KEvent(1)
        , name(std::move(eventName))
        , posts(std::move(followers))
    {
    }
    KEventReturn process() override
    {
        note(name);
        for (KEvent* follower : posts)
            post(follower);
        return 1;
    }

private:
    std::string name;
    std::vector<KEvent*> posts;
};

class CountingIdler : public KThing {
public:
    void idle() override
    {
        ++calls;
        if (nested)
            KApplication::current()->doOneLoop();
    }
    int calls = 0;
    bool nested = false;
};

class LoopTest : public FakeLayerTest {
protected:
    void SetUp() override
    {
        FakeLayerTest::SetUp();
        journal().clear();
        if (!LoopWindow::classRecord || !KClass::hasClass("LoopWindow"))
            LoopWindow::registerClass();
        app = new LoopApp();
    }
    void TearDown() override
    {
        app.clear();
        FakeLayerTest::TearDown();
    }
    void runApp(std::vector<const char*> arguments = { "taleloom" })
    {
        app->run("LoopWindow", static_cast<int32_t>(arguments.size()), arguments.data());
    }

    KPtr<LoopApp> app;
};

TEST_F(LoopTest, WaitFollowsQueueIdlersFlagAndTimers)
{
    // Nothing to do: block without limit.
    KApplication::Wait wait = app->computeWait();
    EXPECT_TRUE(wait.block);
    EXPECT_EQ(wait.wait, 0);

    // An event in the queue: poll.
    post(new ChainEvent("queued"));
    EXPECT_FALSE(app->computeWait().block);
    clearQueue();

    // A timer: wait until the first millisecond it is due.
    CountingTarget target;
    KTimerPtr timer(new KTimer());
    timer->setInterval(30);
    timer->setTarget(&target);
    timer->start();
    wait = app->computeWait();
    EXPECT_TRUE(wait.block);
    EXPECT_EQ(wait.wait, 31);
    // Closer than the layer's minimum wait: poll.
    layer.advance(25);
    EXPECT_FALSE(app->computeWait().block);
    layer.setMinimumWait(0);
    EXPECT_TRUE(app->computeWait().block);
    EXPECT_EQ(app->computeWait().wait, 6);
    layer.setMinimumWait(6);

    // The NeverBlock flag: wait a short while at most.
    timer->stop();
    app->setAppFlags(KApplication::NeverBlock);
    wait = app->computeWait();
    EXPECT_TRUE(wait.block);
    EXPECT_EQ(wait.wait, KApplication::kNeverBlockWait);
    app->clearAppFlags(KApplication::NeverBlock);

    // Idlers: poll when a pass is due, otherwise wait for the next pass.
    KPtr<CountingIdler> held(new CountingIdler());
    app->addIdler(*held);
    EXPECT_FALSE(app->computeWait().block);
    app->doOneLoop();
    EXPECT_EQ(held->calls, 1);
    wait = app->computeWait();
    EXPECT_TRUE(wait.block);
    EXPECT_GT(wait.wait, 0);
    EXPECT_LE(wait.wait, KApplication::kIdlePeriod);
    layer.advance(KApplication::kIdlePeriod);
    EXPECT_FALSE(app->computeWait().block);
}

TEST_F(LoopTest, LoopTurnsHandOverTheDecisionAndFireTimers)
{
    CountingTarget target;
    KTimerPtr timer(new KTimer());
    timer->setInterval(40);
    timer->setRepeat(true);
    timer->setTarget(&target);
    timer->start();
    for (int i = 0; i < 3; ++i)
        app->doOneLoop();
    // Each turn waited for the timer and the timer fired right after.
    ASSERT_EQ(layer.turns().size(), 3u);
    for (auto& turn : layer.turns()) {
        EXPECT_TRUE(turn.block);
        EXPECT_EQ(turn.wait, 41);
    }
    EXPECT_EQ(target.fired, 3);

    // Stopping the last timer takes the manager off the idle list, and
    // the next turn blocks without limit.
    app->addIdler(KTimerManager::get());
    timer->stop();
    EXPECT_FALSE(app->isIdler(KTimerManager::get()));
    layer.clearTurns();
    layer.script(record(KNativeMessage::Null));
    app->doOneLoop();
    ASSERT_EQ(layer.turns().size(), 1u);
    EXPECT_TRUE(layer.turns()[0].block);
    EXPECT_EQ(layer.turns()[0].wait, 0);
}

TEST_F(LoopTest, EventsPostedDuringTheQueueRunInTheSamePassInPostingOrder)
{
    int32_t liveBefore = KEvent::liveEvents();
    auto* d = new ChainEvent("D");
    auto* b = new ChainEvent("B", { d });
    auto* c = new ChainEvent("C");
    post(new ChainEvent("A", { b, c }));
    post(new ChainEvent("E"));
    processQueue();
    EXPECT_EQ(journal(), (std::vector<std::string> { "A", "E", "B", "C", "D" }));
    EXPECT_EQ(queueLength(), 0);
    EXPECT_EQ(KEvent::liveEvents(), liveBefore);

    // processNow takes a fresh event's life with it.
    EXPECT_EQ(processNow(new ChainEvent("now")), 1);
    EXPECT_EQ(KEvent::liveEvents(), liveBefore);
    EXPECT_TRUE(hasPending(KEvent::classRecord) == false);
    post(new KApplicationEvent(KApplicationEvent::OpenDocument));
    EXPECT_TRUE(hasPending(KApplicationEvent::classRecord));
    EXPECT_TRUE(hasPending(KEvent::classRecord, KApplicationEvent::OpenDocument));
    EXPECT_FALSE(hasPending(KApplicationEvent::classRecord, KApplicationEvent::PrintDocument));
}

TEST_F(LoopTest, IdleListHoldsEachObjectOnceAndNeverReentersABusyIdler)
{
    KPtr<CountingIdler> idler(new CountingIdler());
    EXPECT_TRUE(app->addIdler(*idler));
    EXPECT_FALSE(app->addIdler(*idler));
    EXPECT_EQ(idler->getReferenceCount(), 3);

    idler->nested = true;
    app->doOneLoop();
    // The nested turn ran while the idler was busy and did not call it.
    EXPECT_EQ(idler->calls, 1);
    EXPECT_FALSE(idler->testFlagBits(KThing::kBusyFlag));

    // Passes are spaced by the idle period: a turn waits for the next
    // pass, and a native message that ends the wait early gets no pass.
    idler->nested = false;
    layer.clearTurns();
    app->doOneLoop();
    EXPECT_EQ(idler->calls, 2);
    ASSERT_EQ(layer.turns().size(), 1u);
    EXPECT_TRUE(layer.turns()[0].block);
    EXPECT_EQ(layer.turns()[0].wait, KApplication::kIdlePeriod);
    layer.script(record(KNativeMessage::Null));
    app->doOneLoop();
    EXPECT_EQ(idler->calls, 2);

    EXPECT_TRUE(app->removeIdler(*idler));
    EXPECT_FALSE(app->removeIdler(*idler));
    EXPECT_FALSE(app->hasIdlers());
    EXPECT_EQ(idler->getReferenceCount(), 2);
}

// --- run ----------------------------------------------------------------------

void noteCreate(const char* name) { note(std::string("create ") + name); }
void noteDestroy(const char* name) { note(std::string("destroy ") + name); }

void installRecordingServices()
{
    KServices& services = kServices();
    services.createLocalizer = [] { noteCreate("localizer"); };
    services.destroyLocalizer = [] { noteDestroy("localizer"); };
    services.managers[KServices::Menus] = { [] { noteCreate("menus"); }, [] { noteDestroy("menus"); }, nullptr };
    services.managers[KServices::Cursor] = { [] { noteCreate("cursor"); }, [] { noteDestroy("cursor"); }, nullptr };
    services.managers[KServices::Dialogs] = { [] { noteCreate("dialogs"); }, [] { noteDestroy("dialogs"); }, nullptr };
    services.importClipboard = [] {
        note("import clipboard");
        return false;
    };
    services.exportClipboard = [] { note("export clipboard"); };
    services.releaseKeyboard = [] { note("release keyboard"); };
    services.showNormalCursor = [] { note("normal cursor"); };
    services.freeNativeCaches = [] { note("free caches"); };
}

TEST_F(LoopTest, RunStartsAndShutsDownInOrder)
{
    installRecordingServices();
    app->onInit = [](LoopApp& application) {
        EXPECT_TRUE(application.hasAppFlags(KApplication::Active));
        EXPECT_NE(KTimerManager::current(), nullptr);
        ASSERT_NE(application.getMainWindow(), nullptr);
        EXPECT_TRUE(application.getMainWindow()->isOpen());
        EXPECT_FALSE(application.getMainWindow()->isVisible());
        application.requestQuit();
    };
    Watchdog watchdog(60000);
    runApp();
    std::vector<std::string> expected {
        "create localizer", "create menus",      "create cursor", "create dialogs",  "import clipboard",
        "doInit 1",         "normal cursor",     "doQuit 2",      "doExit 3",        "export clipboard",
        "release keyboard", "close window",      "free caches",   "destroy dialogs", "destroy cursor",
        "destroy menus",    "destroy localizer",
    };
    EXPECT_EQ(journal(), expected);
    EXPECT_EQ(app->getState(), KApplication::Exited);
    EXPECT_FALSE(app->hasAppFlags(KApplication::Running));
    EXPECT_EQ(app->getMainWindow(), nullptr);
    EXPECT_EQ(KWindowManager::current(), nullptr);
    EXPECT_EQ(KTimerManager::current(), nullptr);
    EXPECT_EQ(layer.quitCount(), 1);
    EXPECT_EQ(layer.exitCode(), 0);
    // After the exit no native record makes an event any more.
    EXPECT_EQ(kksCreateEvent(record(KNativeMessage::PostedData, nullptr, 0)), nullptr);
    EXPECT_EQ(kksCreateEvent(record(KNativeMessage::ActivateApp, nullptr, 0)), nullptr);
}

TEST_F(LoopTest, ClosingTheMainWindowAsksToQuit)
{
    app->onInit = [](LoopApp& application) {
        application.getMainWindow()->show(true);
        KNativeRecord close;
        close.window = application.getMainWindow();
        close.message = KNativeMessage::Close;
        // Refused first: the window stays open and the loop goes on.
        application.quitAnswer = 3;
        static_cast<KFakeNativeLayer&>(KNativeLayer::get()).scriptAt(KNativeLayer::get().now() + 100, close);
    };
    Watchdog watchdog(60000);
    // The second close request comes after the first was refused.
    struct Agree : KThing {
        void timerFired(KTimer&) override
        {
            auto* application = static_cast<LoopApp*>(KApplication::current());
            EXPECT_TRUE(application->getMainWindow()->isOpen());
            application->quitAnswer = 2;
            KNativeRecord close;
            close.window = application->getMainWindow();
            close.message = KNativeMessage::Close;
            static_cast<KFakeNativeLayer&>(KNativeLayer::get()).script(close);
        }
    } agree;
    KTimerPtr later(new KTimer());
    later->setInterval(500);
    later->setTarget(&agree);
    later->start();
    runApp();
    EXPECT_EQ(journal(), (std::vector<std::string> { "doInit 1", "doQuit 2", "doQuit 2", "close window", "doExit 3" }));
    EXPECT_EQ(layer.quitCount(), 1);
    later->stop();
}

TEST_F(LoopTest, OtherWindowsCloseWithoutAskingTheApplication)
{
    KWindowManager manager;
    KPtr<LoopWindow> window(new LoopWindow());
    window->open(KWindow::Normal);
    ASSERT_TRUE(window->isOpen());
    EXPECT_EQ(manager.getActiveWindow(), window.get());
    // Opening shown posts an activation.
    EXPECT_TRUE(hasPending(KWindowEvent::classRecord, KWindowEvent::Activated));
    processQueue();
    kksDeliverNativeRecord(record(KNativeMessage::Close, window.get()));
    EXPECT_FALSE(window->isOpen());
    EXPECT_EQ(manager.windowCount(), 0);
    EXPECT_EQ(manager.getActiveWindow(), nullptr);
    EXPECT_EQ(journal(), (std::vector<std::string> { "close window" }));
    EXPECT_EQ(layer.quitCount(), 0);
}

TEST_F(LoopTest, RunTakesTheArgumentsAsCommandLine)
{
    app->onInit = [](LoopApp& application) {
        EXPECT_STREQ(application.getCommandLine().c_str(), "-S \"/tmp/My Story.tpd\" /q");
        ASSERT_EQ(application.getFileArguments().size(), 1u);
        EXPECT_STREQ(application.getFileArguments()[0].c_str(), "/tmp/My Story.tpd");
        ASSERT_EQ(application.getOptionArguments().size(), 2u);
        EXPECT_STREQ(application.getOptionArguments()[0].c_str(), "S");
        EXPECT_STREQ(application.getOptionArguments()[1].c_str(), "q");
        application.postQuit();
    };
    runApp({ "taleloom", "-S", "/tmp/My Story.tpd", "/q" });
    EXPECT_EQ(app->getState(), KApplication::Exited);
}

TEST_F(LoopTest, QuitRecordEndsTheLoopWithItsExitCode)
{
    app->onInit = [](LoopApp&) {
        KNativeRecord quit;
        quit.message = KNativeMessage::Quit;
        quit.param1 = 7;
        static_cast<KFakeNativeLayer&>(KNativeLayer::get()).script(quit);
    };
    runApp();
    EXPECT_EQ(layer.exitCode(), 7);
    EXPECT_FALSE(layer.wasStuck());
}

using LoopDeathTest = LoopTest;

TEST_F(LoopDeathTest, FatalErrorGoesThroughTheApplicationsRescue)
{
    EXPECT_FATAL(KErrorHandler::raiseError(KError::NoObject), "rescue offered: .+ / No Object!");
}

} // namespace
