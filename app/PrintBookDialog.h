#pragma once

#include "project/BookPrinter.h"
#include "windowing/KDialog.h"

class KCheckBoxNativeControl;
class KPopUpListNativeControl;

// "Print Book": how many pictures go on a sheet, and whether the page
// transitions' colour or image backgrounds are left white. It starts from
// the choices of the last time; OK passes them back as the parameters
// "ImagesPerPage", "RemoveColorBackground" and "RemoveImageBackground".
class PrintBookDialog : public KDialog {
    K_DECLARE_CLASS(PrintBookDialog)
public:
    static constexpr int32_t kWidth = 440;
    static constexpr int32_t kHeight = 170;

    PrintBookDialog();
    ~PrintBookDialog() override;

    void setOptions(const BookPrinter::Options& options);
    BookPrinter::Options getOptions() const;

    void open(OpenMode mode, int32_t standardButtons) override;
    KEventReturn doDialogAction(int32_t buttonId) override;

    // Runs the dialog; true, with the options chosen, on OK.
    static bool ask(BookPrinter::Options& options);

private:
    BookPrinter::Options options;
    KPtr<KPopUpListNativeControl> perSheetList;
    KPtr<KCheckBoxNativeControl> colourBox;
    KPtr<KCheckBoxNativeControl> imageBox;
};
