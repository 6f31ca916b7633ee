#pragma once

#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "windowing/KDialog.h"

#include <vector>

class KEntryNativeControl;
class KPopUpListNativeControl;

// A small question with one answer: a choice among names (an actor, a
// movement, a frame) from a pop-up list, or a name typed in a field. On OK
// the parameter "Selection" holds the index chosen and "Name" the name.
class StringSelectorDialog : public KDialog {
    K_DECLARE_CLASS(StringSelectorDialog)
public:
    static constexpr int32_t kWidth = 340;
    static constexpr int32_t kHeight = 110;
    // Names longer than this would not fit the lists that show them.
    static constexpr int32_t kMaximumLength = 64;

    StringSelectorDialog();
    ~StringSelectorDialog() override;

    // A list of `choices` with `chosen` selected, or a field holding `name`
    // when `choices` is empty.
    void prepare(const KString& title, const KString& label, const std::vector<KString>& choices, int32_t chosen,
                 const KString& name);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;

    int32_t getSelection() const;
    KString getName() const;

    // Runs the list; false when cancelled. `chosen` is the index taken.
    static bool choose(const KString& title, const std::vector<KString>& choices, int32_t& chosen);
    // Runs the field; false when cancelled. `name` comes back without the
    // blanks around it, and may be empty.
    static bool askName(const KString& title, const KString& label, KString& name);

private:
    KString label;
    std::vector<KString> choices;
    int32_t selection = 0;
    KString name;
    KPtr<KPopUpListNativeControl> list;
    KPtr<KEntryNativeControl> field;
};
