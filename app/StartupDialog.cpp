#include "app/StartupDialog.h"

#include "app/ArtResources.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "graphics/KAlphaImage.h"
#include "kernel/KClass.h"
#include "project/StylusProject.h"
#include "windowing/KApplication.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KPictureNativeControl.h"
#include "windowing/KRadioGroupNativeControl.h"

namespace {

StartupDialog* gStartup = nullptr;

constexpr int32_t kChoicesId = 10;
constexpr int32_t kPictureId = 11;
constexpr int32_t kPictureSide = 96;

} // namespace

K_DEFINE_CLASS(StartupDialog, KDialog)

StartupDialog::StartupDialog()
{
    gStartup = this;
    setTitle(uiText("TaleLoom"));
    setBounds(KGraphicRectangle(100, 100, kWidth, kHeight));
    setButtonText(CancelButton, uiText("Exit"));
}

StartupDialog::~StartupDialog()
{
    if (gStartup == this)
        gStartup = nullptr;
}

StartupDialog* StartupDialog::current() { return gStartup; }

// On the main window, a little above its centre.
void StartupDialog::placeOverMainWindow()
{
    StylusWindow* window = StylusWindow::current();
    if (!window)
        return;
    const KGraphicRectangle& main = window->getClientBounds();
    int32_t x = main.x + (main.width - kWidth) / 2;
    int32_t y = main.y + (main.height - kHeight) / 2 - 40;
    setBounds(KGraphicRectangle(int16_t(x > 0 ? x : 0), int16_t(y > 0 ? y : 0), kWidth, kHeight));
}

void StartupDialog::open(OpenMode mode, int32_t standardButtons)
{
    placeOverMainWindow();
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    auto* picture = new KPictureNativeControl(kPictureId, KWideRectangle(16, 16, kPictureSide, kPictureSide));
    if (KAlphaImagePtr art = ArtResources::loadMaskedPicture(ArtResources::kStartupPicture, ArtResources::kStartupMask))
        picture->setPicture(*art);
    addControl(*picture);
    int32_t left = kPictureSide + 50;
    choices = kAdopt(new KRadioGroupNativeControl(kChoicesId, KWideRectangle(left, 50, 200, 60),
                                                  { uiText("Start New Project"), uiText("Open Existing Project") }));
    choices->setSelected(0);
    addControl(*choices);
}

int32_t StartupDialog::getSelection() const { return choices ? choices->getSelected() : 0; }

void StartupDialog::setSelection(int32_t selection)
{
    if (choices)
        choices->setSelected(selection);
}

// Up and Down move the choice, as on the buttons themselves.
KEventReturn StartupDialog::doKeyDown(KKeyEvent& event)
{
    if (event.getKeyCode() == KKeyEvent::Up) {
        setSelection(0);
        return 1;
    }
    if (event.getKeyCode() == KKeyEvent::Down) {
        setSelection(1);
        return 1;
    }
    return KDialog::doKeyDown(event);
}

void StartupDialog::closeOpen()
{
    if (gStartup && gStartup->isOpen())
        gStartup->endDialog(-1);
}

void StartupDialog::run()
{
    for (;;) {
        KPtr<StartupDialog> dialog(new StartupDialog());
        int32_t result = dialog->runModal();
        StylusActions* actions = StylusActions::current();
        if (result == -1 || !actions)
            return;
        if (result != dialog->getButtonId(OkButton)) {
            if (KApplication* application = KApplication::current())
                application->requestQuit();
            return;
        }
        if (dialog->getSelection() == NewProject) {
            actions->doNewProject();
            return;
        }
        actions->doOpenProject();
        if (actions->getProject() && actions->getProject()->hasFile())
            return;
    }
}
