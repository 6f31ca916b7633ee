#include "app/NewProjectDialog.h"

#include "app/ProjectFiles.h"
#include "app/ProjectNameRules.h"
#include "app/StylusApplication.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KTextCodec.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

#include <string>

namespace {

constexpr int32_t kNameId = 20;
constexpr int32_t kSelectFolderId = 21;
constexpr int32_t kSizeId = 22;

KString sizeText(const KGraphicSize& size) { return uiText("%1 x %2", size.width, size.height); }

KGraphicSize screenSize()
{
    int32_t width = 0;
    int32_t height = 0;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(width, height);
    return KGraphicSize(int16_t(width), int16_t(height));
}

KGraphicSize preferredPageSize()
{
    if (StylusApplication* application = StylusApplication::current())
        return application->newDocumentPageSize();
    return KGraphicSize(800, 600);
}

} // namespace

K_DEFINE_CLASS(NewProjectDialog, KDialog)

NewProjectDialog::NewProjectDialog() { setBounds(KGraphicRectangle(100, 100, kWidth, kHeight)); }

NewProjectDialog::~NewProjectDialog() = default;

std::vector<KGraphicSize> NewProjectDialog::pageSizes(const KGraphicSize& preferred, const KGraphicSize& screen)
{
    std::vector<KGraphicSize> result { KGraphicSize(640, 480), KGraphicSize(800, 600), KGraphicSize(1024, 768) };
    auto addOnce = [&](const KGraphicSize& size) {
        if (size.width <= 0 || size.height <= 0)
            return;
        for (const KGraphicSize& known : result) {
            if (known == size)
                return;
        }
        result.push_back(size);
    };
    addOnce(screen);
    addOnce(preferred);
    return result;
}

void NewProjectDialog::prepare(const KDirectory& where, const KString& defaultName, bool newProject)
{
    folder = where;
    forNewProject = newProject;
    KString base = defaultName.isEmpty() ? uiText("Untitled") : defaultName;
    proposedName = ProjectNameRules::freeName(base, folder);
    setTitle(newProject ? uiText("New Project") : uiText("Save Project As"));
    KGraphicSize preferred = preferredPageSize();
    sizes = pageSizes(preferred, screenSize());
    for (size_t i = 0; i < sizes.size(); ++i) {
        if (sizes[i] == preferred)
            preferredSize = int32_t(i);
    }
}

void NewProjectDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    addControl(*new KStaticTextNativeControl(uiText("Project Name"), KWideRectangle(16, 16, 180, 20)));
    nameField = kAdopt(new KEntryNativeControl(kNameId, proposedName, KWideRectangle(200, 14, 180, 24),
                                               ProjectNameRules::kMaximumLength));
    addControl(*nameField);
    folderText = kAdopt(new KStaticTextNativeControl(folder.getNativeText(), KWideRectangle(16, 48, 364, 54)));
    addControl(*folderText);
    addControl(*new KButtonNativeControl(kSelectFolderId, uiText("Select Folder"), KWideRectangle(16, 108, 170, 24)));
    if (forNewProject) {
        addControl(*new KStaticTextNativeControl(uiText("Page Size"), KWideRectangle(16, 146, 180, 20)));
        std::vector<KString> items;
        for (const KGraphicSize& size : sizes)
            items.push_back(sizeText(size));
        sizeList = kAdopt(new KPopUpListNativeControl(kSizeId, KWideRectangle(200, 142, 180, 26), items));
        sizeList->setSelected(preferredSize);
        addControl(*sizeList);
    }
}

void NewProjectDialog::setName(const KString& name)
{
    proposedName = name;
    if (nameField)
        nameField->setText(name);
}

KString NewProjectDialog::getName() const { return nameField ? nameField->getText() : proposedName; }

void NewProjectDialog::setFolder(const KDirectory& chosen)
{
    folder = chosen;
    if (folderText)
        folderText->setText(folder.getNativeText());
}

KGraphicSize NewProjectDialog::getPageSize() const
{
    int32_t index = sizeList ? sizeList->getSelected() : preferredSize;
    if (index < 0 || index >= int32_t(sizes.size()))
        return preferredPageSize();
    return sizes[size_t(index)];
}

bool NewProjectDialog::accept()
{
    KString name = ProjectNameRules::trimmed(getName());
    ProjectNameRules::Problem problem = ProjectNameRules::check(name, folder);
    if (problem != ProjectNameRules::Problem::None) {
        bool exists = problem == ProjectNameRules::Problem::Exists;
        alert(exists ? uiText("TaleLoom") : uiText("Warning!"), ProjectNameRules::message(problem));
        return false;
    }
    answer.folder = folder;
    answer.name = name;
    answer.pageSize = getPageSize();
    return true;
}

KEventReturn NewProjectDialog::doDialogAction(int32_t buttonId)
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

KEventReturn NewProjectDialog::doControlAction(KControlActionEvent& event)
{
    auto* button = dynamic_cast<KButtonNativeControl*>(event.getSource());
    if (button && button->getId() == kSelectFolderId)
        return doDialogAction(kSelectFolderId);
    return KDialog::doControlAction(event);
}

bool NewProjectDialog::ask(Answer& result, const KString& defaultName, bool newProject)
{
    KPtr<NewProjectDialog> dialog(new NewProjectDialog());
    dialog->prepare(documentsFolder(), defaultName, newProject);
    int32_t ended = dialog->runModal();
    if (ended != dialog->getButtonId(OkButton))
        return false;
    result = dialog->getAnswer();
    return true;
}
