#include "app/EditBookmarkDialog.h"
#include "app/UndoStep.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KVariable.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeObject.h"
#include "windowing/KAlert.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

namespace {

constexpr int32_t kNameId = 20;

} // namespace

K_DEFINE_CLASS(EditBookmarkDialog, KDialog)

EditBookmarkDialog::EditBookmarkDialog()
{
    setTitle(uiText("Set Bookmark"));
    setBounds(KGraphicRectangle(160, 160, kWidth, kHeight));
}

EditBookmarkDialog::~EditBookmarkDialog() = default;

void EditBookmarkDialog::setName(const KString& value)
{
    name = value;
    if (nameField)
        nameField->setText(value);
}

KString EditBookmarkDialog::getName() const { return nameField ? nameField->getText() : name; }

KString EditBookmarkDialog::cleaned(const KString& value)
{
    KString result = value;
    for (char blank : { ' ', '\t' }) {
        result.trimLeft(blank);
        result.trimRight(blank);
    }
    return result;
}

bool EditBookmarkDialog::isUsedElsewhere(const Tape& onTape, const TapeObject& edited, const KString& value)
{
    if (value.isEmpty())
        return false;
    for (int32_t i = 0; i < onTape.getCount(); ++i) {
        const TapeObject* other = onTape.getAt(i);
        if (other && other != &edited && other->hasBookmark() && other->getBookmark() == value)
            return true;
    }
    return false;
}

bool EditBookmarkDialog::open(Tape& onTape, TapeObject& edited)
{
    tape = &onTape;
    element = &edited;
    name = edited.getBookmark();
    setTitle(edited.hasBookmark() ? uiText("Edit Bookmark") : uiText("Set Bookmark"));
    return runModal() == getButtonId(OkButton);
}

void EditBookmarkDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    addControl(*new KStaticTextNativeControl(uiText("Bookmark Name:"), KWideRectangle(16, 22, 120, 20)));
    nameField = kAdopt(new KEntryNativeControl(kNameId, name, KWideRectangle(140, 18, 184, 24), kMaximumLength));
    addControl(*nameField);
}

void EditBookmarkDialog::close()
{
    name = getName();
    KDialog::close();
}

KEventReturn EditBookmarkDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton) && tape && element) {
        KString taken = cleaned(getName());
        if (isUsedElsewhere(*tape, *element, taken)) {
            // TRANSLATORS: %1 is the bookmark name the user typed.
            alert(getTitle(),
                  uiText("Another element already has the bookmark \"%1\". Please choose another name.", taken));
            return 1;
        }
        apply(taken);
        setParameter(KString(kResultParameter), KVariable(taken));
    }
    return KDialog::doDialogAction(buttonId);
}

// The navigation tool's list and the menu's title name the bookmarks.
void EditBookmarkDialog::apply(const KString& taken)
{
    if (taken == element->getBookmark())
        return;
    UndoStep step(tape.get(), UndoHistory::Name::Bookmark);
    step.willChange(*element);
    if (taken.isEmpty())
        element->clearBookmark();
    else
        element->setBookmark(taken);
    tape->setModified();
    TapeHost& host = TapeHost::get();
    host.refreshBookmarks();
    host.updateMenuBar();
}

bool EditBookmarkDialog::edit(Tape& onTape, TapeObject& edited)
{
    if (onTape.isPlaying())
        return false;
    TapePtr keepTape(&onTape);
    TapeObjectPtr keepElement(&edited);
    KPtr<EditBookmarkDialog> dialog = kAdopt(new EditBookmarkDialog());
    return dialog->open(onTape, edited);
}
