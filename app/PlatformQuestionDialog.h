#pragma once

#include "windowing/KDialog.h"

// "Convert Old TaleLoom Document": old documents do not say whether they
// were made on a Macintosh or on Windows, and their texts and file names
// are read differently for each; the user answers with one of two buttons.
class PlatformQuestionDialog : public KDialog {
    K_DECLARE_CLASS(PlatformQuestionDialog)
public:
    static constexpr int32_t kWidth = 480;
    static constexpr int32_t kHeight = 130;

    PlatformQuestionDialog();
    ~PlatformQuestionDialog() override;

    void open(OpenMode mode, int32_t standardButtons) override;

    // KString::Macintosh or KString::Windows; closing the window answers
    // Windows, the machines most old documents come from.
    static int32_t ask();
};
