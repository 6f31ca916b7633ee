#pragma once

#include "app/MainPreferences.h"
#include "app/StylusModes.h"
#include "app/TextDefaults.h"
#include "graphics/KGraphicRectangle.h"
#include "kernel/KDirectory.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KMultimediaForward.h"
#include "project/ProjectForward.h"
#include "windowing/KApplication.h"
#include "windowing/KWindowingForward.h"

#include <cstdint>
#include <memory>

class ToolPalette;
class NavigationPalette;
class StylusActions;
class ActorEditor;
class StylusClipboard;
class StylusWindow;
class RecoveryCopy;
class StylusPreviews;
class UndoHistory;
class StylusPrinting;
class PlayerWaitAnswer;
class StateFile;
class StylusMenuBar;

// TaleLoom's application object: the start-up and exit sequences, the
// preferences, the document folder, the file types, the command line and
// the program's answers to the framework's events (open a document, print
// it, quit). The project itself belongs to StylusActions.
class StylusApplication : public KApplication {
    K_DECLARE_CLASS(StylusApplication)
public:
    // The splash stays at least this long.
    static constexpr int32_t kSplashMinimum = 2000;
    // Free memory an operation must leave, beyond what it asks for.
    static constexpr int64_t kMemoryReserve = 262144;

    StylusApplication();
    ~StylusApplication() override;

    static StylusApplication* current();
    // Registers the program's own classes after the framework's.
    static void registerClasses();

    void doInit() override;
    void doExit() override;
    KEventReturn doOpenDocument(KApplicationEvent& event) override;
    KEventReturn doPrintDocument(KApplicationEvent& event) override;
    KEventReturn doPrintPage(KGraphicDevice& device, const KGraphicRectangle& printable, int32_t page) override;
    KEventReturn doQuit(KApplicationEvent& event) override;
    KEventReturn doDeactivate(KApplicationEvent& event) override;
    // Another program copied something: Paste may have become possible.
    KEventReturn doClipboardChanged(KApplicationEvent& event) override;
    KEventReturn doHelp(KMenuEvent& event) override;
    KEventReturn doAbout(KMenuEvent& event) override;
    int32_t fatalError(const char* title, const char* text) override;
    // A format change (a "KFormatEvent" of type 8): each value it carries
    // goes to the main window's open edit field, and always becomes the
    // default for new text.
    KEventReturn handleEvent(KEvent& event) override;

    ToolPalette* getToolPalette() const;
    NavigationPalette* getNavigationPalette() const;
    StylusActions* getActions() const;
    StylusMenuBar* getStylusMenuBar() const;
    // Builds the menus in the present language and puts them on the main
    // window: at the start, and again when the language changes.
    void installMenuBar(StylusWindow& window);
    // The open story; never null after the start.
    StylusProject* getProject() const;

    // --- Preferences -------------------------------------------------------------
    const MainPreferences& getPreferences() const { return preferences; }
    MainPreferences& editPreferences() { return preferences; }
    void readPreferences();
    void writePreferences();
    const KDirectory& getDocumentFolder() const { return documentFolder; }
    KGraphicSize newDocumentPageSize() const;
    // The run's screen form: the preference, or a switch of the command line.
    ScreenMode getScreenMode() const { return screenMode; }

    // --- Text ----------------------------------------------------------------------
    // What a new text starts with.
    const TextDefaults& getTextDefaults() const { return textDefaults; }
    TextDefaults& editTextDefaults() { return textDefaults; }
    // The text format menu; its items are enabled only while a text is
    // being edited.
    KTextFormatMenu* getFormatMenu() const;

    // --- Screen ------------------------------------------------------------------
    void setFullScreen(bool fullScreen);
    bool isFullScreen() const { return fullScreen; }

    // --- Warnings and checks ------------------------------------------------------
    void showAboutDialog();
    // True, after an alert, when less than `requested` bytes and the reserve
    // are free: the caller drops what it was going to do.
    bool checkMemory(int64_t requested);
    // The free memory as the system tells it, or -1.
    static int64_t availableMemory();

    bool isPlayOnOpen() const { return playOnOpen; }
    bool isQuitAfterPlay() const { return quitAfterPlay; }
    RecoveryCopy* getRecovery() const { return recovery.get(); }
    StylusPreviews* getPreviews() const { return previews.get(); }
    StylusPrinting* getPrinting() const { return printing.get(); }
    // The program's version, "MAJOR.MINOR.RELEASE".
    static const char* versionText();
    // Offers the unsaved work of an earlier run back, one copy after the
    // other; true when one was reopened.
    bool offerRecovery();
    // Writes the program's description for tests and bug reports, when
    // TALELOOM_STATE_FILE names a file.
    void writeStateFile();

protected:
    // Opens the start-up question after the first loop turn, over the
    // window that is up by then.
    virtual void scheduleStartupDialog();

private:
    void registerFileTypes();
    static void setMenuHooks(StylusMenuBar& bar);
    void applyLanguage();
    void settleDocumentFolder();
    void startMediaManager();
    void readCommandLine();
    void takePlayerSettings();
    void openPlayerDocument();
    void showUntitled();
    void waitForSplash(uint32_t startedAt);
    bool openDocumentFile(const KString& path, bool print);

    MainPreferences preferences;
    std::unique_ptr<MainPreferencesStore> preferenceStore;
    KDirectory documentFolder;
    ScreenMode screenMode = ScreenMode::Window;
    bool fullScreen = false;
    bool playOnOpen = false;
    bool quitAfterPlay = false;
    bool documentGiven = false;
    KGraphicRectangle windowBounds;
    KPtr<ToolPalette> toolPalette;
    KPtr<NavigationPalette> navigationPalette;
    KPtr<StylusActions> actions;
    KPtr<ActorEditor> actorEditor;
    KPtr<StylusClipboard> clipboard;
    std::unique_ptr<UndoHistory> history;
    KPtr<StylusMenuBar> menuBar;
    KMediaManagerPtr mediaManager;
    KTextFormatMenuPtr formatMenu;
    TextDefaults textDefaults;
    KSpeechExceptionHandlerPtr speechExceptions;
    std::unique_ptr<RecoveryCopy> recovery;
    std::unique_ptr<StateFile> stateFile;
    std::unique_ptr<StylusPreviews> previews;
    std::unique_ptr<StylusPrinting> printing;
    KPtr<PlayerWaitAnswer> waitAnswer;
};
