// The page transition dialog on the fake native layer: the effect, colour
// or picture and the actors taken at OK, a picture asked for when chosen,
// the preview that plays the effect from the page before to the new one,
// and Cancel that leaves an edited transition's bytes.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/StylusActions.h"
#include "app/WipeOutDialog.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KDirectory.h"
#include "kernel/KPath.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/WipeOut.h"
#include "tests/graphics/StreamTestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace apptest;

namespace {

using Kind = KNativeControlKind;

class WipeOutDialogTest : public AppTest {
protected:
    void click(KWindow& dialog, const std::string& button) { layer.clickControl(buttonNamed(layer, dialog, button)); }
    std::string lastAlert() const { return layer.alerts().empty() ? "" : layer.alerts().back().text; }
    uint32_t previewAt(KWindow& dialog, int x, int y)
    {
        const auto* control = layer.controlOf(nativeControl(layer, dialog, Kind::Picture));
        return control->picture.pixels[size_t(y * control->picture.width + x)] & 0xFFFFFF;
    }
    // Lets the preview's timer run its effect to the end.
    void playOut(TestApplication& app)
    {
        for (int i = 0; i < 130; ++i) {
            layer.advance(WipeOutDialog::kPreviewTick + 1);
            app.turn();
        }
    }
};

TEST_F(WipeOutDialogTest, TheEffectPlaysInThePreviewAndTheChoicesGoIntoTheTransition)
{
    std::string media = freshFolder("Media");
    std::string outside = freshFolder("backgrounds");
    KImage sky(KGraphicSize(32, 24));
    sky.getDevice().fillRectangle(KGraphicRectangle(0, 0, 32, 24), KColor(0x0000, 0x8000, 0xFF00));
    ASSERT_TRUE(sky.writeToPath(KString((outside + "/sky.png").c_str())));
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        tape.setMediaDirectory(KDirectory(KPath(KString(media.c_str()), KPath::kHostPlatform)));
        DialogScript script(layer);
        script.then<WipeOutDialog>([&](WipeOutDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Page Transition"));
            // A cut shows the new page at once: black, the default colour.
            EXPECT_FALSE(dialog.isPreviewPlaying());
            EXPECT_EQ(previewAt(dialog, 5, 5), 0x000000u);
            // A fade starts from the page before and ends on the new one.
            layer.changeControlValue(nativeControl(layer, dialog, Kind::PopUpList), WipeOut::Fade);
            EXPECT_EQ(previewAt(dialog, 5, 5), 0xF0E0B0u);
            playOut(app);
            EXPECT_FALSE(dialog.isPreviewPlaying());
            EXPECT_EQ(previewAt(dialog, 5, 5), 0x000000u);

            void* with = nativeControl(layer, dialog, Kind::RadioGroup);
            layer.changeControlValue(with, 1);
            size_t shown = layer.alerts().size();
            click(dialog, "OK");
            EXPECT_EQ(layer.alerts().size(), shown + 1);
            EXPECT_EQ(lastAlert(), "Please Select An Image File.");
            EXPECT_TRUE(dialog.isOpen());

            layer.answerChooser({ true, outside + "/sky.png" });
            click(dialog, "Import");
            EXPECT_TRUE(std::filesystem::exists(media + "/sky.png"));
            layer.changeControlValue(nativeControl(layer, dialog, Kind::PopUpList), WipeOut::WipeLeft);
            EXPECT_TRUE(dialog.isPreviewPlaying()) << "a change plays the effect again";
            playOut(app);
            EXPECT_EQ(previewAt(dialog, 80, 60), 0x0080FFu) << "the picture stretched over the page";
            layer.changeControlValue(nativeControl(layer, dialog, Kind::CheckBox), 1);
            click(dialog, "OK");
        });
        StylusActions::current()->insertElement(PageTransitionType);
        EXPECT_TRUE(script.finished());
        ASSERT_EQ(tape.getCount(), 1);
        auto& transition = dynamic_cast<WipeOut&>(*tape.getAt(0));
        EXPECT_EQ(transition.getEffect(), WipeOut::WipeLeft);
        EXPECT_EQ(transition.getBackground(), WipeOut::ImageBackground);
        EXPECT_TRUE(transition.usesMediaNamed("sky.png"));
        EXPECT_TRUE(transition.getRemovesActors());

        std::vector<uint8_t> before = streams::of(transition);
        script.then<WipeOutDialog>([&](WipeOutDialog& dialog) {
            layer.changeControlValue(nativeControl(layer, dialog, Kind::PopUpList), WipeOut::Fade);
            click(dialog, "Cancel");
        });
        EXPECT_FALSE(ElementDialog::edit(tape, transition));
        EXPECT_EQ(streams::of(transition), before);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

} // namespace
