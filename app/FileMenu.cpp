#include "app/FileMenu.h"

#include "app/StoryExport.h"
#include "app/StylusActions.h"
#include "app/StylusMenuRules.h"
#include "app/ToolPalette.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KFileReference.h"
#include "windowing/KApplication.h"
#include "windowing/KMenuEvent.h"

K_DEFINE_CLASS(FileMenu, KMenu)

FileMenu::FileMenu()
    : KMenu(uiText("File"))
{
    addItem(NewProject, withEllipsis(uiText("New Project")), 'N');
    addItem(OpenProject, withEllipsis(uiText("Open Project")), 'O');
    addItem(InsertProject, withEllipsis(uiText("Insert Project")), 'I');
    addSeparator();
    addItem(Save, uiText("Save"), 'S');
    addItem(SaveAs, withEllipsis(uiText("Save As")));
    addItem(SaveAsImage, withEllipsis(uiText("Save As Image")), '2');
    addItem(Publish, withEllipsis(uiText("Publish")));
    addItem(ExportEpub, withEllipsis(uiText("Export as EPUB")));
    addItem(ExportVideo, withEllipsis(uiText("Export as Video")));
    addSeparator();
    addItem(LoadColors, withEllipsis(uiText("Load Colors")));
    addItem(SaveColors, withEllipsis(uiText("Save Colors")));
    addItem(ResetColors, uiText("Reset Colors"));
    addSeparator();
    addItem(RecordSound, withEllipsis(uiText("Record Sound")), 'R');
    addItem(SpeechExceptions, withEllipsis(uiText("Speech Exceptions")));
    addSeparator();
    addItem(PageSetup, withEllipsis(uiText("Page Setup")));
    addItem(Print, withEllipsis(uiText("Print")), 'P');
    addItem(PrintBook, withEllipsis(uiText("Print Book")), 'B');
    addSeparator();
    addItem(Quit, uiText("Quit"), 'Q');
}

// A command whose work another part of the program supplies through the
// actions' hooks stays off until the hook is there.
KEventReturn FileMenu::doOpen(KMenuEvent&)
{
    MenuState state = MenuState::now();
    if (!beginMenuOpen(*this, state))
        return 1;
    if (!state.tape || !state.actions || state.playing) {
        setEnabled(false);
        return 1;
    }
    StylusActions& actions = *state.actions;
    StylusActions::Hooks& hooks = actions.hooks();
    bool named = !actions.isUntitled();
    // Here a story may be untitled; it is saved (as) once it holds something.
    bool dirty = state.elements() > 0;
    bool actor = state.actorEditing;

    setItemTitle(Save, saveTitle(state));
    setItemTitle(SaveAs, withEllipsis(named ? uiText("Save \"%1\" As", actions.getProjectName()) : uiText("Save As")));
    enableItem(NewProject, !actor);
    enableItem(OpenProject, !actor);
    enableItem(InsertProject, !actor);
    bool documentCommands = dirty && !actor;
    enableItem(Save, documentCommands && actions.canSave());
    enableItem(SaveAs, documentCommands);
    enableItem(SaveAsImage, documentCommands);
    enableItem(Publish, documentCommands && bool(hooks.publish));
    enableItem(ExportEpub, documentCommands);
    enableItem(ExportVideo, documentCommands);
    enableItem(PageSetup, documentCommands && bool(hooks.pageSetup));
    enableItem(Print, documentCommands && bool(hooks.print));
    enableItem(PrintBook, documentCommands && bool(hooks.printBook));
    enableItem(LoadColors, bool(hooks.loadColors));
    enableItem(SaveColors, bool(hooks.saveColors));
    enableItem(ResetColors, ToolPalette::current() != nullptr);
    enableItem(RecordSound, bool(hooks.recordSound));
    enableItem(SpeechExceptions, true);
    enableItem(Quit, true);
    return 1;
}

KEventReturn FileMenu::doMenuItem(KMenuEvent& event)
{
    StylusActions* actions = StylusActions::current();
    if (!mayRunMenuItem() || !actions)
        return 0;
    KPtr<StylusActions> held(actions);
    switch (event.getItemId()) {
    case NewProject:
        actions->doNewProject();
        break;
    case OpenProject:
        actions->doOpenProject();
        break;
    case InsertProject:
        actions->doInsertProject();
        break;
    case Save:
        actions->doSave();
        break;
    case SaveAs:
        actions->doSaveAs();
        break;
    case SaveAsImage:
        actions->doSaveAsImage();
        break;
    case Publish:
        actions->doPublish();
        break;
    case ExportEpub:
        StoryExport::run(StoryExport::Kind::Epub);
        break;
    case ExportVideo:
        StoryExport::run(StoryExport::Kind::Video);
        break;
    case LoadColors:
        actions->doLoadColors();
        break;
    case SaveColors:
        actions->doSaveColors();
        break;
    case ResetColors:
        if (ToolPalette* palette = ToolPalette::current())
            palette->resetColors();
        break;
    case RecordSound: {
        KFileReference recorded;
        actions->doRecordSound(recorded);
        break;
    }
    case SpeechExceptions:
        actions->doSpeechExceptions();
        break;
    case PageSetup:
        actions->doPageSetup();
        break;
    case Print:
        actions->doPrint();
        break;
    case PrintBook:
        actions->doPrintBook();
        break;
    case Quit:
        if (KApplication* application = KApplication::current())
            application->requestQuit();
        break;
    default:
        return 0;
    }
    return 1;
}
