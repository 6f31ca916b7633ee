#include "app/KSpeechExceptionsDialog.h"

#include "app/KSpeechExceptionAddDialog.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kmultimedia/KSpeechException.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KListNativeControl.h"

#include <algorithm>

namespace {

constexpr int32_t kListId = 20;
constexpr int32_t kAddId = 21;
constexpr int32_t kEditId = 22;
constexpr int32_t kDeleteId = 23;

bool byWord(const KSpeechExceptionPtr& a, const KSpeechExceptionPtr& b)
{
    return a->getWritten().compare(b->getWritten()) < 0;
}

} // namespace

K_DEFINE_CLASS(KSpeechExceptionsDialog, KDialog)

KSpeechExceptionsDialog::KSpeechExceptionsDialog()
{
    setTitle(uiText("Speech Exceptions"));
    setBounds(KGraphicRectangle(120, 120, kWidth, kHeight));
}

KSpeechExceptionsDialog::~KSpeechExceptionsDialog() = default;

void KSpeechExceptionsDialog::prepare(KSpeechExceptionHandler& dictionary)
{
    handler = &dictionary;
    entries.clear();
    for (KSpeechException* entry : dictionary.getEntries())
        entries.push_back(kAdopt(new KSpeechException(*entry)));
    std::stable_sort(entries.begin(), entries.end(), byWord);
}

void KSpeechExceptionsDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    list = kAdopt(new KListNativeControl(kListId, KWideRectangle(16, 16, 300, 254)));
    list->setColumns({ uiText("Word"), uiText("Exception") });
    addControl(*list);
    addButton = kAdopt(new KButtonNativeControl(kAddId, uiText("Add..."), KWideRectangle(326, 16, 98, 22)));
    editButton = kAdopt(new KButtonNativeControl(kEditId, uiText("Edit..."), KWideRectangle(326, 46, 98, 22)));
    deleteButton = kAdopt(new KButtonNativeControl(kDeleteId, uiText("Delete"), KWideRectangle(326, 76, 98, 22)));
    addControl(*addButton);
    addControl(*editButton);
    addControl(*deleteButton);
    showEntries(entries.empty() ? -1 : 0);
}

void KSpeechExceptionsDialog::showEntries(int32_t selected)
{
    if (!list)
        return;
    std::vector<KString> rows;
    for (const KSpeechExceptionPtr& entry : entries)
        rows.push_back(KListNativeControl::joinCells({ entry->getWritten(), entry->getSpoken() }));
    list->setItems(rows);
    select(selected);
}

int32_t KSpeechExceptionsDialog::getSelected() const
{
    int32_t row = list ? list->getSelected() : -1;
    return row >= 0 && row < int32_t(entries.size()) ? row : -1;
}

void KSpeechExceptionsDialog::select(int32_t row)
{
    if (list)
        list->setSelected(row);
    bool chosen = getSelected() >= 0;
    if (editButton)
        editButton->setEnabled(chosen);
    if (deleteButton)
        deleteButton->setEnabled(chosen);
}

int32_t KSpeechExceptionsDialog::rowOf(const KString& written) const
{
    for (size_t i = 0; i < entries.size(); ++i) {
        if (entries[i]->getWritten() == written)
            return int32_t(i);
    }
    return -1;
}

std::vector<KString> KSpeechExceptionsDialog::wordsBesides(int32_t row) const
{
    std::vector<KString> words;
    for (size_t i = 0; i < entries.size(); ++i) {
        if (int32_t(i) != row)
            words.push_back(entries[i]->getWritten());
    }
    return words;
}

int32_t KSpeechExceptionsDialog::addEntry(const KString& written, const KString& spoken)
{
    return replaceEntry(-1, written, spoken);
}

int32_t KSpeechExceptionsDialog::replaceEntry(int32_t row, const KString& written, const KString& spoken)
{
    using Refusal = KSpeechExceptionAddDialog::Refusal;
    Refusal refusal = KSpeechExceptionAddDialog::check(written, spoken, wordsBesides(row));
    if (refusal != Refusal::None) {
        KSpeechExceptionAddDialog::tell(refusal);
        return -1;
    }
    if (row >= 0 && row < int32_t(entries.size()))
        entries.erase(entries.begin() + row);
    KSpeechExceptionPtr entry = kAdopt(new KSpeechException(written, spoken));
    auto at = std::upper_bound(entries.begin(), entries.end(), entry, byWord);
    int32_t placed = int32_t(at - entries.begin());
    entries.insert(at, entry);
    showEntries(placed);
    return placed;
}

bool KSpeechExceptionsDialog::removeEntry(int32_t row)
{
    if (row < 0 || row >= int32_t(entries.size()))
        return false;
    entries.erase(entries.begin() + row);
    showEntries(entries.empty() ? -1 : std::min(row, int32_t(entries.size()) - 1));
    return true;
}

void KSpeechExceptionsDialog::addException()
{
    KString written;
    KString spoken;
    if (KSpeechExceptionAddDialog::ask(written, spoken, false, wordsBesides(-1)))
        addEntry(written, spoken);
}

void KSpeechExceptionsDialog::editException()
{
    int32_t row = getSelected();
    if (row < 0) {
        beep();
        return;
    }
    KString written = entries[size_t(row)]->getWritten();
    KString spoken = entries[size_t(row)]->getSpoken();
    if (KSpeechExceptionAddDialog::ask(written, spoken, true, wordsBesides(row)))
        replaceEntry(row, written, spoken);
}

void KSpeechExceptionsDialog::deleteException()
{
    if (!removeEntry(getSelected()))
        beep();
}

bool KSpeechExceptionsDialog::save()
{
    if (!handler)
        return true;
    std::vector<KSpeechExceptionPtr> copy;
    for (const KSpeechExceptionPtr& entry : entries)
        copy.push_back(kAdopt(new KSpeechException(*entry)));
    handler->setEntries(copy);
    // A dictionary without a file lives in memory only.
    if (handler->getFile().getPath().isEmpty())
        return true;
    if (!handler->save()) {
        handler->reload();
        alert(uiText("Speech Exceptions"),
              uiText("The speech exceptions could not be saved. Please check that the disk is not full and try "
                     "again."));
        return false;
    }
    handler->reload();
    return true;
}

KEventReturn KSpeechExceptionsDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton) && !save())
        return 1;
    return KDialog::doDialogAction(buttonId);
}

KEventReturn KSpeechExceptionsDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (addButton && source == addButton.get()) {
        addException();
        return 1;
    }
    if (editButton && source == editButton.get()) {
        editException();
        return 1;
    }
    if (deleteButton && source == deleteButton.get()) {
        deleteException();
        return 1;
    }
    if (list && source == list.get()) {
        select(getSelected());
        if (event.getType() == KControlActionEvent::Activated)
            editException();
        return 1;
    }
    return KDialog::doControlAction(event);
}

bool KSpeechExceptionsDialog::run()
{
    KSpeechExceptionHandler* current = KSpeechExceptionHandler::current();
    if (!current) {
        beep();
        return false;
    }
    return run(*current);
}

bool KSpeechExceptionsDialog::run(KSpeechExceptionHandler& dictionary)
{
    KPtr<KSpeechExceptionsDialog> dialog(new KSpeechExceptionsDialog());
    dialog->prepare(dictionary);
    return dialog->runModal() == dialog->getButtonId(OkButton);
}
