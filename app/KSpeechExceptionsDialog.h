#pragma once

#include "kmultimedia/KMultimediaForward.h"
#include "windowing/KDialog.h"

#include <vector>

class KButtonNativeControl;
class KListNativeControl;

// The speech exceptions dictionary as a list of two columns, "Word" and
// "Exception", with "Add...", "Edit..." and "Delete". The dialog works on a
// copy of the entries: OK writes them to the dictionary's file and the
// dictionary reads it again; Cancel leaves both as they were.
class KSpeechExceptionsDialog : public KDialog {
    K_DECLARE_CLASS(KSpeechExceptionsDialog)
public:
    static constexpr int32_t kWidth = 440;
    static constexpr int32_t kHeight = 320;

    KSpeechExceptionsDialog();
    ~KSpeechExceptionsDialog() override;

    // Takes a copy of the handler's entries.
    void prepare(KSpeechExceptionHandler& handler);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    KEventReturn doDialogAction(int32_t buttonId) override;
    KEventReturn doControlAction(KControlActionEvent& event) override;

    // The entries as the dialog holds them, in the order of their words.
    const std::vector<KSpeechExceptionPtr>& getEntries() const { return entries; }
    // The chosen row, -1 for none.
    int32_t getSelected() const;
    void select(int32_t row);

    // What the buttons do: "Add..." and "Edit..." ask with
    // KSpeechExceptionAddDialog; "Delete" removes the chosen row.
    void addException();
    void editException();
    void deleteException();
    // The list's changes. A row whose word is already in the list is
    // refused with "Exception already defined"; -1 then, else the row.
    int32_t addEntry(const KString& written, const KString& spoken);
    int32_t replaceEntry(int32_t row, const KString& written, const KString& spoken);
    bool removeEntry(int32_t row);
    // The words of the list, the row's left out.
    std::vector<KString> wordsBesides(int32_t row) const;

    // Opens the dialog on the current dictionary. False when it was
    // cancelled or there is no dictionary.
    static bool run();
    static bool run(KSpeechExceptionHandler& handler);

private:
    // OK: writes the entries through the handler and reads them back;
    // false, after telling, when the file could not be written.
    bool save();
    void showEntries(int32_t selected);
    int32_t rowOf(const KString& written) const;

    KSpeechExceptionHandlerPtr handler;
    std::vector<KSpeechExceptionPtr> entries;
    KPtr<KListNativeControl> list;
    KPtr<KButtonNativeControl> addButton;
    KPtr<KButtonNativeControl> editButton;
    KPtr<KButtonNativeControl> deleteButton;
};
