// Printing on the fake native layer: a book chosen from the File menu walks
// the tape picture by picture and leaves it where it stood; the "Print
// Book" choices come back the next time; the page set-up keeps its margins;
// margins that leave no paper, and a failing printer, are told.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/FileMenu.h"
#include "app/PrintBookDialog.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "graphics/native/KNativeDevice.h"
#include "project/StylusProject.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tape/WipeOut.h"
#include "windowing/KPrintingManager.h"

#include <gtest/gtest.h>

using namespace apptest;

namespace {

using Kind = KNativeControlKind;

class PrintingTest : public AppTest {
protected:
    static StylusMenuBar& bar() { return *StylusMenuBar::current(); }
    static void* mainHandle() { return StylusWindow::current()->getNativeWindow(); }

    // Three pages of their own colour, each with a stroke; the position on
    // the middle page, nothing to save.
    static Tape& fillTape(TestApplication& app)
    {
        Tape& tape = *app.getProject()->getTape();
        for (uint32_t colour : { 0xFF0000u, 0x00FF00u, 0x0000FFu }) {
            WipeOutPtr wipe(new WipeOut());
            wipe->setColour(KColor((colour >> 16 & 0xFF) * 257, (colour >> 8 & 0xFF) * 257, (colour & 0xFF) * 257));
            tape.addElement(*wipe);
            StrokePtr stroke(new Stroke());
            stroke->setBrushSize(9);
            stroke->addPoint(20, 20);
            tape.addElement(*stroke);
        }
        tape.goToPosition(3);
        tape.clearModified();
        return tape;
    }

    void choose(int32_t item)
    {
        bar().update();
        FileMenu& file = bar().getFileMenu();
        EXPECT_TRUE(layer.chooseMenuItem(mainHandle(), file.findItem(item)->getCommand()));
    }

    // The colour in the middle of a printed sheet's rectangle.
    static uint32_t colourAt(const std::shared_ptr<KNativeDevice>& sheet, const KGraphicRectangle& where)
    {
        KPixelBuffer pixels;
        if (!sheet->beginPixels(pixels))
            return 0;
        uint32_t value = *pixels.at(where.x + where.width / 2, where.y + where.height / 2) & KPixelBuffer::kColourBits;
        sheet->endPixels(KWideRectangle());
        return value;
    }

    DialogScript script { layer };
};

} // namespace

TEST_F(PrintingTest, ABookWalksTheTapeAndLeavesItWhereItStood)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = fillTape(app);
        script.then<PrintBookDialog>([&](PrintBookDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Print Book"));
            void* perSheet = nativeControl(layer, dialog, Kind::PopUpList);
            EXPECT_EQ(layer.controlOf(perSheet)->value, 2);
            EXPECT_EQ(layer
                          .controlOf(nativeControl(layer, dialog, Kind::CheckBox, 0,
                                                   "Don't print background of color transitions"))
                          ->value,
                      1);
            layer.changeControlValue(perSheet, 0);
            layer.changeControlValue(
                nativeControl(layer, dialog, Kind::CheckBox, 0, "Don't print background of color transitions"), 0);
            layer.clickControl(buttonNamed(layer, dialog, "OK"));
        });
        choose(FileMenu::PrintBook);
        EXPECT_TRUE(script.finished());
        ASSERT_EQ(layer.printJobs().size(), 1u);
        const auto& job = layer.printJobs()[0];
        EXPECT_EQ(job.title, "TaleLoom");
        EXPECT_EQ(job.pages, 3);
        EXPECT_TRUE(job.showDialog);
        ASSERT_EQ(job.sheets.size(), 3u);
        // One picture a sheet, each page in its colour: the walk went
        // through them all.
        KGraphicRectangle printable = KPrintingManager::get().getPrintableRectangle();
        EXPECT_EQ(colourAt(job.sheets[0], printable), 0xFF0000u);
        EXPECT_EQ(colourAt(job.sheets[1], printable), 0x00FF00u);
        EXPECT_EQ(colourAt(job.sheets[2], printable), 0x0000FFu);
        EXPECT_EQ(tape.getPosition(), 3);
        EXPECT_FALSE(tape.isModified());

        // The dialog offers the last choices; a cancel prints nothing.
        script.then<PrintBookDialog>([&](PrintBookDialog& dialog) {
            EXPECT_EQ(layer.controlOf(nativeControl(layer, dialog, Kind::PopUpList))->value, 0);
            layer.clickControl(buttonNamed(layer, dialog, "Cancel"));
        });
        choose(FileMenu::PrintBook);
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(layer.printJobs().size(), 1u);

        // A cancelled print dialog is no error.
        layer.answerPrintJob(KNativePrintJob::Cancelled);
        choose(FileMenu::Print);
        EXPECT_TRUE(alertTexts().empty());
        EXPECT_EQ(tape.getPosition(), 3);
    });
}

TEST_F(PrintingTest, MarginsAreKeptAndTheirLimitsAndFailuresTold)
{
    runApp({}, [&](TestApplication& app) {
        fillTape(app);
        layer.answerPageSetup({ 2000, 1500, 2000, 1500 });
        choose(FileMenu::PageSetup);
        ASSERT_EQ(layer.pageSetups().size(), 1u);
        EXPECT_EQ(layer.pageSetups()[0].marginsLabel, "Margins (mm)");
        EXPECT_EQ(layer.pageSetups()[0].margins, KNativePrintMargins());
        EXPECT_EQ(KPrintingManager::readMargins(), (KNativePrintMargins { 2000, 1500, 2000, 1500 }));

        // The page alone: one sheet, the page centred above the footer.
        choose(FileMenu::Print);
        ASSERT_EQ(layer.printJobs().size(), 1u);
        EXPECT_EQ(layer.printJobs()[0].pages, 1);
        EXPECT_EQ(KPrintingManager::get().getPrintableRectangle().x, 240);

        // A cancelled set-up changes nothing.
        choose(FileMenu::PageSetup);
        EXPECT_EQ(KPrintingManager::readMargins(), (KNativePrintMargins { 2000, 1500, 2000, 1500 }));

        // Margins that leave less than an inch: told, and no job.
        layer.answerPageSetup({ 10000, 1000, 10000, 1000 });
        choose(FileMenu::PageSetup);
        choose(FileMenu::Print);
        EXPECT_EQ(layer.printJobs().size(), 1u);
        ASSERT_EQ(alertTexts().size(), 1u);
        EXPECT_NE(alertTexts()[0].find("less than an inch"), std::string::npos);

        // The printing system's own error is shown.
        layer.answerPageSetup({ 1000, 1000, 1000, 1000 });
        choose(FileMenu::PageSetup);
        layer.answerPrintJob(KNativePrintJob::Failed, "the printer is out of paper");
        choose(FileMenu::Print);
        ASSERT_EQ(alertTexts().size(), 2u);
        EXPECT_NE(alertTexts()[1].find("the printer is out of paper"), std::string::npos);
    });
}
