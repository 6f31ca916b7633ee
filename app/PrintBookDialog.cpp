#include "app/PrintBookDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KVariable.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

#include <iterator>

namespace {

constexpr int32_t kPerSheetId = 20;
constexpr int32_t kColourId = 21;
constexpr int32_t kImageId = 22;
constexpr int32_t kPerSheetChoices[] = { 1, 2, 4, 9 };

int32_t indexOfPerSheet(int32_t perSheet)
{
    for (int32_t i = 0; i < int32_t(std::size(kPerSheetChoices)); ++i) {
        if (kPerSheetChoices[i] == perSheet)
            return i;
    }
    return 2;
}

} // namespace

K_DEFINE_CLASS(PrintBookDialog, KDialog)

PrintBookDialog::PrintBookDialog()
{
    setTitle(uiText("Print Book"));
    setBounds(KGraphicRectangle(100, 100, kWidth, kHeight));
}

PrintBookDialog::~PrintBookDialog() = default;

void PrintBookDialog::setOptions(const BookPrinter::Options& chosen)
{
    options = chosen;
    if (perSheetList)
        perSheetList->setSelected(indexOfPerSheet(chosen.perSheet));
    if (colourBox)
        colourBox->setChecked(chosen.withoutColourBackgrounds);
    if (imageBox)
        imageBox->setChecked(chosen.withoutImageBackgrounds);
}

BookPrinter::Options PrintBookDialog::getOptions() const
{
    BookPrinter::Options chosen = options;
    if (perSheetList) {
        int32_t selected = perSheetList->getSelected();
        if (selected >= 0 && selected < int32_t(std::size(kPerSheetChoices)))
            chosen.perSheet = kPerSheetChoices[selected];
    }
    if (colourBox)
        chosen.withoutColourBackgrounds = colourBox->isChecked();
    if (imageBox)
        chosen.withoutImageBackgrounds = imageBox->isChecked();
    return chosen;
}

void PrintBookDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    addControl(*new KStaticTextNativeControl(uiText("Images per page"), KWideRectangle(16, 20, 180, 20)));
    perSheetList = kAdopt(
        new KPopUpListNativeControl(kPerSheetId, KWideRectangle(200, 14, 180, 30),
                                    { uiText("1 image"), uiText("2 images"), uiText("4 images"), uiText("9 images") }));
    addControl(*perSheetList);
    colourBox = kAdopt(new KCheckBoxNativeControl(kColourId, uiText("Don't print background of color transitions"),
                                                  KWideRectangle(16, 56, 408, 22), options.withoutColourBackgrounds));
    addControl(*colourBox);
    imageBox = kAdopt(new KCheckBoxNativeControl(kImageId, uiText("Don't print background of image transitions"),
                                                 KWideRectangle(16, 84, 408, 22), options.withoutImageBackgrounds));
    addControl(*imageBox);
    perSheetList->setSelected(indexOfPerSheet(options.perSheet));
}

KEventReturn PrintBookDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton)) {
        options = getOptions();
        setParameter("ImagesPerPage", KVariable(options.perSheet));
        setParameter("RemoveColorBackground", KVariable(options.withoutColourBackgrounds));
        setParameter("RemoveImageBackground", KVariable(options.withoutImageBackgrounds));
    }
    return KDialog::doDialogAction(buttonId);
}

bool PrintBookDialog::ask(BookPrinter::Options& chosen)
{
    KPtr<PrintBookDialog> dialog(new PrintBookDialog());
    dialog->setOptions(chosen);
    if (dialog->runModal() != dialog->getButtonId(OkButton))
        return false;
    chosen = dialog->getOptions();
    return true;
}
