#include "app/StylusApplication.h"
#include "app/PlatformQuestionDialog.h"
#include "app/PlayerMode.h"
#include "app/PlayerWaitAnswer.h"
#include "app/PrintBookDialog.h"
#include "app/PublishDialog.h"
#include "app/StylusPreviews.h"
#include "app/StylusPrinting.h"

#include "app/ActorEditor.h"
#include "app/ActorsMenu.h"
#include "app/AnimMenu.h"
#include "app/AppClasses.h"
#include "app/EditBookmarkDialog.h"
#include "app/EditMenu.h"
#include "app/EditSequenceParametersDialog.h"
#include "app/ElementDialog.h"
#include "app/FileMenu.h"
#include "app/FormatMenu.h"
#include "app/ItemsMenu.h"
#include "app/KEditSoundNameDialog.h"
#include "app/KLevelMeterControl.h"
#include "app/KSoundHiliteEditorDialog.h"
#include "app/KSoundHiliteLoadDialog.h"
#include "app/KSoundHiliteStrip.h"
#include "app/KSoundRecordDialog.h"
#include "app/KSpeechExceptionAddDialog.h"
#include "app/KSpeechExceptionsDialog.h"
#include "app/NavigationPalette.h"
#include "app/NewProjectDialog.h"
#include "app/ProjectFiles.h"
#include "app/RecoveryCopy.h"
#include "app/SetupDialog.h"
#include "app/StartupDialog.h"
#include "app/StateFile.h"
#include "app/StringSelectorDialog.h"
#include "app/StylusActions.h"
#include "app/StylusClipboard.h"
#include "app/StylusColorButtonControl.h"
#include "app/StylusMenuBar.h"
#include "app/StylusTapeHost.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "app/UiText.h"
#include "app/UndoHistory.h"
#include "app/ViewMenu.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileSystem.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KLocalizerData.h"
#include "kernel/KPath.h"
#include "kernel/KPreferences.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "kmultimedia/KSpeechSupport.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "windowing/KAlert.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KCursorManager.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KEvent.h"
#include "windowing/KFormatEvent.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KMenuManager.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTextFormatMenu.h"
#include "windowing/KWindow.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#ifndef TALELOOM_VERSION_TEXT
#define TALELOOM_VERSION_TEXT "0.0.0"
#endif

namespace {

// Help's maintenance command: writes the localizer's data base.
constexpr int32_t kWriteLocalizerCommand = 501;

KString absolutePath(const KString& name)
{
    std::error_code failure;
    std::filesystem::path whole = std::filesystem::absolute(KTextCodec::toUtf8(name), failure);
    if (failure)
        return name;
    return KTextCodec::fromUtf8(whole.lexically_normal().string());
}

bool hasExtension(const KString& path, const char* extension)
{
    std::string text = KTextCodec::toUtf8(path);
    std::string wanted = std::string(".") + extension;
    if (text.size() < wanted.size())
        return false;
    std::string tail = text.substr(text.size() - wanted.size());
    for (char& c : tail)
        c = char(std::toupper(static_cast<unsigned char>(c)));
    return tail == wanted;
}

// Three numbers of the project's version text "MAJOR.MINOR.RELEASE".
void setVersionFrom(KApplication& application, const char* text)
{
    int major = 0, minor = 0, release = 0;
    std::sscanf(text, "%d.%d.%d", &major, &minor, &release);
    application.setVersion(int16_t(major), int16_t(minor), int16_t(release));
}

} // namespace

K_DEFINE_CLASS(StylusApplication, KApplication)

StylusApplication::StylusApplication()
{
    registerClasses();
    setName("TaleLoom");
    setVersionFrom(*this, TALELOOM_VERSION_TEXT);
    preferenceStore = std::make_unique<MainPreferencesStore>();
    recovery = std::make_unique<RecoveryCopy>();
    stateFile = std::make_unique<StateFile>();
}

StylusApplication::~StylusApplication() = default;

StylusApplication* StylusApplication::current() { return dynamic_cast<StylusApplication*>(KApplication::current()); }

void StylusApplication::registerClasses()
{
    if (KClass::hasClass("StylusApplication"))
        return;
    registerDocumentClasses();
    StylusApplication::registerClass();
    StylusWindow::registerClass();
    ToolPalette::registerClass();
    NavigationPalette::registerClass();
    NavigationControl::registerClass();
    TapeObjectMenu::registerClass()->setTransient();
    StylusColorButtonControl::registerClass();
    StylusActions::registerClass()->setTransient();
    StartupDialog::registerClass();
    NewProjectDialog::registerClass();
    KSpeechExceptionsDialog::registerClass();
    KSpeechExceptionAddDialog::registerClass();
    KSoundHiliteEditorDialog::registerClass();
    KSoundHiliteLoadDialog::registerClass();
    KSoundHiliteStrip::registerClass();
    KSoundRecordDialog::registerClass();
    KEditSoundNameDialog::registerClass();
    KLevelMeterControl::registerClass();
    StylusMenuBar::registerClass()->setTransient();
    ActorEditor::registerClass()->setTransient();
    StylusClipboard::registerClass()->setTransient();
    StringSelectorDialog::registerClass();
    EditSequenceParametersDialog::registerClass();
    for (KClass* menu : { FileMenu::registerClass(), EditMenu::registerClass(), ItemsMenu::registerClass(),
                          FormatMenu::registerClass(), AnimMenu::registerClass(), ActorsMenu::registerClass(),
                          ViewMenu::registerClass() })
        menu->setTransient();
    ElementDialog::registerDialogClasses();
    EditBookmarkDialog::registerClass();
    SetupDialog::registerClass();
    PublishDialog::registerClass();
    PrintBookDialog::registerClass();
    PlatformQuestionDialog::registerClass();
}

// --- Start --------------------------------------------------------------------

void StylusApplication::doInit()
{
    uint32_t startedAt = KNativeLayer::get().now();
    TapeHost::install(&StylusTapeHost::instance());
    readPreferences();
    if (PlayerMode::isOn())
        takePlayerSettings();
    applyLanguage();
    setSplashText(uiText("Loading...") + " " + uiText("TaleLoom v%1", getVersionText()));
    if (!PlayerMode::isOn()) {
        settleDocumentFolder();
        registerFileTypes();
    }
    startMediaManager();
    formatMenu = kAdopt(new KTextFormatMenu());
    textDefaults = TextDefaults();
    actions = kAdopt(new StylusActions());
    previews = std::make_unique<StylusPreviews>();
    actorEditor = kAdopt(new ActorEditor());
    clipboard = kAdopt(new StylusClipboard());
    history = std::make_unique<UndoHistory>();
    toolPalette = kAdopt(new ToolPalette());
    navigationPalette = kAdopt(new NavigationPalette());
    actions->hooks().loadColors = [](const KFileReference& file) {
        if (ToolPalette* palette = ToolPalette::current())
            palette->loadColorsFrom(file);
    };
    actions->hooks().publish = [] {
        StylusActions* current = StylusActions::current();
        if (!current || !current->getProject())
            return;
        if (StylusWindow* window = StylusWindow::current())
            window->stopEditing();
        PublishDialog::ask(*current->getProject());
    };
    printing = std::make_unique<StylusPrinting>();
    actions->hooks().pageSetup = [this] { printing->pageSetup(); };
    actions->hooks().print = [this] { printing->printPage(); };
    actions->hooks().printBook = [this] { printing->askAndPrintBook(); };
    actions->hooks().saveColors = [](const KFileReference& file) {
        if (ToolPalette* palette = ToolPalette::current())
            palette->saveColorsTo(file);
    };
    if (PlayerMode::isOn())
        openPlayerDocument();
    else
        readCommandLine();
    showUntitled();
    StylusWindow* window = StylusWindow::current();
    // A page as tall as the screen only fits without the window's frame.
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    KNativeLayer::get().screenSize(screenWidth, screenHeight);
    if (screenMode != ScreenMode::Window
        || (window && window->getTape() && window->getTape()->getPageSize().height == screenHeight))
        setFullScreen(true);
    waitForSplash(startedAt);
    closeSplash();
    if (window) {
        window->show(true);
        window->finishOpen();
        if (!PlayerMode::isOn())
            installMenuBar(*window);
    }
    if (PlayerMode::isOn()) {
        stateFile->install(*this);
        return;
    }
    toolPalette->open(KWindow::OpenMode::Normal);
    toolPalette->finishOpen();
    toolPalette->setScale(preferences.paletteScale);
    if (preferences.scanPalette)
        toolPalette->setScanInterval(preferences.scanInterval);
    navigationPalette->open(KWindow::OpenMode::Hidden);
    navigationPalette->finishOpen();
    if (KCursorManager* cursors = KCursorManager::current())
        cursors->setCursor(KCursorShape::Normal);
    recovery->start(*this);
    stateFile->install(*this);
    if (!documentGiven)
        scheduleStartupDialog();
}

KTextFormatMenu* StylusApplication::getFormatMenu() const { return formatMenu.get(); }

KEventReturn StylusApplication::handleEvent(KEvent& event)
{
    if (!KFormatEvent::isFormatEvent(event))
        return KApplication::handleEvent(event);
    StylusWindow* window = StylusWindow::current();
    if (KEditFieldControl* field = window ? window->getEditField() : nullptr) {
        double size = 0;
        if (KFormatEvent::getFontSize(event, size))
            field->setFontSize(size);
        KString face;
        if (KFormatEvent::getFontFace(event, face))
            field->setFontFace(face);
        int32_t faceBits = 0;
        if (KFormatEvent::getFontStyle(event, faceBits))
            field->setFontStyle(faceBits);
        KColor colour;
        if (KFormatEvent::getFontColor(event, colour))
            field->setTextColour(colour);
        if (KFormatEvent::getBackgroundColor(event, colour))
            field->setBackColour(colour);
        int16_t alignment = 0;
        if (KFormatEvent::getAlignment(event, alignment))
            field->setAlignment(alignment);
    }
    textDefaults.take(event);
    return 1;
}

void StylusApplication::readPreferences()
{
    preferences = MainPreferences();
    preferenceStore->load(preferences);
    KPreferences forHost;
    preferences.writeTo(forHost);
    forHost.setBool("LimitActorSize", preferences.limitActorSize);
    forHost.setBool("AllowDuplicatedActors", preferences.allowDuplicatedActors);
    StylusTapeHost::instance().setPreferences(forHost);
    screenMode = preferences.editingWindowMode;
}

void StylusApplication::writePreferences() { preferenceStore->save(preferences); }

void StylusApplication::applyLanguage()
{
    if (KLocalizer* localizer = kBaseLocalizer())
        localizer->setLanguage(preferences.applicationLanguage);
}

// The stored folder when it is there; otherwise "TaleLoom Projects" in the
// user's documents, made when missing. A stored folder on a stick that is
// not plugged in is passed over for this run, and the setting stays.
void StylusApplication::settleDocumentFolder()
{
    if (!preferences.docFolder.isEmpty()) {
        KDirectory stored(KPath(preferences.docFolder, KPath::kHostPlatform));
        if (stored.doesExist()) {
            documentFolder = stored;
            return;
        }
    }
    KPath documents = KFileSystem::get().getDocumentsDirectory().getPath();
    KDirectory projects(documents.getChildFolder(uiText("TaleLoom Projects")));
    if (!projects.doesExist() && !projects.create()) {
        std::fprintf(stderr, "TaleLoom: the folder %s could not be created\n",
                     KTextCodec::toUtf8(projects.getNativeText()).c_str());
    }
    documentFolder = projects;
}

void StylusApplication::registerFileTypes()
{
    if (KFileTypeHandler::hasAssociation(KString("TPD")))
        return;
    KFileTypeHandler::makeAssociation("TPD", uiText("TaleLoom Document"), "SLXT", "SLOX");
    KFileTypeHandler::makeAssociation("STT", uiText("TaleLoom Document - Old Version"), "YTAP", "YINP");
    KFileTypeHandler::makeAssociation("SCP", uiText("TaleLoom Color Palette"), "SLXP", "SLOX");
    KFileTypeHandler::makeAssociation("ACT", uiText("TaleLoom Actor"), "SLXA", "SLOX");
    KFileTypeHandler::makeAssociation("SHI", uiText("TaleLoom Sound Highlight"), "SLXH", "SLOX");
}

void StylusApplication::startMediaManager()
{
    if (KMediaManager::current())
        return;
    mediaManager = kAdopt(new KMediaManager());
    // Speeches load only through an open speech support: it lists the
    // voices and chooses the default one.
    mediaManager->setSupport(KMediaManager::SpeechSupport, new KSpeechSupport());
    mediaManager->setUp(7);
    // The one exceptions dictionary every speech of the stories rewrites
    // its text through; it reads the user's file once here.
    speechExceptions = kAdopt(new KSpeechExceptionHandler());
}

// The player takes the publication's settings over the user's, and shows
// the story full screen unless asked for a window.
void StylusApplication::takePlayerSettings()
{
    const PlayerMode& mode = PlayerMode::get();
    if (!mode.language.isEmpty())
        preferences.applicationLanguage = MainPreferences::normaliseLanguage(mode.language);
    if (!mode.voice.isEmpty())
        preferences.lastUsedVoice = mode.voice;
    if (mode.hasSpeechSpeed)
        preferences.speechSpeed = mode.speechSpeed;
    if (mode.customSpeechSpeed >= 0)
        preferences.customSpeechSpeed = mode.customSpeechSpeed == 1;
    KPreferences forHost;
    preferences.writeTo(forHost);
    forHost.setBool("LimitActorSize", preferences.limitActorSize);
    forHost.setBool("AllowDuplicatedActors", preferences.allowDuplicatedActors);
    StylusTapeHost::instance().setPreferences(forHost);
    screenMode = mode.windowed ? ScreenMode::Window : ScreenMode::FullScreen;
}

void StylusApplication::openPlayerDocument()
{
    const PlayerMode& mode = PlayerMode::get();
    auto* event = new KApplicationEvent(KApplicationEvent::OpenDocument);
    event->setFilePath(mode.document);
    playOnOpen = true;
    quitAfterPlay = mode.quitAtEnd;
    if (mode.quitAtEnd) {
        waitAnswer = kAdopt(new PlayerWaitAnswer());
        waitAnswer->start();
    }
    post(event);
    documentGiven = true;
}

// The first file is the document; the switches count only when it exists.
// The play switches wait for the document to open.
void StylusApplication::readCommandLine()
{
    const std::vector<KString>& files = getFileArguments();
    if (files.empty())
        return;
    KString path = absolutePath(files.front());
    if (!std::filesystem::exists(KTextCodec::toUtf8(path))) {
        alert(uiText("Error while reading file"), uiText("The file \"%1\" was not found.", path));
        return;
    }
    auto* event = new KApplicationEvent(KApplicationEvent::OpenDocument);
    event->setFilePath(path);
    for (const KString& option : getOptionArguments()) {
        std::string letter = option.c_str();
        char c = letter.empty() ? '\0' : char(std::toupper(static_cast<unsigned char>(letter[0])));
        switch (c) {
        case 'P':
            event->setType(KApplicationEvent::PrintDocument);
            break;
        case 'S':
            playOnOpen = true;
            break;
        case 'B':
            screenMode = ScreenMode::FullScreen;
            break;
        case 'F':
            screenMode = ScreenMode::FullScreenResolution;
            break;
        case 'W':
            screenMode = ScreenMode::Window;
            break;
        case 'Q':
            quitAfterPlay = true;
            break;
        default:
            break;
        }
    }
    post(event);
    documentGiven = true;
}

void StylusApplication::showUntitled()
{
    StylusProjectPtr untitled(new StylusProject());
    if (Tape* tape = untitled->getTape()) {
        tape->setPageSize(newDocumentPageSize());
        tape->clearModified();
    }
    actions->installProject(*untitled);
    if (StylusWindow* window = StylusWindow::current())
        windowBounds = window->getClientBounds();
}

// The loop turns while the splash stays up, so nothing waits busily.
void StylusApplication::waitForSplash(uint32_t startedAt)
{
    KNativeLayer& layer = KNativeLayer::get();
    while (int32_t(layer.now() - startedAt) < kSplashMinimum && hasAppFlags(Active)) {
        bool keepRunning = true;
        layer.processNativeMessage(true, keepRunning, 10);
        if (!keepRunning)
            break;
    }
}

// After the first loop turn, over the window that is up by then.
void StylusApplication::scheduleStartupDialog()
{
    class Opener : public KThing {
    public:
        void idle() override
        {
            KThingPtr self(this);
            if (KApplication* application = KApplication::current())
                application->removeIdler(*this);
            StylusApplication* application = StylusApplication::current();
            if (application && application->offerRecovery())
                return;
            StartupDialog::run();
        }
    };
    addIdler(*new Opener());
}

bool StylusApplication::offerRecovery()
{
    if (!recovery || !actions)
        return false;
    for (const RecoveryCopy::Found& found : recovery->findOffers()) {
        KString question = found.name.isEmpty() ? uiText("Reopen the unsaved work of an untitled story?")
                                                : uiText("Reopen the unsaved work of \"%1\"?", found.name);
        if (askYesNo(uiText("TaleLoom"), question) != 2) {
            RecoveryCopy::discard(found);
            continue;
        }
        StylusProjectPtr reopened(new StylusProject());
        if (!RecoveryCopy::reopen(found, *reopened))
            continue;
        actions->installProject(*reopened);
        RecoveryCopy::discard(found);
        // The reopened work is kept again under its project's name.
        recovery->update(*reopened);
        return true;
    }
    return false;
}

KGraphicSize StylusApplication::newDocumentPageSize() const
{
    return KGraphicSize(preferences.newDocW, preferences.newDocH);
}

StylusActions* StylusApplication::getActions() const { return actions.get(); }

StylusMenuBar* StylusApplication::getStylusMenuBar() const { return menuBar.get(); }

void StylusApplication::installMenuBar(StylusWindow& window)
{
    menuBar = kAdopt(new StylusMenuBar());
    setMenuHooks(*menuBar);
    menuBar->hooks().navigationShown = [] {
        NavigationPalette* navigation = NavigationPalette::current();
        return navigation && navigation->isShown();
    };
    menuBar->hooks().toggleNavigation = [] {
        if (NavigationPalette* navigation = NavigationPalette::current())
            navigation->toggle();
    };
    if (KMenuManager* menus = KMenuManager::current())
        menus->setMenuBar(menuBar.get());
    menuBar->install(window);
    menuBar->updateShown();
    menuBar->update();
}

// The bookmark and the play settings of the tape the main window shows;
// the menus offer them only while it stands still.
void StylusApplication::setMenuHooks(StylusMenuBar& bar)
{
    bar.hooks().editBookmark = [] {
        StylusWindow* window = StylusWindow::current();
        Tape* tape = window ? window->getTape() : nullptr;
        if (!tape || tape->isPlaying())
            return;
        KPtr<StylusWindow> held(window);
        window->stopEditing();
        tape->editCurrentBookmark();
    };
    bar.hooks().animationSetup = [] {
        StylusWindow* window = StylusWindow::current();
        Tape* tape = window ? window->getTape() : nullptr;
        if (!tape || tape->isPlaying())
            return;
        TapePtr held(tape);
        KPtr<SetupDialog> dialog = kAdopt(new SetupDialog());
        dialog->open(*tape);
    };
}

ToolPalette* StylusApplication::getToolPalette() const { return toolPalette.get(); }

NavigationPalette* StylusApplication::getNavigationPalette() const { return navigationPalette.get(); }

StylusProject* StylusApplication::getProject() const { return actions ? actions->getProject() : nullptr; }

// --- Events -------------------------------------------------------------------

KEventReturn StylusApplication::doOpenDocument(KApplicationEvent& event)
{
    openDocumentFile(event.getFilePath(), false);
    return 1;
}

KEventReturn StylusApplication::doPrintDocument(KApplicationEvent& event)
{
    openDocumentFile(event.getFilePath(), true);
    return 1;
}

KEventReturn StylusApplication::doPrintPage(KGraphicDevice& device, const KGraphicRectangle& printable, int32_t page)
{
    if (!printing)
        return 0;
    printing->printSheet(device, printable, page);
    return 1;
}

const char* StylusApplication::versionText() { return TALELOOM_VERSION_TEXT; }

bool StylusApplication::openDocumentFile(const KString& path, bool print)
{
    StartupDialog::closeOpen();
    if (!actions)
        return false;
    KFileReference file(KPath(absolutePath(path), KPath::kHostPlatform));
    if (hasExtension(path, "SCP")) {
        actions->loadColorsFrom(file);
        return true;
    }
    if (StylusProject* project = actions->getProject();
        project && project->getTape() && project->getTape()->getPlayState() != Tape::PlayState::Stopped)
        actions->stopPlay();
    if (actions->saveProjectChanges() == StylusActions::Cancel)
        return false;
    if (!actions->openProject(file)) {
        if (PlayerMode::isOn()) {
            std::fprintf(stderr, "TaleLoom: the story %s could not be opened\n",
                         KTextCodec::toUtf8(file.getNativeText()).c_str());
            KNativeLayer::get().postQuit(1);
            return false;
        }
        if (!StylusWindow::current() || !getProject() || !getProject()->hasFile())
            scheduleStartupDialog();
        return false;
    }
    if (!PlayerMode::isOn())
        recovery->projectOpened(file);
    // A story printed from the command line goes out as a book of four
    // pictures a sheet, with colour backgrounds left white.
    if (print && printing)
        printing->printProject(BookPrinter::Options(), false);
    else if (playOnOpen)
        actions->play(false, false, quitAfterPlay);
    return true;
}

KEventReturn StylusApplication::doQuit(KApplicationEvent&)
{
    if (!actions)
        return 2;
    int32_t answer = actions->doQuit();
    return answer;
}

KEventReturn StylusApplication::doDeactivate(KApplicationEvent&)
{
    if (StylusWindow* window = StylusWindow::current()) {
        window->endOpenDrags();
        window->hideBrush();
    }
    // The clipboard goes to the system as the user turns to another
    // program: a copy still waiting is put there first.
    if (clipboard && clipboard->isPublishing())
        clipboard->publishNow();
    return 0;
}

KEventReturn StylusApplication::doClipboardChanged(KApplicationEvent&)
{
    if (clipboard)
        clipboard->systemClipboardChanged();
    if (menuBar)
        menuBar->update();
    return 0;
}

KEventReturn StylusApplication::doHelp(KMenuEvent& event)
{
    if (event.getItemId() == KMenuBar::KeyboardSummary && menuBar) {
        alert(uiText("Keyboard Commands Summary"), menuBar->keyboardSummary());
        return 1;
    }
    if (event.getItemId() == kWriteLocalizerCommand) {
        if (KLocalizer* localizer = kBaseLocalizer()) {
            KFileReference file(KPath(absolutePath("ST_LOCALIZER_DATABASE.KLF"), KPath::kHostPlatform));
            localizer->writeDataBaseToFile(file);
        }
        return 1;
    }
    return 0;
}

KEventReturn StylusApplication::doAbout(KMenuEvent&)
{
    showAboutDialog();
    return 1;
}

void StylusApplication::showAboutDialog()
{
    alert(uiText("About TaleLoom"), uiText("TaleLoom %1\nBuilt %2", getVersionText(), getBuildDate()));
}

// --- Screen -------------------------------------------------------------------

void StylusApplication::setFullScreen(bool on)
{
    StylusWindow* window = StylusWindow::current();
    if (!window || fullScreen == on)
        return;
    if (on) {
        windowBounds = window->getClientBounds();
        KNativeLayer::get().setWindowFullScreen(window->getNativeWindow(), true);
        int32_t width = 0;
        int32_t height = 0;
        KNativeLayer::get().screenSize(width, height);
        window->setClientBounds(KGraphicRectangle(0, 0, int16_t(width), int16_t(height)));
    } else {
        KNativeLayer::get().setWindowFullScreen(window->getNativeWindow(), false);
        if (!windowBounds.isEmpty())
            window->setClientBounds(windowBounds);
    }
    fullScreen = on;
    window->setFullScreenShown(on);
    if (menuBar)
        menuBar->updateShown();
}

// --- Failures -----------------------------------------------------------------

int64_t StylusApplication::availableMemory()
{
    std::ifstream info("/proc/meminfo");
    std::string line;
    while (std::getline(info, line)) {
        if (line.rfind("MemAvailable:", 0) != 0)
            continue;
        std::istringstream fields(line.substr(13));
        int64_t kilobytes = -1;
        fields >> kilobytes;
        return kilobytes < 0 ? -1 : kilobytes * 1024;
    }
    return -1;
}

bool StylusApplication::checkMemory(int64_t requested)
{
    int64_t available = availableMemory();
    if (available < 0 || available >= requested + kMemoryReserve)
        return false;
    alert(uiText("TaleLoom"), uiText("Out of memory! The requested operation could not be performed."));
    return true;
}

// The last chance to keep the work: only when there is work to keep.
int32_t StylusApplication::fatalError(const char* title, const char* text)
{
    StylusProject* project = getProject();
    if (!project || !actions || !actions->hasChanges())
        return 0;
    KString caption(title ? title : "");
    alert(uiText("Fatal Error (%1)", caption), KString(text ? text : ""));
    if (askYesNo(uiText("TaleLoom"), uiText("Try to save your work to the file 'SAVE.TPD' before quitting the "
                                            "application?"))
        == 2) {
        KPath folder = project->hasFile() ? project->getFile()->getPath().getParent() : documentFolder.getPath();
        KFileReference rescue(folder.getChildFile("SAVE.TPD"));
        project->save(rescue);
    }
    return 1;
}

void StylusApplication::writeStateFile()
{
    if (stateFile)
        stateFile->write(*this);
}

void StylusApplication::doExit()
{
    if (clipboard && clipboard->isPublishing())
        clipboard->publishNow();
    if (!PlayerMode::isOn())
        writePreferences();
    if (stateFile)
        stateFile->write(*this);
    if (recovery && !PlayerMode::isOn())
        recovery->finish(actions && actions->hasChanges());
    if (StylusWindow* window = StylusWindow::current()) {
        window->stopEditing();
        window->releaseTape();
    }
    TapeHost::install(nullptr);
    if (toolPalette) {
        toolPalette->close();
        toolPalette.clear();
    }
    if (navigationPalette) {
        navigationPalette->close();
        navigationPalette.clear();
    }
    if (menuBar) {
        if (KMenuManager* menus = KMenuManager::current())
            menus->setMenuBar(nullptr);
        menuBar->uninstall();
        menuBar.clear();
    }
    actions.clear();
    previews.reset();
    formatMenu.clear();
    if (mediaManager) {
        mediaManager->closeMediaSupport();
        mediaManager.clear();
        speechExceptions.clear();
    }
}
