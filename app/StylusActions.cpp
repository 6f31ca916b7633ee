#include "app/StylusActions.h"
#include "app/StylusPreviews.h"
#include "app/UndoStep.h"

#include "app/ActorEditor.h"
#include "app/KSoundRecordDialog.h"
#include "app/KSpeechExceptionsDialog.h"
#include "app/NewProjectDialog.h"
#include "app/OldDocumentOpening.h"
#include "app/ProjectFiles.h"
#include "app/StylusApplication.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "app/UiText.h"
#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "kernel/KDirectory.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KPath.h"
#include "project/ProjectResolution.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "windowing/KAlert.h"
#include "windowing/KBusyCursor.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KNativeLayer.h"

namespace {

StylusActions* gActions = nullptr;

KFileTypeID fileTypeOf(const char* extension)
{
    KFileType* type = KFileTypeHandler::getAssociation(KString(extension));
    return type ? type->getID() : 0;
}

// The folder and every missing folder above it.
void makeFolders(const KDirectory& folder)
{
    if (folder.doesExist() || folder.getPath().getFolderCount() == 0)
        return;
    makeFolders(KDirectory(folder.getPath().getParent()));
    KDirectory(folder).create();
}

KString projectName(const StylusProject& project)
{
    return project.hasFile() ? project.getFile()->getPath().getName() : KString();
}

} // namespace

K_DEFINE_CLASS(StylusActions, KThing)

StylusActions::StylusActions() { gActions = this; }

StylusActions::~StylusActions()
{
    if (gActions == this)
        gActions = nullptr;
}

StylusActions* StylusActions::current() { return gActions; }

StylusProject* StylusActions::getProject() const { return project.get(); }

StylusWindow* StylusActions::window() const { return StylusWindow::current(); }

Tape* StylusActions::tape() const { return project ? project->getTape() : nullptr; }

Tape* StylusActions::shownTape() const
{
    StylusWindow* shown = window();
    if (shown && shown->getWindowMode() == WindowMode::ActorEditing && shown->getTape())
        return shown->getTape();
    return tape();
}

bool StylusActions::tapeIsIdle() const
{
    Tape* shown = shownTape();
    return !shown || shown->getPlayState() == Tape::PlayState::Stopped;
}

void StylusActions::stopEditing()
{
    if (StylusWindow* shown = window()) {
        shown->endOpenDrags();
        shown->stopEditing();
    }
}

void StylusActions::tellChanged()
{
    if (hookTable.tapeChanged)
        hookTable.tapeChanged();
}

bool StylusActions::hookMissing(bool present)
{
    if (!present)
        TapeHost::get().beep();
    return !present;
}

// --- The project ----------------------------------------------------------------------

void StylusActions::installProject(StylusProject& opened)
{
    project = opened;
    // Nothing of another story can be taken back here.
    if (UndoHistory* history = UndoHistory::current())
        history->reset();
    StylusWindow* shown = window();
    Tape* shownTape = opened.getTape();
    if (!shown || !shownTape)
        return;
    shown->setProject(&opened);
    shown->showTape(*shownTape, opened.getActorsDirectory());
    if (StylusPreviews* previews = StylusPreviews::current())
        previews->follow(&opened);
    afterProjectChange();
}

void StylusActions::afterProjectChange()
{
    if (StylusWindow* shown = window()) {
        shown->updateTitle();
        shown->redrawPage(false);
        shown->updateBrushPosition();
    }
    tellChanged();
}

bool StylusActions::isUntitled() const { return !project || !project->hasFile(); }

KString StylusActions::getProjectName() const { return project ? projectName(*project) : KString(); }

bool StylusActions::hasChanges() const { return tape() && tape()->isModified(); }

bool StylusActions::canSave() const
{
    if (!tape())
        return false;
    return hasChanges() || (isUntitled() && tape()->getCount() > 0);
}

int32_t StylusActions::saveProjectChanges()
{
    if (!project || !hasChanges())
        return No;
    stopEditing();
    KString question
        = isUntitled() ? uiText("Save Changes?") : uiText("Save Changes To \"%1\"?", projectName(*project));
    int32_t answer = askYesNoCancel(uiText("TaleLoom"), question);
    if (answer != Yes)
        return answer;
    bool saved = isUntitled() ? doSaveAs() : doSave();
    return saved ? Yes : Cancel;
}

// The actor editor is not built yet: no actor can hold unsaved changes.
int32_t StylusActions::saveActorChanges()
{
    ActorEditor* editor = ActorEditor::current();
    return editor ? editor->saveActorChanges() : No;
}

int32_t StylusActions::doQuit()
{
    stopEditing();
    if (saveActorChanges() == Cancel)
        return 3;
    return saveProjectChanges() == Cancel ? 3 : 2;
}

void StylusActions::doNewProject()
{
    if (saveProjectChanges() == Cancel)
        return;
    stopEditing();
    NewProjectDialog::Answer answer;
    if (!NewProjectDialog::ask(answer, KString()))
        return;
    createProject(answer.folder, answer.name, answer.pageSize);
}

bool StylusActions::createProject(const KDirectory& folder, const KString& name, const KGraphicSize& pageSize)
{
    if (!fitsScreen(pageSize, false))
        return false;
    KFileReference file;
    if (!makeProjectFolder(folder, name, file))
        return false;
    StylusProjectPtr made(new StylusProject());
    TapePtr fresh(new Tape());
    fresh->setPageSize(pageSize);
    made->setTape(*fresh);
    if (!made->save(file)) {
        alert(uiText("TaleLoom"), saveErrorText(*made));
        return false;
    }
    if (!made->load(file))
        return false;
    installProject(*made);
    rememberRecentFile(file);
    return true;
}

bool StylusActions::askOpenFile(KFileReference& file, const KString& title, bool withOldDocuments)
{
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!dialogs)
        return false;
    std::vector<KFileTypeID> types { fileTypeOf("TPD") };
    if (withOldDocuments)
        types.push_back(fileTypeOf("STT"));
    file = KFileReference(documentsFolder().getPath().getChildFile(KString("x")));
    StylusWindow* shown = window();
    if (shown)
        shown->hideBrush();
    bool chosen = dialogs->doOpenDialog(file, title, types);
    if (shown)
        shown->updateBrushPosition();
    return chosen;
}

bool StylusActions::askSaveFile(KFileReference& file, const KString& title, const KString& name, int32_t fileType)
{
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!dialogs)
        return false;
    KPath start = documentsFolder().getPath().getChildFile(name);
    file = KFileReference(start);
    return dialogs->doSaveDialog(file, title, fileType);
}

void StylusActions::doOpenProject()
{
    if (saveProjectChanges() == Cancel)
        return;
    stopEditing();
    KFileReference file;
    if (!askOpenFile(file, uiText("Open Project"), true))
        return;
    openProject(file);
}

bool StylusActions::fitsScreen(const KGraphicSize& size, bool importing)
{
    int32_t width = 0;
    int32_t height = 0;
    KNativeLayer::get().screenSize(width, height);
    if (width <= 0 || height <= 0 || (size.width <= width && size.height <= height))
        return true;
    KString text = projectResolutionRefusal(size.width, size.height, width, height);
    if (importing) {
        KString page = uiFill("%1,%2", { UiTextDetail::toText(size.width), UiTextDetail::toText(size.height) });
        KString screen = uiFill("%1,%2", { UiTextDetail::toText(width), UiTextDetail::toText(height) });
        // TRANSLATORS: %1 is the inserted story's page size and %2 the screen's, as "1024,768".
        text = uiText("This document's resolution (%1) exceeds the current resolution (%2); this document cannot be "
                      "imported.",
                      page, screen);
    }
    alert(uiText("TaleLoom"), text);
    return false;
}

bool StylusActions::openProject(const KFileReference& file)
{
    if (!file.doesExist()) {
        alert(uiText("Error while reading file"), uiText("The file \"%1\" was not found.", file.getNativeText()));
        return false;
    }
    if (OldDocumentOpening::isOldDocument(file)) {
        KFileReference converted;
        return OldDocumentOpening::convert(file, converted) && openProject(converted);
    }
    KBusyCursor busy;
    StylusProjectPtr opened(new StylusProject());
    if (!opened->load(file))
        return false;
    Tape* openedTape = opened->getTape();
    if (!openedTape || !fitsScreen(openedTape->getPageSize(), false))
        return false;
    // The saved position, cut to the elements there are, is set before the
    // tape is shown, so that showing it builds the page once.
    openedTape->setPositionQuietly(std::min(openedTape->getPosition(), openedTape->getCount()));
    installProject(*opened);
    openedTape->clearModified();
    if (StylusWindow* shown = window())
        shown->hideHighlight(true);
    rememberRecentFile(file);
    return true;
}

void StylusActions::doInsertProject()
{
    StylusWindow* shown = window();
    if (!tape() || (shown && shown->getWindowMode() == WindowMode::ActorEditing))
        return;
    stopEditing();
    KFileReference file;
    if (askOpenFile(file, uiText("Insert Project"), false))
        importProject(file);
}

bool StylusActions::importProject(const KFileReference& file)
{
    if (!tape() || !file.doesExist())
        return false;
    KBusyCursor busy;
    StylusProjectPtr read(new StylusProject());
    if (!read->load(file))
        return false;
    Tape* readTape = read->getTape();
    if (!readTape || !fitsScreen(readTape->getPageSize(), true))
        return false;
    copyProjectFiles(*read, *project, *readTape);
    {
        UndoStep step(tape(), UndoHistory::Name::InsertProject);
        tape()->insertTape(*readTape);
    }
    if (StylusWindow* shown = window()) {
        shown->showTape(*tape(), project->getActorsDirectory());
        shown->redrawPage(true);
    }
    tellChanged();
    return true;
}

bool StylusActions::doSave()
{
    if (!project)
        return false;
    if (isUntitled())
        return doSaveAs();
    stopEditing();
    if (!project->save()) {
        alert(uiText("TaleLoom"), saveErrorText(*project));
        return false;
    }
    saveThumbnails();
    if (StylusWindow* shown = window())
        shown->updateTitle();
    tellChanged();
    return true;
}

// The thumbnails go beside the document, so that it opens with them.
void StylusActions::saveThumbnails()
{
    if (StylusPreviews* previews = StylusPreviews::current(); previews && project)
        previews->writeAllAndSave(*project);
}

bool StylusActions::doSaveAs()
{
    if (!project)
        return false;
    stopEditing();
    NewProjectDialog::Answer answer;
    KString proposed = isUntitled() ? KString() : projectName(*project);
    if (!NewProjectDialog::ask(answer, proposed, false))
        return false;
    return saveProjectAs(answer.folder, answer.name);
}

bool StylusActions::saveProjectAs(const KDirectory& folder, const KString& name)
{
    if (!project)
        return false;
    KFileReference file;
    if (!makeProjectFolder(folder, name, file))
        return false;
    copyProjectFilesTo(*project, file);
    if (!project->save(file)) {
        alert(uiText("TaleLoom"), saveErrorText(*project));
        return false;
    }
    if (Tape* saved = tape())
        saved->setMediaDirectory(*project->getMediaDirectory());
    saveThumbnails();
    if (StylusWindow* shown = window())
        shown->updateTitle();
    rememberRecentFile(file);
    tellChanged();
    return true;
}

void StylusActions::doSaveAsImage()
{
    if (!tape())
        return;
    stopEditing();
    KString name = uiText("Picture-%1", tape()->getPosition()) + ".png";
    KFileReference file;
    if (!askSaveFile(file, uiText("Save Picture As"), name, 0))
        return;
    if (!savePageImage(file))
        alert(uiText("TaleLoom"), uiText("The picture could not be saved."));
    if (StylusWindow* shown = window())
        shown->updateBrushPosition();
}

bool StylusActions::savePageImage(const KFileReference& file)
{
    StylusWindow* shown = window();
    if (!shown || !shown->hasSpriteSystem())
        return false;
    KImagePtr picture(new KImage());
    return shown->composePage(*picture) && picture->writeToPath(file.getNativeText());
}

// --- Hooks --------------------------------------------------------------------------------

void StylusActions::doPublish()
{
    stopEditing();
    if (!hookMissing(bool(hookTable.publish)))
        hookTable.publish();
}

void StylusActions::doPageSetup()
{
    stopEditing();
    if (!hookMissing(bool(hookTable.pageSetup)))
        hookTable.pageSetup();
}

void StylusActions::doPrint()
{
    stopEditing();
    if (!hookMissing(bool(hookTable.print)))
        hookTable.print();
}

void StylusActions::doPrintBook()
{
    stopEditing();
    if (!hookMissing(bool(hookTable.printBook)))
        hookTable.printBook();
}

bool StylusActions::doRecordSound(KFileReference& file)
{
    stopEditing();
    if (hookTable.recordSound)
        return hookTable.recordSound(file);
    return KSoundRecordDialog::run(KSoundRecordDialog::folderFor(project.get()), file);
}

// The chooser starts in the user's palettes when there are any, else
// beside the shipped palette.
void StylusActions::doLoadColors()
{
    if (hookMissing(bool(hookTable.loadColors)))
        return;
    stopEditing();
    KDirectory start = ToolPalette::userPaletteFolder();
    KFileReference shipped;
    if (!start.doesExist() && ToolPalette::findShippedPalette(shipped))
        start = KDirectory(shipped.getPath().getParent());
    KFileReference file(start.getPath().getChildFile(KString("x")));
    KDialogHandler* dialogs = KDialogHandler::current();
    if (dialogs && dialogs->doOpenDialog(file, uiText("Load Colors"), fileTypeOf("SCP")))
        hookTable.loadColors(file);
}

void StylusActions::loadColorsFrom(const KFileReference& file)
{
    if (!hookMissing(bool(hookTable.loadColors)))
        hookTable.loadColors(file);
}

// Saved palettes go to the user's own palette folder, made when missing.
void StylusActions::doSaveColors()
{
    if (hookMissing(bool(hookTable.saveColors)))
        return;
    stopEditing();
    KDirectory folder = ToolPalette::userPaletteFolder();
    makeFolders(folder);
    KDialogHandler* dialogs = KDialogHandler::current();
    KFileReference file(folder.getPath().getChildFile(uiText("Color Palette") + "." + ColorPaletteFile::kExtension));
    if (dialogs && dialogs->doSaveDialog(file, uiText("Save Colors"), fileTypeOf("SCP")))
        hookTable.saveColors(file);
}

void StylusActions::doResetColors()
{
    if (ToolPalette* palette = ToolPalette::current())
        palette->resetColors();
}

void StylusActions::doSpeechExceptions()
{
    stopEditing();
    KSpeechExceptionsDialog::run();
}

bool StylusActions::findMediaFile(KFileReference& file)
{
    if (project && project->hasMediaDirectory()) {
        KPath candidate = project->getMediaDirectory()->getPath().getChildFile(file.getObjectName());
        KFileReference there(candidate);
        if (there.doesExist()) {
            file = there;
            return true;
        }
    }
    alert(uiText("Look for missing file"), uiText("File not found!"));
    return false;
}
