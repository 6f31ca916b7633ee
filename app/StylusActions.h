#pragma once

#include "app/AppForward.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "project/ProjectForward.h"
#include "tape/TapeForward.h"
#include "windowing/KWindowingForward.h"

#include <functional>

class KFileReference;
class KDirectory;
class StylusWindow;

// What the user asks for, from a menu, a palette button or a key: the
// project's life (new, open, insert, save, save as, save as image), play
// and stop, the steps along the tape, inserting elements, and the actor
// commands. It owns the open project. Every question and message it shows
// goes through the native layer's alerts, so tests answer them from a
// script.
//
// A command that changes the document first closes the main window's
// in-place editor; commands on the tape do nothing while it plays.
class StylusActions : public KThing {
    K_DECLARE_CLASS(StylusActions)
public:
    // The answers of a question.
    enum Answer : int32_t { Cancel = 1, Yes = 2, No = 3 };

    // Work that later parts of the program supply: printing, publishing,
    // recording, the element dialogs and the colour palette files. Until a
    // hook is set its command beeps.
    struct Hooks {
        std::function<void()> print;
        std::function<void()> pageSetup;
        std::function<void()> printBook;
        std::function<void()> publish;
        std::function<bool(KFileReference&)> recordSound;
        std::function<void(const KFileReference&)> loadColors;
        std::function<void(const KFileReference&)> saveColors;
        std::function<void(Tape&, int32_t kind)> insertWithDialog;
        // After the tape changed: thumbnails and the recovery copy.
        std::function<void()> tapeChanged;
    };

    StylusActions();
    ~StylusActions() override;

    static StylusActions* current();
    Hooks& hooks() { return hookTable; }

    // --- The project ---------------------------------------------------------------
    StylusProject* getProject() const;
    // Installs a project in the main window without any question: the
    // untitled state at start, or a project opened elsewhere.
    void installProject(StylusProject& opened);
    bool isUntitled() const;
    // The project's name as its titles show it; empty while untitled.
    KString getProjectName() const;
    // The tape has changes that were not saved.
    bool hasChanges() const;
    // Save is offered when there are changes, or an untitled story holds
    // something (it then asks where).
    bool canSave() const;

    // "Save Changes To "NAME"?" (or "Save Changes?" for an untitled one),
    // with yes, no and cancel. Yes counts only when the save succeeded:
    // a failed or cancelled save answers Cancel, and everything stays.
    int32_t saveProjectChanges();
    // The same for the actor being edited.
    int32_t saveActorChanges();
    // 2 to agree to quit, 3 to refuse.
    int32_t doQuit();

    void doNewProject();
    // Makes the project folder NAME in `folder` with "NAME.TPD", "Media" and
    // "Actors", and opens it. False, with an alert naming the path, when
    // the folder cannot be made; the open project stays.
    bool createProject(const KDirectory& folder, const KString& name, const KGraphicSize& pageSize);
    void doOpenProject();
    bool openProject(const KFileReference& file);
    void doInsertProject();
    bool importProject(const KFileReference& file);
    // True when the project was written.
    bool doSave();
    bool doSaveAs();
    void saveThumbnails();
    // Saves the project as NAME in `folder` (a new project folder), with its
    // media and actor files.
    bool saveProjectAs(const KDirectory& folder, const KString& name);
    void doSaveAsImage();
    // Writes the page as it stands now (with its actors, without the brush
    // or a highlight) into an image file of the extension's kind.
    bool savePageImage(const KFileReference& file);

    // --- Printing, publishing, recording: hooks ------------------------------------------
    void doPublish();
    void doPageSetup();
    void doPrint();
    void doPrintBook();
    bool doRecordSound(KFileReference& file);
    void doLoadColors();
    // A colour palette file opened from outside (the command line, a drop).
    void loadColorsFrom(const KFileReference& file);
    void doSaveColors();
    // The tool palette's buttons back to their default colours.
    void doResetColors();
    bool findMediaFile(KFileReference& file);
    // The speech exceptions dictionary in its dialog.
    void doSpeechExceptions();

    // --- Play ------------------------------------------------------------------------
    void play(bool fromPosition, bool fullScreen, bool quitAfter);
    void stopPlay();
    bool isQuitAfterPlay() const { return quitAfterPlay; }

    // --- Walking and editing ----------------------------------------------------------
    void goBack();
    void goForward();
    void goToBeginning();
    void goToEnd();
    void deleteLast();
    // Edits the element before the tape's position (a stroke's colour, the
    // others' dialogs) as one step of the undo history.
    static void modifyElementOf(Tape& tape);
    // Takes the last step of the undo history back, or makes the last one
    // taken back again; a beep when there is none.
    void undoOrRedo(bool redo);
    void moveToolPalette();
    // Kinds 1 to 10. Without the dialogs' hook, a wait, a speech and a
    // pause go in at the position with their defaults, a sound with the
    // file the user picks, and a text with its defaults in the middle of
    // the page; the other kinds beep.
    void insertElement(int32_t kind);
    // The one rule of what may be inserted now, for the palette and the
    // menus: nothing while the story plays or without a story; every kind
    // with a button while the tape is edited; text, image, sound and speech
    // while an actor is edited.
    bool canInsertElement(int32_t kind) const;
    // Opens the editor of the element before the position, unless the
    // story plays; in-place editors close first.
    void modifyCurrentElement();
    // A stroke, a motion or an element entered the tape.
    void elementAdded();
    void finishPastePlacement(bool accept);
    void toggleMenuStrip();
    bool isMenuStripShown() const { return menuStripShown; }
    // The menu bar shows or hides for the play and the screen, and its
    // items follow the state.
    void updateMenuBar();

private:
    StylusWindow* window() const;
    Tape* tape() const;
    // The tape the commands on the page work on: the frame shown while an
    // actor is edited, otherwise the story's.
    Tape* shownTape() const;
    void addInserted(TapeObject& element);
    void insertThroughDialog(int32_t kind);
    void insertActorAction();
    TapeObjectPtr askSoundElement();
    void insertNewText();
    void startEditingNewText(StylusText& text);
    void takeTextDefaults(StylusText& text);
    bool tapeIsIdle() const;
    void stopEditing();
    // Asks for a file with the chooser; false when the user cancelled.
    bool askOpenFile(KFileReference& file, const KString& title, bool withOldDocuments);
    bool askSaveFile(KFileReference& file, const KString& title, const KString& name, int32_t fileType);
    // The page size a project may have on this screen; an alert and false
    // beyond it.
    bool fitsScreen(const KGraphicSize& size, bool importing);
    void afterProjectChange();
    void tellChanged();
    bool hookMissing(bool present);

    Hooks hookTable;
    StylusProjectPtr project;
    bool quitAfterPlay = false;
    bool playEnteredFullScreen = false;
    bool menuStripShown = false;
};
