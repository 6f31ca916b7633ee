#include "windowing/KDialog.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KLocalizer.h"
#include "windowing/KActionEvent.h"
#include "windowing/KApplication.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KWindowManager.h"

namespace {

// A modal loop must not sleep in the native wait: the flag caps each
// wait at a few milliseconds. The flag as it was comes back at the end, so
// nested modal loops work.
class NeverBlockGuard {
public:
    explicit NeverBlockGuard(KApplication& application)
        : application(application)
        , wasSet(application.hasAppFlags(KApplication::NeverBlock))
    {
        application.setAppFlags(KApplication::NeverBlock);
    }
    ~NeverBlockGuard()
    {
        if (!wasSet)
            application.clearAppFlags(KApplication::NeverBlock);
    }
    NeverBlockGuard(const NeverBlockGuard&) = delete;
    NeverBlockGuard& operator=(const NeverBlockGuard&) = delete;

private:
    KApplication& application;
    bool wasSet;
};

constexpr int32_t kStandardButtons[3] = { KDialog::OkButton, KDialog::CancelButton, KDialog::ApplyButton };
constexpr const char* kButtonKeys[3] = { kTranslatable("OK"), kTranslatable("Cancel"), kTranslatable("Apply") };

} // namespace

K_DEFINE_CLASS(KDialog, KWindow)

KDialog::KDialog()
{
    setWindowFlags(Closable);
    setTitle("Dialog");
    setBounds(KGraphicRectangle(0, 0, 400, 200));
    for (int32_t slot = 0; slot < 3; ++slot)
        buttonTexts[slot] = kTranslate(kButtonKeys[slot]);
}

KDialog::~KDialog() = default;

int32_t KDialog::slotOf(int32_t which)
{
    for (int32_t slot = 0; slot < 3; ++slot) {
        if (kStandardButtons[slot] == which)
            return slot;
    }
    return -1;
}

// Over the front window: the main window unless a modal dialog is up.
KNativeWindowSetup KDialog::makeNativeSetup() const
{
    KNativeWindowSetup setup = KWindow::makeNativeSetup();
    setup.kind = KNativeWindowKind::Dialog;
    setup.centreOnParent = true;
    KWindowManager* manager = KWindowManager::current();
    KApplication* application = KApplication::current();
    KWindow* owner = nullptr;
    if (manager && manager->getModalCount() > 0)
        owner = manager->frontWindow();
    if (!owner && application)
        owner = application->getMainWindow();
    if (!owner && manager)
        owner = manager->frontWindow();
    if (owner == this)
        owner = nullptr;
    setup.parent = owner ? owner->getNativeWindow() : nullptr;
    return setup;
}

void KDialog::open(OpenMode mode) { open(mode, standardButtons); }

void KDialog::open(OpenMode mode, int32_t bits)
{
    if (isOpen())
        KErrorHandler::fatal("Already Open.");
    standardButtons = bits;
    openWith(mode, makeNativeSetup());
    if (!isOpen())
        return;
    makeButtons();
    placeButtons();
    openedBefore = 1;
}

void KDialog::makeButtons()
{
    for (int32_t slot = 0; slot < 3; ++slot) {
        if (!(standardButtons & kStandardButtons[slot]) || buttons[slot])
            continue;
        auto* button = new KButtonNativeControl(buttonIds[slot], buttonTexts[slot],
                                                KWideRectangle(0, 0, kButtonWidth, kButtonHeight));
        button->setDefault(kStandardButtons[slot] == OkButton);
        buttons[slot] = button;
        addControl(*button);
    }
}

void KDialog::placeButtons()
{
    const KGraphicRectangle& client = getClientBounds();
    int32_t x = client.width;
    int32_t y = client.height - kButtonHeight - 8;
    for (int32_t which : { ApplyButton, CancelButton, OkButton }) {
        KButtonNativeControl* button = getStandardButton(which);
        if (!button)
            continue;
        x -= 100;
        button->setPosition(KWidePoint(x, y));
        button->setSize(KWideSize(kButtonWidth, kButtonHeight));
    }
}

KEventReturn KDialog::doPaint(KWindowEvent&)
{
    const KGraphicRectangle& client = getClientBounds();
    fillRectangle(KGraphicRectangle(0, 0, client.width, client.height), KColor(KColor::ButtonFace2));
    return 0;
}

int32_t KDialog::runModal(OpenMode mode)
{
    KDialogPtr self(this);
    open(mode);
    if (!isOpen())
        return result;
    modal = 1;
    KNativeLayer::get().setWindowModal(getNativeWindow(), true);
    if (KWindowManager* manager = KWindowManager::current())
        manager->beginModal(*this);
    KApplication* application = KApplication::current();
    if (!application) {
        close();
        return result;
    }
    NeverBlockGuard guard(*application);
    bool wasRunning = application->hasAppFlags(KApplication::Running);
    while (isOpen()) {
        application->doOneLoop();
        // A quit ends the program's loop; this one must not outlive it.
        if (wasRunning && !application->hasAppFlags(KApplication::Running))
            close();
    }
    return result;
}

void KDialog::endDialog(int32_t value)
{
    result = value;
    close();
}

// Closing the frame is cancelling.
KEventReturn KDialog::doClose(KWindowEvent&)
{
    result = buttonIds[slotOf(CancelButton)];
    return 2;
}

KEventReturn KDialog::doControlAction(KControlActionEvent& event)
{
    for (int32_t slot = 0; slot < 3; ++slot) {
        if (buttons[slot] && event.getSource() == buttons[slot].get()) {
            KEventReturn answer = doDialogAction(buttonIds[slot]);
            return answer != 0 ? answer : 1;
        }
    }
    if (!actionTarget)
        return 0;
    KActionEventPtr action(new KActionEvent(event.getType(), event.getSource()));
    action->setTime(event.getTime());
    return actionTarget.get()->handleEvent(*action);
}

KEventReturn KDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == buttonIds[slotOf(OkButton)] || buttonId == buttonIds[slotOf(CancelButton)])
        endDialog(buttonId);
    return 1;
}

void KDialog::setButtonId(int32_t which, int32_t id)
{
    int32_t slot = slotOf(which);
    if (slot < 0)
        return;
    buttonIds[slot] = id;
    if (buttons[slot])
        buttons[slot]->setId(id);
}

int32_t KDialog::getButtonId(int32_t which) const
{
    int32_t slot = slotOf(which);
    return slot < 0 ? 0 : buttonIds[slot];
}

void KDialog::setButtonText(int32_t which, const KString& text)
{
    int32_t slot = slotOf(which);
    if (slot < 0)
        return;
    buttonTexts[slot] = text;
    if (buttons[slot])
        buttons[slot]->setText(text);
}

KButtonNativeControl* KDialog::getStandardButton(int32_t which) const
{
    int32_t slot = slotOf(which);
    return slot < 0 ? nullptr : buttons[slot].get();
}

void KDialog::setParameter(const KString& name, const KVariable& value)
{
    KVariablePtr copy(new KVariable(value));
    parameters.add(name, copy, true);
}

bool KDialog::hasParameter(const KString& name) const { return parameters.hasKey(name); }

KVariable* KDialog::getParameter(const KString& name) const
{
    KThing* found = parameters.findNamedObject(name);
    return found && found->isEqualOrSubClass(KVariable::classRecord) ? static_cast<KVariable*>(found) : nullptr;
}
