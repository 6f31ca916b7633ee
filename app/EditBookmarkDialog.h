#pragma once

#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeForward.h"
#include "windowing/KDialog.h"

class KEntryNativeControl;

// The bookmark of the current element: one field with its name. OK takes
// the name as typed, without blanks around it; an empty name takes the
// bookmark away. A name that another element of the tape already carries
// is refused with a message and the dialog stays open, since a bookmark
// is found by its name alone. On OK the parameter "Bookmark" holds the
// name taken.
class EditBookmarkDialog : public KDialog {
    K_DECLARE_CLASS(EditBookmarkDialog)
public:
    static constexpr int32_t kWidth = 340;
    static constexpr int32_t kHeight = 110;
    // Longer names would not fit the navigation tool's list.
    static constexpr int32_t kMaximumLength = 64;
    static constexpr const char* kResultParameter = "Bookmark";

    EditBookmarkDialog();
    ~EditBookmarkDialog() override;

    // Runs the dialog modally on the element of the tape; true when the
    // user pressed OK.
    bool open(Tape& tape, TapeObject& element);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;

    void setName(const KString& name);
    KString getName() const;
    // Whether an element of the tape other than `element` carries the name.
    static bool isUsedElsewhere(const Tape& tape, const TapeObject& element, const KString& name);
    // The name without the blanks around it.
    static KString cleaned(const KString& name);
    // Runs a dialog on the element of the tape; false while the tape
    // plays (nothing opens) or when the user cancelled.
    static bool edit(Tape& tape, TapeObject& element);

private:
    void apply(const KString& taken);

    TapePtr tape;
    TapeObjectPtr element;
    KString name;
    KPtr<KEntryNativeControl> nameField;
};
