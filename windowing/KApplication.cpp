#include "windowing/KApplication.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileTypeHandler.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KCommandLine.h"
#include "windowing/KEvent.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KMailslot.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowManager.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/KWindowingServices.h"

#include <string>

namespace {

KApplication* gApplication = nullptr;
bool gSplashRequest = false;
const char* gWindowManagerClassName = "KWindowManager";
// The window manager that createWindowManager made.
KThingPtr gWindowManagerHolder;

int32_t applicationFatalError(const char* location, const char* text)
{
    KApplication* application = KApplication::current();
    return application ? application->fatalError(location, text) : 0;
}

void callIfSet(void (*proc)())
{
    if (proc)
        proc();
}

} // namespace

K_DEFINE_CLASS(KApplication, KThing)

KApplication::KApplication()
{
    KApplication* previous = gApplication;
    gApplication = this;
    if (previous && previous->isOnHeap() && previous->getReferenceCount() == 1)
        delete previous;
    name = "KApplication";
    buildDate = __DATE__;
    kRegisterWindowingClasses();
    kRegisterFrameworkFileTypes();
    kInstallWindowingServices();
    KErrorHandler::setFatalProc(&applicationFatalError);
    clearQueue();
    kksResetTranslator();
    setVersion(1, 0, 0);
}

KApplication::~KApplication()
{
    state = Destroyed;
    if (gApplication == this) {
        gApplication = nullptr;
        clearQueue();
        closeMailslot();
    }
}

KApplication* KApplication::current() { return gApplication; }

const KString& KApplication::getName() const { return name; }

// The name is also the name of the program's message slot.
void KApplication::setName(const KString& text)
{
    name = text;
    setMailslotName(name);
}

// Start, loop, shut-down. Each step depends on the ones before it: the main
// window needs the window manager, doInit needs the managers, and shut-down
// undoes them in the reverse order.
void KApplication::run(const char* mainWindowClassName, int32_t argumentCount, const char* const* arguments)
{
    if (argumentCount > 1 && arguments)
        setCommandLine(KCommandLine::join(argumentCount - 1, arguments + 1));
    parseCommandLine();
    callIfSet(kServices().createLocalizer);
    createWindowManager(KClass::findClass(gWindowManagerClassName));
    createMainWindow(KClass::findClass(mainWindowClassName));
    if (gSplashRequest)
        openSplash();
    startManagers();
    importClipboardAtStart();

    setAppFlags(Active);
    setState(Initialising);
    doInit();
    closeSplash();
    callIfSet(kServices().showNormalCursor);

    setAppFlags(Running);
    setState(Turning);
    while (hasAppFlags(Running))
        doOneLoop();
    shutDown();
}

void KApplication::startManagers()
{
    KTimerManager::get();
    for (auto& manager : kServices().managers)
        callIfSet(manager.create);
}

void KApplication::stopManagers()
{
    auto& managers = kServices().managers;
    for (int32_t i = KServices::ManagerCount - 1; i >= 0; --i)
        callIfSet(managers[i].destroy);
    KTimerManager::destroy();
}

void KApplication::importClipboardAtStart()
{
    auto importClipboard = kServices().importClipboard;
    if (!importClipboard || !importClipboard())
        return;
    post(new KApplicationEvent(KApplicationEvent::ClipboardChanged));
    processQueue();
}

void KApplication::shutDown()
{
    setState(Exiting);
    doExit();
    setState(Exited);
    callIfSet(kServices().exportClipboard);
    callIfSet(kServices().releaseKeyboard);
    if (KWindowManager* manager = KWindowManager::current())
        manager->closeAll();
    callIfSet(kServices().freeNativeCaches);
    idlers.clear();
    stopManagers();
    closeMainWindow();
    gWindowManagerHolder.clear();
    callIfSet(kServices().destroyLocalizer);
}

void KApplication::setState(int32_t value)
{
    if (value > state)
        state = value;
}

/*
 * The event loop, one turn at a time.
 *
 * Contract:
 * - A turn takes at most one native message, then runs the whole event
 *   queue (events posted meanwhile included, in posting order), then fires
 *   the due timers, then gives the idle list a pass.
 * - The turn waits for the native message only when nothing else is
 *   pending: it never blocks with events queued, and it waits at most until
 *   the next timer is due (the first millisecond past its interval), the
 *   idle list's next pass (one every kIdlePeriod ms) or, with NeverBlock
 *   set, kNeverBlockWait ms. With none of these it blocks until a native
 *   message or a wake-up arrives, and so costs no CPU time at all.
 * - A deadline nearer than the native layer's minimumWait is polled for.
 * - The quit message clears the Running flag; run() stops after this turn.
 * - Only the loop's own thread runs here. Other threads may only wake it
 *   (KNativeLayer::wakeUp).
 */
void KApplication::doOneLoop()
{
    Wait next = computeWait();
    bool keepRunning = true;
    knsProcessNativeMessage(next.block, keepRunning, next.wait);
    if (!keepRunning)
        clearAppFlags(Running);
    processQueue();
    idleTimers();
    idleIdlers();
}

KApplication::Wait KApplication::computeWait() const
{
    const Wait poll { false, 0 };
    if (queueLength() > 0)
        return poll;
    uint32_t now = knsGetTime();
    bool limited = false;
    int32_t limit = 0;
    auto limitTo = [&](int32_t milliseconds) {
        if (!limited || milliseconds < limit)
            limit = milliseconds;
        limited = true;
    };
    if (hasIdlers()) {
        int32_t sinceLastPass = idlePassDone ? kTimeDifference(now, lastIdlePass) : kIdlePeriod;
        int32_t left = kIdlePeriod - sinceLastPass;
        if (left <= 0)
            return poll;
        limitTo(left);
    }
    if (hasAppFlags(NeverBlock))
        limitTo(kNeverBlockWait);
    KTimerManager* timers = KTimerManager::current();
    if (timers && timers->hasTimers()) {
        int32_t untilDeadline = kTimeDifference(timers->getNextDeadline(), now);
        KNativeLayer* layer = KNativeLayer::current();
        int32_t minimumWait = layer ? layer->minimumWait() : 0;
        if (untilDeadline < minimumWait)
            return poll;
        // A timer is due only once more than its interval has passed.
        limitTo(untilDeadline + 1);
    }
    return Wait { true, limited ? limit : 0 };
}

void KApplication::idleTimers()
{
    KTimerManager* manager = KTimerManager::current();
    if (!manager || manager->testFlagBits(kBusyFlag))
        return;
    KTimerManagerPtr held(manager);
    manager->setFlagBits(kBusyFlag);
    manager->idle();
    manager->clearFlagBits(kBusyFlag);
}

// An idler may add or remove idlers, or run a nested loop; the busy flag
// keeps a nested pass from entering it again.
void KApplication::idleIdlers()
{
    if (idlers.empty())
        return;
    uint32_t now = knsGetTime();
    if (idlePassDone && kTimeDifference(now, lastIdlePass) < kIdlePeriod)
        return;
    idlePassDone = true;
    lastIdlePass = now;
    for (size_t index = 0; index < idlers.size(); ++index) {
        KThingPtr idler = idlers[index];
        if (idler.get()->testFlagBits(kBusyFlag))
            continue;
        idler.get()->setFlagBits(kBusyFlag);
        idler.get()->idle();
        idler.get()->clearFlagBits(kBusyFlag);
    }
}

void KApplication::createWindowManager(KClass* windowManagerClass)
{
    if (KWindowManager::current()) {
        KErrorHandler::raiseError(KError::DuplicateWindowManager);
        return;
    }
    if (!windowManagerClass)
        return;
    KThing* manager = windowManagerClass->createObject();
    if (!manager || !manager->isEqualOrSubClass(KWindowManager::classRecord)) {
        KErrorHandler::raiseError(KError::ParameterError);
        if (manager)
            delete manager;
        return;
    }
    gWindowManagerHolder = manager;
}

void KApplication::createMainWindow(KClass* mainWindowClass)
{
    if (mainWindow) {
        KErrorHandler::raiseError(KError::DuplicateMainWindow);
        closeMainWindow();
    }
    if (!mainWindowClass)
        return;
    KThing* created = mainWindowClass->createObject();
    if (!created || !created->isEqualOrSubClass(KWindow::classRecord)) {
        KErrorHandler::raiseError(KError::NoMainWindow);
        if (created)
            delete created;
        return;
    }
    auto* window = static_cast<KWindow*>(created);
    mainWindow = window;
    window->setMainWindow(true);
    window->open(KWindow::Hidden);
}

void KApplication::closeMainWindow()
{
    if (!mainWindow)
        return;
    KWindowPtr window = mainWindow;
    mainWindow.clear();
    window->close();
}

KWindow* KApplication::getMainWindow() const { return mainWindow.get(); }

bool KApplication::isIdler(const KThing& idler) const
{
    for (auto& held : idlers) {
        if (held.get() == &idler)
            return true;
    }
    return false;
}

bool KApplication::addIdler(KThing& idler)
{
    if (isIdler(idler))
        return false;
    idlers.emplace_back(&idler);
    return true;
}

bool KApplication::removeIdler(KThing& idler)
{
    for (auto it = idlers.begin(); it != idlers.end(); ++it) {
        if (it->get() == &idler) {
            KThingPtr held = *it;
            idlers.erase(it);
            return true;
        }
    }
    return false;
}

void KApplication::postQuit() { KNativeLayer::get().postQuit(0); }

void KApplication::requestQuit() { post(new KApplicationEvent(KApplicationEvent::QuitRequest)); }

void KApplication::setSplashText(const KString& text) { splashText = text; }

void KApplication::openSplash() { setAppFlags(SplashOpen); }

void KApplication::closeSplash() { clearAppFlags(SplashOpen); }

void KApplication::setSplashRequest(bool requested) { gSplashRequest = requested; }

void KApplication::setVersion(int16_t major, int16_t minor, int16_t release)
{
    versionMajor = major;
    versionMinor = minor;
    versionRelease = release;
}

KString KApplication::getVersionText() const
{
    std::string text
        = std::to_string(versionMajor) + "." + std::to_string(versionMinor) + "." + std::to_string(versionRelease);
    return KString(text.c_str());
}

void KApplication::setCommandLine(const KString& line) { commandLine = line; }

void KApplication::parseCommandLine()
{
    fileArguments.clear();
    optionArguments.clear();
    KCommandLine::parse(commandLine, fileArguments, optionArguments);
}

void KApplication::setWindowManagerClassName(const char* className) { gWindowManagerClassName = className; }

KEventReturn KApplication::doAbout(KMenuEvent&)
{
    KString text = name + "\n" + buildDate;
    KErrorHandler::showMessage(text.c_str(), name.c_str(), KErrorHandler::kNoticeBoxFlags);
    return 1;
}

KEventReturn KApplication::doHelp(KMenuEvent&) { return 0; }
KEventReturn KApplication::doMenuBar(KMenuEvent&) { return 0; }
KEventReturn KApplication::doMenuItem(KMenuEvent&) { return 0; }
KEventReturn KApplication::doMenuOpen(KMenuEvent&) { return 0; }
KEventReturn KApplication::doCustomMenuItem(KMenuEvent&) { return 0; }
KEventReturn KApplication::doMouseEnter(KMouseEvent&) { return 0; }
KEventReturn KApplication::doMouseLeave(KMouseEvent&) { return 0; }
KEventReturn KApplication::doMouseDown(KMouseEvent&) { return 0; }
KEventReturn KApplication::doMouseMoved(KMouseEvent&) { return 0; }
KEventReturn KApplication::doMouseOther(KMouseEvent&) { return 0; }
KEventReturn KApplication::doMouseUp(KMouseEvent&) { return 0; }
KEventReturn KApplication::doKeyDown(KKeyEvent&) { return 0; }
KEventReturn KApplication::doKeyUp(KKeyEvent&) { return 0; }
KEventReturn KApplication::doKeyRepeat(KKeyEvent&) { return 0; }
KEventReturn KApplication::doWindowPaint(KWindowEvent&) { return 0; }
KEventReturn KApplication::doWindowClose(KWindowEvent&) { return 2; }
KEventReturn KApplication::doWindowMoved(KWindowEvent&) { return 0; }
KEventReturn KApplication::doWindowResized(KWindowEvent&) { return 0; }
KEventReturn KApplication::doWindowActivated(KWindowEvent&) { return 0; }
KEventReturn KApplication::doWindowDeactivated(KWindowEvent&) { return 0; }
KEventReturn KApplication::doAction(KActionEvent&) { return 0; }
KEventReturn KApplication::doControlAction(KControlActionEvent&) { return 0; }
KEventReturn KApplication::doDeactivate(KApplicationEvent&) { return 0; }
KEventReturn KApplication::doActivate(KApplicationEvent&) { return 0; }
KEventReturn KApplication::doOpenDocument(KApplicationEvent&) { return 0; }
KEventReturn KApplication::doPrintDocument(KApplicationEvent&) { return 0; }
KEventReturn KApplication::doPrintPage(KGraphicDevice&, const KGraphicRectangle&, int32_t) { return 0; }
KEventReturn KApplication::doQuit(KApplicationEvent&) { return 2; }
KEventReturn KApplication::doClipboardChanged(KApplicationEvent&) { return 0; }
KEventReturn KApplication::doDataReceived(KApplicationEvent&) { return 0; }
void KApplication::doInit() { }
void KApplication::doExit() { }
int32_t KApplication::fatalError(const char*, const char*) { return 0; }
