#include "app/PublishDialog.h"

#include "app/ProjectFiles.h"
#include "app/ProjectNameRules.h"
#include "app/Publication.h"
#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "project/StylusProject.h"
#include "windowing/KAlert.h"
#include "windowing/KBusyCursor.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KProgressDialog.h"
#include "windowing/KStaticTextNativeControl.h"

namespace {

constexpr int32_t kNameId = 20;
constexpr int32_t kSelectFolderId = 21;
constexpr int32_t kPlayerId = 22;

// What the player starts with: the language and voice the author uses now.
void fillPlayerSettings(PublishRequest& request)
{
    StylusApplication* application = StylusApplication::current();
    if (!application)
        return;
    const MainPreferences& preferences = application->getPreferences();
    request.language = preferences.applicationLanguage;
    request.voice = preferences.lastUsedVoice;
    request.speechSpeed = preferences.speechSpeed;
    request.customSpeechSpeed = preferences.customSpeechSpeed;
    request.exceptionsPath = KTextCodec::toUtf8(KSpeechExceptionHandler::defaultFile().getNativeText());
}

} // namespace

K_DEFINE_CLASS(PublishDialog, KDialog)

PublishDialog::PublishDialog()
{
    setTitle(uiText("Publish"));
    setBounds(KGraphicRectangle(100, 100, kWidth, kHeight));
}

PublishDialog::~PublishDialog() = default;

void PublishDialog::prepare(StylusProject& shown, const KDirectory& where)
{
    project = &shown;
    folder = where;
    StylusActions* actions = StylusActions::current();
    KString name = actions ? actions->getProjectName() : KString();
    proposedName
        = name.getLength() > ProjectNameRules::kMaximumLength ? name.left(ProjectNameRules::kMaximumLength) : name;
}

void PublishDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    addControl(*new KStaticTextNativeControl(uiText("Publish As"), KWideRectangle(16, 16, 180, 20)));
    nameField = kAdopt(new KEntryNativeControl(kNameId, proposedName, KWideRectangle(200, 14, 200, 24),
                                               ProjectNameRules::kMaximumLength));
    addControl(*nameField);
    folderText = kAdopt(new KStaticTextNativeControl(folder.getNativeText(), KWideRectangle(16, 48, 384, 40)));
    addControl(*folderText);
    addControl(*new KButtonNativeControl(kSelectFolderId, uiText("Select Folder"), KWideRectangle(16, 92, 170, 24)));
    playerBox = kAdopt(new KCheckBoxNativeControl(kPlayerId, uiText("Include Player"), KWideRectangle(16, 128, 384, 22),
                                                  includePlayer));
    addControl(*playerBox);
}

void PublishDialog::setName(const KString& name)
{
    proposedName = name;
    if (nameField)
        nameField->setText(name);
}

KString PublishDialog::getName() const { return nameField ? nameField->getText() : proposedName; }

void PublishDialog::setFolder(const KDirectory& chosen)
{
    folder = chosen;
    if (folderText)
        folderText->setText(folder.getNativeText());
}

void PublishDialog::setIncludePlayer(bool include)
{
    includePlayer = include;
    if (playerBox)
        playerBox->setChecked(include);
}

bool PublishDialog::getIncludePlayer() const { return playerBox ? playerBox->isChecked() : includePlayer; }

// The name keeps the rules of a project's name; an existing publication is
// refused by the run itself, before anything is written.
bool PublishDialog::accept()
{
    KString name = ProjectNameRules::trimmed(getName());
    ProjectNameRules::Problem problem = ProjectNameRules::check(name, KDirectory());
    if (problem == ProjectNameRules::Problem::TooLong || problem == ProjectNameRules::Problem::IllegalCharacters
        || name.isEmpty()) {
        alert(uiText("Warning!"), ProjectNameRules::message(problem == ProjectNameRules::Problem::None
                                                                ? ProjectNameRules::Problem::IllegalCharacters
                                                                : problem));
        return false;
    }
    return publish(name);
}

bool PublishDialog::publish(const KString& name)
{
    PublishRequest request;
    request.folder = KTextCodec::toUtf8(folder.getNativeText());
    request.name = name;
    request.includePlayer = getIncludePlayer();
    fillPlayerSettings(request);
    KProgressDialogPtr progress(new KProgressDialog());
    progress->begin(uiText("Publish"), uiText("Please Wait"));
    PublishReport report;
    bool done = false;
    {
        KBusyCursor busy;
        done = publishStory(*project, request, report,
                            [&](int64_t copied, int64_t total) { progress->report(copied, total); });
    }
    progress->end();
    if (!done) {
        alert(uiText("TaleLoom"), report.refusal);
        // A taken name may be changed; anything else ends the dialog.
        return !report.nameTaken;
    }
    KString notes = publishNotes(report);
    if (!notes.isEmpty())
        alert(uiText("TaleLoom"), notes);
    return true;
}

KEventReturn PublishDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == kSelectFolderId) {
        KDirectory chosen = folder;
        KDialogHandler* dialogs = KDialogHandler::current();
        if (dialogs && dialogs->doSelectDirectoryDialog(chosen, uiText("Select Folder")))
            setFolder(chosen);
        return 1;
    }
    if (buttonId == getButtonId(OkButton) && !accept())
        return 1;
    return KDialog::doDialogAction(buttonId);
}

KEventReturn PublishDialog::doControlAction(KControlActionEvent& event)
{
    auto* button = dynamic_cast<KButtonNativeControl*>(event.getSource());
    if (button && button->getId() == kSelectFolderId)
        return doDialogAction(kSelectFolderId);
    return KDialog::doControlAction(event);
}

void PublishDialog::ask(StylusProject& shown)
{
    KPtr<PublishDialog> dialog(new PublishDialog());
    dialog->prepare(shown, documentsFolder());
    dialog->runModal();
}
