// The image dialog on the fake native layer: a picture imported into
// "Media" and refused when it is none, the options taken at OK, a new
// image in its own size fitted to the page and centred, the preview that
// follows the options, and Cancel that leaves an edited image's bytes.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/ImageDialog.h"
#include "app/StylusActions.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KDirectory.h"
#include "kernel/KPath.h"
#include "project/StylusProject.h"
#include "tape/StylusImage.h"
#include "tape/Tape.h"
#include "tests/graphics/StreamTestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace apptest;

namespace {

using Kind = KNativeControlKind;

class ImageDialogTest : public AppTest {
protected:
    void click(KWindow& dialog, const std::string& button) { layer.clickControl(buttonNamed(layer, dialog, button)); }
    void check(KWindow& dialog, const std::string& text, bool on)
    {
        layer.changeControlValue(nativeControl(layer, dialog, Kind::CheckBox, 0, text), on ? 1 : 0);
    }
    std::string lastAlert() const { return layer.alerts().empty() ? "" : layer.alerts().back().text; }
    // A red picture with a white left half, written where the test says.
    static void writePicture(const std::string& path, int16_t width, int16_t height)
    {
        KImage picture(KGraphicSize(width, height));
        picture.getDevice().fillRectangle(KGraphicRectangle(0, 0, width, height), KColor(KColor::Red));
        picture.getDevice().fillRectangle(KGraphicRectangle(0, 0, int16_t(width / 2), height), KColor(KColor::White));
        ASSERT_TRUE(picture.writeToPath(KString(path.c_str())));
    }
    // The preview's pixel, 0xRRGGBB.
    uint32_t previewAt(KWindow& dialog, int x, int y)
    {
        const auto* control = layer.controlOf(nativeControl(layer, dialog, Kind::Picture));
        const KNativeImageData& picture = control->picture;
        return picture.pixels[size_t(y * picture.width + x)] & 0xFFFFFF;
    }
};

TEST_F(ImageDialogTest, ANewImageIsImportedFittedCentredAndTakesItsOptions)
{
    std::string outside = freshFolder("pictures");
    std::string media = freshFolder("Media");
    writePicture(outside + "/wide.png", 1600, 400);
    std::ofstream(outside + "/notes.png") << "no picture at all";
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        tape.setMediaDirectory(KDirectory(KPath(KString(media.c_str()), KPath::kHostPlatform)));
        KGraphicSize page = tape.getPageSize();
        DialogScript script(layer);
        script.then<ImageDialog>([&](ImageDialog& dialog) {
            size_t shown = layer.alerts().size();
            click(dialog, "OK");
            EXPECT_EQ(layer.alerts().size(), shown + 1);
            EXPECT_EQ(lastAlert(), "Please Select An Image File.");
            EXPECT_TRUE(dialog.isOpen());

            layer.answerChooser({ true, outside + "/notes.png" });
            click(dialog, "Import");
            EXPECT_EQ(lastAlert(), "Unsupported Format!");
            EXPECT_FALSE(std::filesystem::exists(media + "/notes.png")) << "refused before copying";

            layer.answerChooser({ true, outside + "/wide.png" });
            click(dialog, "Import");
            EXPECT_TRUE(std::filesystem::exists(media + "/wide.png"));
            // The preview shows the picture (white half left) and follows a flip.
            EXPECT_EQ(previewAt(dialog, 20, 60), 0xFFFFFFu);
            EXPECT_EQ(previewAt(dialog, 140, 60), 0xFF0000u);
            check(dialog, "Flip Horizontal", true);
            EXPECT_EQ(previewAt(dialog, 20, 60), 0xFF0000u);
            layer.changeControlValue(nativeControl(layer, dialog, Kind::Slider), 50);
            check(dialog, "Transparent White", true);
            click(dialog, "OK");
        });
        StylusActions::current()->insertElement(ImageType);
        EXPECT_TRUE(script.finished());
        ASSERT_EQ(tape.getCount(), 1);
        auto& image = dynamic_cast<StylusImage&>(*tape.getAt(0));
        EXPECT_TRUE(image.usesMediaNamed("wide.png"));
        EXPECT_TRUE(image.getFlipX());
        EXPECT_FALSE(image.getFlipY());
        EXPECT_TRUE(image.getTransparentWhite());
        EXPECT_EQ(image.getThreshold(), 32768) << "round(50 x 655.35)";
        // 1600x400 shrunk to the page's width, in the middle of the page.
        KGraphicRectangle bounds = image.getBounds();
        EXPECT_EQ(bounds.width, page.width);
        EXPECT_EQ(bounds.height, page.width / 4);
        EXPECT_EQ(bounds.x, 0);
        EXPECT_EQ(bounds.y, (page.height - bounds.height) / 2);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ImageDialogTest, CancelLeavesAnEditedImageAsItWasAndOptionsKeepItsPlace)
{
    std::string media = freshFolder("Media");
    writePicture(media + "/small.png", 40, 30);
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        tape.setMediaDirectory(KDirectory(KPath(KString(media.c_str()), KPath::kHostPlatform)));
        StylusImagePtr image(new StylusImage());
        image->setImageFile(KFileReference(KPath(KString((media + "/small.png").c_str()), KPath::kHostPlatform)));
        image->setBounds(KGraphicRectangle(10, 20, 80, 60));
        tape.addElement(*image);
        std::vector<uint8_t> before = streams::of(*image);
        DialogScript script(layer);
        script.then<ImageDialog>([&](ImageDialog& dialog) {
            check(dialog, "Flip Vertical", true);
            click(dialog, "Cancel");
        });
        EXPECT_FALSE(ElementDialog::edit(tape, *image));
        EXPECT_EQ(streams::of(*image), before);

        // An edit keeps its place and size unless asked otherwise.
        script.then<ImageDialog>([&](ImageDialog& dialog) {
            check(dialog, "Blur Filter", true);
            click(dialog, "OK");
        });
        EXPECT_TRUE(ElementDialog::edit(tape, *image));
        EXPECT_TRUE(image->getBlurFilter());
        EXPECT_EQ(image->getBounds(), KGraphicRectangle(10, 20, 80, 60));
        script.then<ImageDialog>([&](ImageDialog& dialog) {
            check(dialog, "Set Original Size", true);
            click(dialog, "OK");
        });
        EXPECT_TRUE(ElementDialog::edit(tape, *image));
        EXPECT_EQ(image->getBounds(), KGraphicRectangle(10, 20, 40, 30));
        EXPECT_EQ(ImageDialog::thresholdOfSlider(100), 65535);
        EXPECT_EQ(ImageDialog::sliderOfThreshold(65535), 100);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

} // namespace
