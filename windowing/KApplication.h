#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "windowing/KWindowingForward.h"

#include <vector>

// The program's one application object. It parses the command line, builds
// the window manager, the main window and the managers, turns the event
// loop until the quit message arrives, and takes everything down again in
// the reverse order. A new instance replaces the previous one.
class KApplication : public KThing {
    K_DECLARE_CLASS(KApplication)
public:
    enum Flag : int32_t {
        Running = 1,
        Active = 2,
        SplashOpen = 4,
        ToolTips = 8,
        NeverBlock = 16,
    };
    enum State : int32_t {
        Constructed = 0,
        Initialising = 1,
        Turning = 2,
        Exiting = 3,
        Exited = 4,
        Destroyed = 5,
    };

    // The idle list is given a pass at most this often.
    static constexpr int32_t kIdlePeriod = 5;
    // With NeverBlock set the loop still waits this long for a message.
    static constexpr int32_t kNeverBlockWait = 10;

    KApplication();
    ~KApplication() override;

    static KApplication* current();

    virtual const KString& getName() const;
    virtual void setName(const KString& name);

    // Runs the program with the main window of the class named; the
    // arguments are the process's, the program's own name first.
    virtual void run(const char* mainWindowClassName, int32_t argumentCount, const char* const* arguments);

    virtual KEventReturn doAbout(KMenuEvent& event);
    virtual KEventReturn doHelp(KMenuEvent& event);
    virtual KEventReturn doMenuBar(KMenuEvent& event);
    virtual KEventReturn doMenuItem(KMenuEvent& event);
    virtual KEventReturn doMenuOpen(KMenuEvent& event);
    virtual KEventReturn doCustomMenuItem(KMenuEvent& event);
    virtual KEventReturn doMouseEnter(KMouseEvent& event);
    virtual KEventReturn doMouseLeave(KMouseEvent& event);
    virtual KEventReturn doMouseDown(KMouseEvent& event);
    virtual KEventReturn doMouseMoved(KMouseEvent& event);
    virtual KEventReturn doMouseOther(KMouseEvent& event);
    virtual KEventReturn doMouseUp(KMouseEvent& event);
    virtual KEventReturn doKeyDown(KKeyEvent& event);
    virtual KEventReturn doKeyUp(KKeyEvent& event);
    virtual KEventReturn doKeyRepeat(KKeyEvent& event);
    virtual KEventReturn doWindowPaint(KWindowEvent& event);
    virtual KEventReturn doWindowClose(KWindowEvent& event);
    virtual KEventReturn doWindowMoved(KWindowEvent& event);
    virtual KEventReturn doWindowResized(KWindowEvent& event);
    virtual KEventReturn doWindowActivated(KWindowEvent& event);
    virtual KEventReturn doWindowDeactivated(KWindowEvent& event);
    virtual KEventReturn doAction(KActionEvent& event);
    virtual KEventReturn doControlAction(KControlActionEvent& event);
    virtual KEventReturn doDeactivate(KApplicationEvent& event);
    virtual KEventReturn doActivate(KApplicationEvent& event);
    virtual KEventReturn doOpenDocument(KApplicationEvent& event);
    virtual KEventReturn doPrintDocument(KApplicationEvent& event);
    // A print job's sheet `page` (from 1) on the printer's device, inside
    // the printable rectangle.
    virtual KEventReturn doPrintPage(KGraphicDevice& device, const KGraphicRectangle& printable, int32_t page);
    virtual KEventReturn doQuit(KApplicationEvent& event);
    virtual KEventReturn doClipboardChanged(KApplicationEvent& event);
    virtual KEventReturn doDataReceived(KApplicationEvent& event);
    virtual void doInit();
    virtual void doExit();
    // The rescue hook of a fatal error; non-zero when the user has been
    // shown a message.
    virtual int32_t fatalError(const char* title, const char* text);

    // One turn of the event loop.
    void doOneLoop();

    // How the next turn waits for native messages: `block` with a limit of
    // `wait` milliseconds, 0 meaning none.
    struct Wait {
        bool block = false;
        int32_t wait = 0;
    };
    Wait computeWait() const;

    void createWindowManager(KClass* windowManagerClass);
    void createMainWindow(KClass* mainWindowClass);
    void closeMainWindow();
    KWindow* getMainWindow() const;

    // The idle list: each object once, given `idle()` on the loop's passes.
    bool addIdler(KThing& idler);
    bool removeIdler(KThing& idler);
    bool hasIdlers() const { return !idlers.empty(); }
    bool isIdler(const KThing& idler) const;

    void postQuit();
    // Posts a quit request, the path for anything that wants to quit from
    // inside a handler.
    void requestQuit();

    void setSplashText(const KString& text);
    void openSplash();
    void closeSplash();
    // Set before run() to have the splash shown during start-up.
    static void setSplashRequest(bool requested);

    void setVersion(int16_t major, int16_t minor, int16_t release);
    KString getVersionText() const;
    const KString& getBuildDate() const { return buildDate; }

    void setAppFlags(int32_t bits) { applicationFlags |= bits; }
    void clearAppFlags(int32_t bits) { applicationFlags &= ~bits; }
    bool hasAppFlags(int32_t bits) const { return (applicationFlags & bits) == bits; }
    int32_t getState() const { return state; }

    void setCommandLine(const KString& line);
    const KString& getCommandLine() const { return commandLine; }
    void parseCommandLine();
    const std::vector<KString>& getFileArguments() const { return fileArguments; }
    const std::vector<KString>& getOptionArguments() const { return optionArguments; }

    // The window manager class that run() creates; knsEnterKernel records
    // the framework's own.
    static void setWindowManagerClassName(const char* name);

private:
    void startManagers();
    void stopManagers();
    void importClipboardAtStart();
    void shutDown();
    void idleTimers();
    void idleIdlers();
    void setState(int32_t value);

    KThingPtr slot;
    int32_t applicationFlags = 0;
    int32_t state = Constructed;
    std::vector<KThingPtr> idlers;
    KString name;
    KString buildDate;
    KWindowPtr mainWindow;
    KString commandLine;
    std::vector<KString> fileArguments;
    std::vector<KString> optionArguments;
    KThingPtr localizer;
    int16_t versionMajor = 1;
    int16_t versionMinor = 0;
    int16_t versionRelease = 0;
    KString splashText;
    uint32_t lastIdlePass = 0;
    bool idlePassDone = false;
};
