#include "app/ActorEditor.h"

#include "app/EditSequenceParametersDialog.h"
#include "app/ProjectNameRules.h"
#include "app/StringSelectorDialog.h"
#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorLoading.h"
#include "app/actors/ActorSequence.h"
#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KPath.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "windowing/KAlert.h"
#include "windowing/KDialogHandler.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace {

ActorEditor* gEditor = nullptr;

StylusWindow* mainWindow() { return StylusWindow::current(); }

StylusProject* openProject()
{
    StylusActions* actions = StylusActions::current();
    return actions ? actions->getProject() : nullptr;
}

bool allowsDuplicatedActors()
{
    StylusApplication* application = StylusApplication::current();
    return application && application->getPreferences().allowDuplicatedActors;
}

// Names as the file systems of memory sticks compare them.
std::string folded(const KString& name)
{
    std::string text(ProjectNameRules::trimmed(name).c_str());
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

bool sameName(const KString& a, const KString& b) { return folded(a) == folded(b); }

// NAME.ACT, or any entry called NAME, in any case.
bool actorFileExists(const KDirectory& folder, const KString& name) { return ProjectNameRules::existsIn(name, folder); }

TapePtr emptyFrame(const Actor& actor)
{
    TapePtr frame(new Tape());
    actor.adoptFrameTape(*frame);
    return frame;
}

void refreshMenus()
{
    if (StylusMenuBar* bar = StylusMenuBar::current())
        bar->update();
}

} // namespace

K_DEFINE_CLASS(ActorEditor, KThing)

ActorEditor::ActorEditor() { gEditor = this; }

ActorEditor::~ActorEditor()
{
    if (gEditor == this)
        gEditor = nullptr;
}

ActorEditor* ActorEditor::current() { return gEditor; }

bool ActorEditor::isEditing() const { return actor.get() != nullptr; }

Actor* ActorEditor::getActor() const { return actor.get(); }

ActorSequence* ActorEditor::currentMovement() const { return actor ? actor->getSequenceAt(movement) : nullptr; }

bool ActorEditor::hasChanges() const
{
    if (!actor)
        return false;
    if (changed || actor->isModified())
        return true;
    for (int32_t s = 0; s < actor->getSequenceCount(); ++s) {
        ActorSequence* sequence = actor->getSequenceAt(s);
        for (int32_t f = 0; sequence && f < sequence->getFrameCount(); ++f) {
            if (Tape* tape = sequence->getFrame(f); tape && tape->isModified())
                return true;
        }
    }
    return false;
}

void ActorEditor::clearChanges()
{
    changed = false;
    if (!actor)
        return;
    actor->setModified(false);
    for (int32_t s = 0; s < actor->getSequenceCount(); ++s) {
        ActorSequence* sequence = actor->getSequenceAt(s);
        for (int32_t f = 0; sequence && f < sequence->getFrameCount(); ++f) {
            if (Tape* tape = sequence->getFrame(f))
                tape->clearModified();
        }
    }
}

KString ActorEditor::titleText() const
{
    if (!actor)
        return KString();
    KString name = actor->getDisplayName().isEmpty() ? uiText("No Name") : actor->getDisplayName();
    ActorSequence* sequence = currentMovement();
    KString number(std::to_string(frame + 1).c_str());
    // TRANSLATORS: the main window's title while an actor is edited: actor, movement, frame number.
    return uiText("Actor: %1 - %2 - Frame %3", name, sequence ? sequence->getName() : KString(), number);
}

std::vector<KString> ActorEditor::actorNamesIn(const KDirectory& folder)
{
    std::vector<KString> names;
    if (folder.getPath().isEmpty() || !folder.doesExist())
        return names;
    for (const auto& entry : folder.getFiles()) {
        if (sameName(entry->getPath().getExtension(), KString(kActorFileExtension)))
            names.push_back(entry->getPath().getName());
    }
    std::sort(names.begin(), names.end(), [](const KString& a, const KString& b) { return folded(a) < folded(b); });
    return names;
}

KDirectory* ActorEditor::actorsFolder() const
{
    StylusProject* project = openProject();
    return project ? project->getActorsDirectory() : nullptr;
}

// An actor's file goes into the project's folder, so a project without a
// name has nowhere to keep it.
bool ActorEditor::mayStart(const KString& title) const
{
    StylusActions* actions = StylusActions::current();
    StylusWindow* window = mainWindow();
    if (!actions || !window)
        return false;
    if (actions->isUntitled() || !actorsFolder()) {
        alert(title, uiText("Actor editing is possible only after giving a name to current project"));
        return false;
    }
    Tape* shown = window->getTape();
    return !shown || !shown->isPlaying();
}

// --- Editing ------------------------------------------------------------------------

void ActorEditor::startEditing(Actor& edited, bool isNew)
{
    StylusWindow* window = mainWindow();
    if (!window)
        return;
    window->stopEditing();
    if (!actor)
        storyTape = window->getTape();
    actor = &edited;
    changed = isNew;
    showFrame(0, 0);
}

void ActorEditor::showFrame(int32_t movementIndex, int32_t frameIndex)
{
    StylusWindow* window = mainWindow();
    if (!actor || !window || actor->getSequenceCount() == 0)
        return;
    movement = std::clamp(movementIndex, 0, actor->getSequenceCount() - 1);
    ActorSequence* sequence = currentMovement();
    if (sequence->getFrameCount() == 0)
        sequence->addFrame(*emptyFrame(*actor));
    frame = std::clamp(frameIndex, 0, sequence->getFrameCount() - 1);
    TapePtr shown(sequence->getFrame(frame));
    actor->adoptFrameTape(*shown);
    window->showTape(*shown, nullptr);
    window->setWindowMode(WindowMode::ActorEditing);
    window->updateTitle();
    refreshMenus();
}

void ActorEditor::endEditing()
{
    StylusWindow* window = mainWindow();
    StylusProject* project = openProject();
    KString name = actor ? actor->getDisplayName() : KString();
    actor.clear();
    TapePtr story = storyTape;
    storyTape.clear();
    if (!window || !story)
        return;
    // The story shows the actor as its file now stands.
    if (!name.isEmpty())
        story->getActors().removeKey(name);
    window->showTape(*story, project ? project->getActorsDirectory() : nullptr);
    refreshMenus();
}

void ActorEditor::doEndActorEditing()
{
    if (!actor)
        return;
    if (StylusWindow* window = mainWindow())
        window->stopEditing();
    if (saveActorChanges() == StylusActions::Cancel)
        return;
    endEditing();
}

int32_t ActorEditor::saveActorChanges()
{
    if (!actor || !hasChanges())
        return StylusActions::No;
    KString name = actor->getDisplayName();
    KString question = name.isEmpty() ? uiText("Save Changes?") : uiText("Save Changes To \"%1\"?", name);
    int32_t answer = askYesNoCancel(uiText("Save Actor"), question);
    if (answer == StylusActions::Yes)
        return doSaveActor() ? StylusActions::Yes : StylusActions::Cancel;
    return answer == StylusActions::No ? StylusActions::No : StylusActions::Cancel;
}

// --- The actor's file -----------------------------------------------------------------

bool ActorEditor::askNewActorName(const KString& title, const KString& label, KString& name) const
{
    KDirectory* folder = actorsFolder();
    if (!folder)
        return false;
    for (;;) {
        if (!StringSelectorDialog::askName(title, label, name))
            return false;
        name = ProjectNameRules::trimmed(name);
        ProjectNameRules::Problem problem = ProjectNameRules::check(name, *folder);
        if (problem == ProjectNameRules::Problem::Exists)
            problem = ProjectNameRules::Problem::None;
        if (name.isEmpty())
            problem = ProjectNameRules::Problem::IllegalCharacters;
        if (problem != ProjectNameRules::Problem::None) {
            alert(title, ProjectNameRules::message(problem));
            continue;
        }
        bool ownFile = actor && sameName(name, actor->getDisplayName()) && actor->hasFile();
        if (actorFileExists(*folder, name) && !ownFile) {
            alert(title, uiText("This Actor Already Exists; please choose another name!"));
            continue;
        }
        return true;
    }
}

bool ActorEditor::saveTo(const KString& name)
{
    KDirectory* folder = actorsFolder();
    if (!actor || !folder)
        return false;
    if (!folder->doesExist())
        folder->create();
    KFileReference file = actorFileIn(*folder, name);
    KString before = actor->getDisplayName();
    actor->setDisplayName(name);
    if (!actor->save(file)) {
        actor->setDisplayName(before);
        return false;
    }
    clearChanges();
    if (StylusWindow* window = mainWindow())
        window->updateTitle();
    return true;
}

bool ActorEditor::doSaveActor()
{
    if (!actor)
        return false;
    if (actor->hasFile() && !actor->getDisplayName().isEmpty())
        return saveTo(actor->getDisplayName());
    return doSaveActorAs();
}

bool ActorEditor::doSaveActorAs()
{
    if (!actor)
        return false;
    KString name = actor->getDisplayName().isEmpty() ? uiText("No Name") : actor->getDisplayName();
    if (!askNewActorName(uiText("Save Actor As"), uiText("Actor Name"), name))
        return false;
    return saveTo(name);
}

// --- The stage's background ----------------------------------------------------------

void ActorEditor::setBackground(Background chosen)
{
    if ((chosen == Background::Picture || chosen == Background::StretchedPicture) && !hasBackgroundPicture())
        return;
    background = chosen;
    if (StylusWindow* window = mainWindow(); window && isEditing())
        window->redrawPage(true);
}

bool ActorEditor::hasBackgroundPicture() const { return backgroundPicture && backgroundPicture->hasImage(); }

bool ActorEditor::chooseBackgroundPicture()
{
    KString title = uiText("Select Actor Editing Background Image");
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!dialogs)
        return false;
    KFileReference file;
    if (KDirectory* folder = actorsFolder())
        file = KFileReference(folder->getPath().getChildFile(KString("x")));
    if (!dialogs->doOpenDialog(file, title, KFileTypeID(0)))
        return false;
    KImagePtr picture(new KImage());
    if (!picture->createFromPath(file.getPath().getNativeText()) || !picture->hasImage()) {
        alert(title, uiText("Unsupported Format!"));
        return false;
    }
    backgroundPicture = picture;
    return true;
}

// Behind the frame, inside the stage's guides.
void ActorEditor::drawBackground(KGraphicDevice& device, const KGraphicRectangle& stage) const
{
    switch (background) {
    case Background::BlackChequer:
    case Background::WhiteChequer: {
        bool black = background == Background::BlackChequer;
        KColor light(black ? KColor(0x3000, 0x3000, 0x3000) : KColor(KColor::White));
        KColor dark(black ? KColor(KColor::Black) : KColor(0xD800, 0xD800, 0xD800));
        device.fillRectangle(stage, light);
        for (int32_t y = 0; y < stage.height; y += kChequerSide) {
            for (int32_t x = (y / kChequerSide) % 2 * kChequerSide; x < stage.width; x += 2 * kChequerSide) {
                int16_t width = int16_t(std::min<int32_t>(kChequerSide, stage.width - x));
                int16_t height = int16_t(std::min<int32_t>(kChequerSide, stage.height - y));
                device.fillRectangle(KGraphicRectangle(int16_t(stage.x + x), int16_t(stage.y + y), width, height),
                                     dark);
            }
        }
        return;
    }
    case Background::Picture:
    case Background::StretchedPicture: {
        if (!hasBackgroundPicture())
            return;
        KGraphicRectangle place = stage;
        if (background == Background::Picture) {
            KGraphicRectangle bounds = backgroundPicture->getBounds();
            place.width = std::min(bounds.width, stage.width);
            place.height = std::min(bounds.height, stage.height);
            backgroundPicture->drawRegion(device, KGraphicRectangle(0, 0, place.width, place.height), place);
            return;
        }
        backgroundPicture->drawIn(device, place);
        return;
    }
    default:
        return;
    }
}

// --- Commands of the Actors menu --------------------------------------------------------

void ActorEditor::doNewActor()
{
    if (!mayStart(uiText("New Actor")))
        return;
    if (saveActorChanges() == StylusActions::Cancel)
        return;
    StylusProject* project = openProject();
    KGraphicSize pageSize = project && project->getTape() ? project->getTape()->getPageSize() : KGraphicSize();
    ActorPtr made = kAdopt(new Actor(pageSize));
    startEditing(*made, true);
}

void ActorEditor::doEditActor()
{
    KString title = uiText("Edit Actor");
    if (!mayStart(title))
        return;
    KDirectory& folder = *actorsFolder();
    std::vector<KString> names = actorNamesIn(folder);
    if (names.empty()) {
        alert(title, uiText("No Actor In Project"));
        return;
    }
    int32_t chosen = 0;
    if (!StringSelectorDialog::choose(uiText("Select Actor"), names, chosen))
        return;
    if (saveActorChanges() == StylusActions::Cancel)
        return;
    KFileReference file = actorFileIn(folder, names[size_t(chosen)]);
    ActorPtr opened = kAdopt(new Actor());
    bool checkMedia = true;
    if (!opened->open(file, checkMedia))
        return;
    opened->setDisplayName(names[size_t(chosen)]);
    startEditing(*opened, false);
}

void ActorEditor::doImportActor()
{
    KString title = uiText("Import Actor To Project");
    StylusProject* project = openProject();
    KDirectory* folder = actorsFolder();
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!project || !folder || !dialogs || !mayStart(title))
        return;
    KFileType* type = KFileTypeHandler::getAssociation(KString(kActorFileExtension));
    KFileReference file;
    if (!dialogs->doOpenDialog(file, title, type ? type->getID() : 0))
        return;
    KString name = file.getPath().getName();
    if (actorFileExists(*folder, name)) {
        if (!allowsDuplicatedActors()) {
            alert(title, uiText("Actor already in project"));
            return;
        }
        name = ProjectNameRules::freeName(name, *folder);
    }
    ActorPtr imported = kAdopt(new Actor());
    bool checkMedia = true;
    if (!imported->open(file, checkMedia))
        return;
    KDirectory source(file.getPath().getParent());
    if (KDirectory* media = project->getMediaDirectory())
        imported->collectMedia(source, *media);
    imported->setDisplayName(name);
    if (!folder->doesExist())
        folder->create();
    KFileReference target = actorFileIn(*folder, name);
    imported->save(target);
}

void ActorEditor::doDuplicateActor()
{
    KString title = uiText("Duplicate Actor");
    if (!mayStart(title))
        return;
    KDirectory& folder = *actorsFolder();
    std::vector<KString> names = actorNamesIn(folder);
    if (names.empty()) {
        alert(title, uiText("No Actor In Project"));
        return;
    }
    int32_t chosen = 0;
    if (!StringSelectorDialog::choose(uiText("Select Actor"), names, chosen))
        return;
    KString name = names[size_t(chosen)] + " 2";
    if (!askNewActorName(title, uiText("New Name"), name))
        return;
    KFileReference source = actorFileIn(folder, names[size_t(chosen)]);
    ActorPtr copy = kAdopt(new Actor());
    bool checkMedia = false;
    if (!copy->open(source, checkMedia))
        return;
    copy->setDisplayName(name);
    KFileReference target = actorFileIn(folder, name);
    copy->save(target);
}

// --- Movements and frames ---------------------------------------------------------------

void ActorEditor::newMovement()
{
    if (!actor)
        return;
    ActorSequencePtr made(new ActorSequence());
    made->setName(uiText("Movement %1", KString(std::to_string(actor->getSequenceCount() + 1).c_str())));
    made->addFrame(*emptyFrame(*actor));
    actor->addSequence(*made);
    markChanged();
    showFrame(actor->getSequenceCount() - 1, 0);
}

void ActorEditor::duplicateMovement()
{
    ActorSequence* original = currentMovement();
    if (!original)
        return;
    ActorSequencePtr copy(static_cast<ActorSequence*>(original->deepCopy()));
    copy->setName(original->getName() + " 2");
    for (int32_t f = 0; f < copy->getFrameCount(); ++f)
        actor->adoptFrameTape(*copy->getFrame(f));
    actor->addSequence(*copy);
    markChanged();
    showFrame(actor->getSequenceCount() - 1, 0);
}

void ActorEditor::removeMovement()
{
    KString title = uiText("Remove Movement");
    if (!actor)
        return;
    if (actor->getSequenceCount() <= 1) {
        alert(title, uiText("An actor keeps at least one movement."));
        return;
    }
    std::vector<KString> names;
    for (int32_t s = 0; s < actor->getSequenceCount(); ++s)
        names.push_back(actor->getSequenceAt(s)->getName());
    int32_t chosen = movement;
    if (!StringSelectorDialog::choose(uiText("Select Movement To Remove"), names, chosen))
        return;
    if (askYesNo(title, uiText("Are you sure you want to delete Movement \"%1\"?", names[size_t(chosen)]))
        != StylusActions::Yes)
        return;
    ActorSequencePtr removed(actor->getSequenceAt(chosen));
    actor->removeSequence(*removed);
    markChanged();
    showFrame(chosen == movement ? 0 : (chosen < movement ? movement - 1 : movement), chosen == movement ? 0 : frame);
}

void ActorEditor::editOtherMovement()
{
    if (!actor)
        return;
    std::vector<KString> names;
    for (int32_t s = 0; s < actor->getSequenceCount(); ++s)
        names.push_back(actor->getSequenceAt(s)->getName());
    int32_t chosen = movement;
    if (StringSelectorDialog::choose(uiText("Select Movement To Edit"), names, chosen))
        showFrame(chosen, 0);
}

void ActorEditor::editParameters()
{
    ActorSequence* sequence = currentMovement();
    if (!sequence || !EditSequenceParametersDialog::edit(*actor, *sequence))
        return;
    markChanged();
    if (StylusWindow* window = mainWindow())
        window->updateTitle();
}

void ActorEditor::flip(Tape& flipped, bool horizontal) const
{
    KGraphicSize page = actor->getPageSize();
    flipped.mirrorAll(horizontal, int16_t(horizontal ? page.width / 2 : page.height / 2));
    flipped.setModified();
}

void ActorEditor::flipMovement(bool horizontal)
{
    ActorSequence* sequence = currentMovement();
    if (!sequence)
        return;
    for (int32_t f = 0; f < sequence->getFrameCount(); ++f)
        flip(*sequence->getFrame(f), horizontal);
    markChanged();
    showFrame(movement, frame);
}

void ActorEditor::flipFrame(bool horizontal)
{
    ActorSequence* sequence = currentMovement();
    Tape* shown = sequence ? sequence->getFrame(frame) : nullptr;
    if (!shown)
        return;
    flip(*shown, horizontal);
    markChanged();
    showFrame(movement, frame);
}

void ActorEditor::newFrame()
{
    ActorSequence* sequence = currentMovement();
    if (!sequence)
        return;
    sequence->insertFrame(*emptyFrame(*actor), frame + 1);
    markChanged();
    showFrame(movement, frame + 1);
}

void ActorEditor::duplicateFrame()
{
    ActorSequence* sequence = currentMovement();
    Tape* original = sequence ? sequence->getFrame(frame) : nullptr;
    if (!original)
        return;
    TapePtr copy(static_cast<Tape*>(original->deepCopy()));
    actor->adoptFrameTape(*copy);
    sequence->insertFrame(*copy, frame + 1);
    markChanged();
    showFrame(movement, frame + 1);
}

void ActorEditor::removeFrame()
{
    KString title = uiText("Remove Frame");
    ActorSequence* sequence = currentMovement();
    if (!sequence)
        return;
    if (sequence->getFrameCount() <= 1) {
        alert(title, uiText("A movement keeps at least one frame."));
        return;
    }
    if (askYesNo(title, uiText("Are you sure you want to delete this frame?")) != StylusActions::Yes)
        return;
    TapePtr removed(sequence->getFrame(frame));
    sequence->removeFrameAt(frame);
    markChanged();
    showFrame(movement, std::min(frame, sequence->getFrameCount() - 1));
}

void ActorEditor::editOtherFrame()
{
    ActorSequence* sequence = currentMovement();
    if (!sequence)
        return;
    std::vector<KString> names;
    for (int32_t f = 0; f < sequence->getFrameCount(); ++f)
        names.push_back(uiText("Frame %1", KString(std::to_string(f + 1).c_str())));
    int32_t chosen = frame;
    if (StringSelectorDialog::choose(uiText("Select Frame To Edit"), names, chosen))
        showFrame(movement, chosen);
}
