#include "AppTestSupport.h"

#include "app/ColorPaletteFile.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "graphics/KImage.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tools/taleloom-tool/PaletteCommand.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KWindowEvent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using namespace apptest;

namespace {

std::string sampleCopy()
{
    std::string folder = freshFolder("palette-sample");
    fs::copy(std::string(std::getenv("TALELOOM_TEST_SOURCE_DIR")) + "/data/samples/Sample", folder + "/Sample",
             fs::copy_options::recursive);
    return folder + "/Sample/Sample.TPD";
}

KFileReference fileAt(const std::string& path)
{
    return KFileReference(KPath(KString(path.c_str()), KPath::kHostPlatform));
}

uint32_t rgb(const KColor& c)
{
    return uint32_t(c.getRed() >> 8) << 16 | uint32_t(c.getGreen() >> 8) << 8 | uint32_t(c.getBlue() >> 8);
}

uint32_t pixelAt(KImage& image, int x, int y) { return rgb(image.getDevice().getPixel(int16_t(x), int16_t(y))); }

class ToolPaletteTest : public AppTest {
protected:
    // A mouse message at a point of the palette, as the window system sends it.
    void onPalette(int32_t message, int32_t buttons, int32_t x, int32_t y)
    {
        ToolPalette* palette = ToolPalette::current();
        KNativeRecord r;
        r.window = palette;
        r.message = message;
        r.param1 = buttons;
        r.param2 = (y << 16) | (x & 0xFFFF);
        r.x = palette->getClientBounds().x + x;
        r.y = palette->getClientBounds().y + y;
        r.time = layer.now();
        layer.setCursor(r.x, r.y);
        kksDeliverNativeRecord(r);
    }
    void click(int32_t x, int32_t y, int32_t keys = 0)
    {
        onPalette(KNativeMessage::LeftDown, KMouseKeys::LeftButton | keys, x, y);
        onPalette(KNativeMessage::LeftUp, keys, x, y);
    }
    // The centre of a control.
    static std::pair<int32_t, int32_t> centreOf(int32_t id)
    {
        KWideRectangle place = ToolPalette::placeOf(id);
        return { place.x + place.width / 2, place.y + place.height / 2 };
    }
    void clickControl(int32_t id, int32_t keys = 0)
    {
        auto [x, y] = centreOf(id);
        click(x, y, keys);
    }
    static bool on(ToolPalette& palette, int32_t id)
    {
        KImageControl* control = palette.getControl(id);
        return control->isEnabled() && control->isVisible();
    }
};

// --- Layout and state ---------------------------------------------------------------

TEST_F(ToolPaletteTest, ThirtyFiveControlsStandWhereTheTablePutsThemAndThePaletteStartsFull)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        ToolPalette& palette = *app.getToolPalette();
        EXPECT_TRUE(palette.isFull());
        EXPECT_EQ(palette.getClientBounds().width, 640);
        EXPECT_EQ(palette.getClientBounds().height, 132);
        for (int32_t id = 1; id <= ToolPalette::LastControl; ++id) {
            ASSERT_NE(palette.getControl(id), nullptr) << id;
            EXPECT_EQ(palette.getControl(id)->getId(), id);
            EXPECT_EQ(palette.getControl(id)->getWindowBounds(), ToolPalette::placeOf(id)) << id;
        }
        EXPECT_EQ(ToolPalette::placeOf(1), KWideRectangle(0, 1, 32, 32));
        EXPECT_EQ(ToolPalette::placeOf(2), KWideRectangle(0, 33, 32, 32));
        EXPECT_EQ(ToolPalette::placeOf(15), KWideRectangle(224, 1, 32, 32));
        EXPECT_EQ(ToolPalette::placeOf(17), KWideRectangle(260, 2, 62, 62));
        EXPECT_EQ(ToolPalette::placeOf(19), ToolPalette::placeOf(18));
        EXPECT_EQ(ToolPalette::placeOf(24), KWideRectangle(480, 32, 32, 32));
        EXPECT_EQ(ToolPalette::placeOf(31), KWideRectangle(443, 68, 62, 62));
        EXPECT_EQ(ToolPalette::placeOf(35), KWideRectangle(523, 13, 40, 40)) << "inside the modify button";
        EXPECT_EQ(palette.getControl(4)->getTooltip(), KString("Select Brush Color"));
        EXPECT_EQ(palette.getControl(26)->getTooltip(), KString("Up/Down Tools"));
        EXPECT_EQ(ToolPalette::elementKindOf(27), 3);
        EXPECT_EQ(ToolPalette::elementKindOf(34), 1);

        // The key X and the swap both resize, and the palette stays on the screen.
        StylusWindow& window = *StylusWindow::current();
        KKeyEvent x(KKeyEvent::KeyDown, &window, 'x', 0);
        window.doKeyDown(x);
        EXPECT_FALSE(palette.isFull());
        EXPECT_EQ(palette.getClientBounds().height, 67);
        palette.setBounds(KGraphicRectangle(100, 1000, 640, 67));
        palette.swapPaletteState();
        EXPECT_EQ(palette.getClientBounds().height, 132);
        EXPECT_EQ(palette.getClientBounds().y + palette.getClientBounds().height, 1024);
        EXPECT_FALSE(layer.windowOf(palette.getNativeWindow())->setup.closable);
    });
}

TEST_F(ToolPaletteTest, TheControlsFollowTheWindowModeAndThePosition)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        ToolPalette& palette = *app.getToolPalette();
        StylusWindow& window = *StylusWindow::current();
        Tape& tape = *app.getProject()->getTape();
        ASSERT_GT(tape.getCount(), 1);
        StylusActions::current()->goToEnd();
        EXPECT_TRUE(on(palette, ToolPalette::BackButton));
        EXPECT_TRUE(on(palette, ToolPalette::BeginningButton));
        EXPECT_FALSE(on(palette, ToolPalette::ForwardButton));
        EXPECT_FALSE(on(palette, ToolPalette::EndButton));
        EXPECT_TRUE(on(palette, ToolPalette::PlayButton));
        EXPECT_FALSE(on(palette, ToolPalette::StopButton));
        EXPECT_TRUE(on(palette, ToolPalette::ModifyButton));
        EXPECT_EQ(palette.getElementIndicator(), tape.getToolEntry());
        StylusActions::current()->goToBeginning();
        EXPECT_FALSE(on(palette, ToolPalette::BackButton));
        EXPECT_FALSE(on(palette, ToolPalette::EraseButton));
        EXPECT_FALSE(on(palette, ToolPalette::ModifyButton));
        EXPECT_TRUE(on(palette, ToolPalette::EndButton));
        EXPECT_EQ(palette.getElementIndicator(), 0) << "an empty place shows the empty picture";
        // Every kind is made through its dialog or in place.
        for (int32_t id = ToolPalette::TextButton; id <= ToolPalette::WaitButton; ++id)
            EXPECT_TRUE(on(palette, id)) << id;

        window.setWindowMode(WindowMode::ActorEditing);
        for (int32_t id = 1; id <= 17; ++id)
            EXPECT_TRUE(on(palette, id)) << id;
        for (int32_t id : { 27, 28, 29, 30 })
            EXPECT_TRUE(on(palette, id)) << id;
        for (int32_t id : { 18, 20, 21, 22, 23, 24, 25, 26, 31, 32, 33, 34 })
            EXPECT_FALSE(on(palette, id)) << id;

        window.setWindowMode(WindowMode::Playing);
        for (int32_t id = 1; id <= 34; ++id)
            EXPECT_EQ(on(palette, id), id == ToolPalette::StopButton) << id;
        window.setWindowMode(WindowMode::Paused);
        EXPECT_TRUE(on(palette, ToolPalette::PlayButton)) << "play shows play and resumes";
        EXPECT_TRUE(palette.getControl(ToolPalette::StopButton)->isEnabled());
        EXPECT_FALSE(on(palette, ToolPalette::EraseButton));

        window.setWindowMode(WindowMode::None);
        EXPECT_FALSE(palette.isEnabled());
        EXPECT_TRUE(palette.getControl(ToolPalette::PlayButton)->isEnabled()) << "no control is touched";
        window.setWindowMode(WindowMode::TapeEditing);
        EXPECT_TRUE(palette.isEnabled());
    });
}

// --- Mouse ---------------------------------------------------------------------------------

TEST_F(ToolPaletteTest, AClickSelectsAColourAndTheSizeDragCountsFromThePress)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        ToolPalette& palette = *app.getToolPalette();
        EXPECT_EQ(palette.getSelectedButton(), 0) << "button 1 at first";
        clickControl(8);
        EXPECT_EQ(palette.getSelectedButton(), 7);
        EXPECT_EQ(rgb(palette.getBrushColor()), 0xEF0000u);
        EXPECT_TRUE(palette.getColorButton(7)->isSelected());
        EXPECT_FALSE(palette.getColorButton(0)->isSelected());

        // The sample in the size control is the brush: red in the middle.
        KAlphaImage* sample = palette.getControl(ToolPalette::SizeControl)->getPicture();
        ASSERT_NE(sample, nullptr);
        EXPECT_EQ(rgb(sample->getDevice().getPixel(31, 31)), 0xEF0000u);
        EXPECT_NE(rgb(sample->getDevice().getPixel(31, 31 + 20)), 0xEF0000u) << "32 wide, not more";

        auto [x, y] = centreOf(ToolPalette::SizeControl);
        onPalette(KNativeMessage::LeftDown, KMouseKeys::LeftButton, x, y);
        onPalette(KNativeMessage::MouseMove, KMouseKeys::LeftButton, x + 10, y + 5);
        EXPECT_EQ(palette.getBrushSize(), 47);
        onPalette(KNativeMessage::MouseMove, KMouseKeys::LeftButton, x - 200, y);
        EXPECT_EQ(palette.getBrushSize(), ToolPalette::kMinimumBrushSize);
        onPalette(KNativeMessage::MouseMove, KMouseKeys::LeftButton, x + 300, y + 300);
        EXPECT_EQ(palette.getBrushSize(), ToolPalette::kMaximumBrushSize);
        onPalette(KNativeMessage::LeftUp, 0, x + 300, y + 300);
        onPalette(KNativeMessage::LeftDown, KMouseKeys::LeftButton, x, y);
        onPalette(KNativeMessage::MouseMove, KMouseKeys::LeftButton, x - 28, y);
        onPalette(KNativeMessage::LeftUp, 0, x - 28, y);
        EXPECT_EQ(palette.getBrushSize(), 100) << "a new drag starts from the size at its press";
    });
}

TEST_F(ToolPaletteTest, ControlOrTheRightButtonChangesAColourWithoutSelectingIt)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        ToolPalette& palette = *app.getToolPalette();
        palette.selectColorButton(7);
        layer.answerColour({ 0x1234, 0x5678, 0x9ABC });
        clickControl(3, KMouseKeys::Control);
        EXPECT_EQ(layer.colourRequests(), 1);
        EXPECT_EQ(palette.getButtonColor(2), KColor(0x1200, 0x5600, 0x9A00));
        EXPECT_EQ(palette.getSelectedButton(), 7) << "the chosen button is not selected";

        auto [x, y] = centreOf(5);
        onPalette(KNativeMessage::RightDown, KMouseKeys::RightButton, x, y);
        onPalette(KNativeMessage::RightUp, 0, x, y);
        EXPECT_EQ(layer.colourRequests(), 2);
        EXPECT_EQ(palette.getButtonColor(4), ToolPalette::defaultButtonColor(4)) << "cancelled";

        // The selected button's new colour is the brush's at once.
        layer.answerColour({ 0x0100, 0x0200, 0x0300 });
        clickControl(8, KMouseKeys::Control);
        EXPECT_EQ(rgb(palette.getBrushColor()), 0x010203u);
        EXPECT_EQ(palette.getSelectedButton(), 7);
    });
}

TEST_F(ToolPaletteTest, TheButtonsPlayStopAndStep)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        ToolPalette& palette = *app.getToolPalette();
        Tape& tape = *app.getProject()->getTape();
        StylusActions::current()->goToEnd();
        int32_t end = tape.getPosition();
        clickControl(ToolPalette::BackButton);
        EXPECT_EQ(tape.getPosition(), end - 1);
        clickControl(ToolPalette::BeginningButton);
        EXPECT_EQ(tape.getPosition(), 0);
        clickControl(ToolPalette::ForwardButton);
        EXPECT_EQ(tape.getPosition(), 1);
        clickControl(ToolPalette::PlayButton);
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Playing);
        EXPECT_TRUE(on(palette, ToolPalette::StopButton));
        clickControl(ToolPalette::StopButton);
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Stopped);
        EXPECT_TRUE(on(palette, ToolPalette::PlayButton));
    });
}

TEST_F(ToolPaletteTest, TabWalksTheUsableControlsAndSpacePressesTheOneWithTheRing)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        ToolPalette& palette = *app.getToolPalette();
        StylusActions::current()->goToBeginning();
        EXPECT_EQ(palette.getFocusedControl(), nullptr);
        KKeyEvent tab(KKeyEvent::KeyDown, &palette, KKeyEvent::Tab, 0);
        palette.doKeyDown(tab);
        ASSERT_NE(palette.getFocusedControl(), nullptr);
        EXPECT_EQ(palette.getFocusedControl()->getId(), 1);
        KKeyEvent backTab(KKeyEvent::KeyDown, &palette, KKeyEvent::Tab, 1);
        palette.doKeyDown(backTab);
        EXPECT_EQ(palette.getFocusedControl()->getId(), ToolPalette::WaitButton) << "round to the last";
        std::vector<int32_t> visited;
        for (int32_t i = 0; i < 40; ++i) {
            palette.focusNext(false);
            visited.push_back(palette.getFocusedControl()->getId());
        }
        for (int32_t skipped : { int32_t(ToolPalette::BackButton), int32_t(ToolPalette::StopButton),
                                 int32_t(ToolPalette::ElementIndicator) })
            EXPECT_EQ(std::count(visited.begin(), visited.end(), skipped), 0) << skipped;

        while (palette.getFocusedControl()->getId() != 8)
            palette.focusNext(false);
        KKeyEvent space(KKeyEvent::KeyDown, &palette, ' ', 0);
        palette.doKeyDown(space);
        EXPECT_EQ(palette.getSelectedButton(), 7);
        while (palette.getFocusedControl()->getId() != ToolPalette::EndButton)
            palette.focusNext(false);
        KKeyEvent enter(KKeyEvent::KeyDown, &palette, KKeyEvent::Return, 0);
        palette.doKeyDown(enter);
        EXPECT_EQ(app.getProject()->getTape()->getPosition(), app.getProject()->getTape()->getCount());

        EXPECT_EQ(palette.getFocusedControl(), nullptr) << "the end button went off and gave the ring up";

        // The ring is drawn inside the control's edge.
        while (palette.getFocusedControl() == nullptr
               || palette.getFocusedControl()->getId() != ToolPalette::BeginningButton)
            palette.focusNext(false);
        KWindowEvent paint(KWindowEvent::Paint, &palette);
        palette.paint(paint);
        KWideRectangle place = ToolPalette::placeOf(ToolPalette::BeginningButton);
        EXPECT_EQ(rgb(palette.getPixel(int16_t(place.x + 1), int16_t(place.y + 10))), rgb(KColor(KColor::Highlight)));
        EXPECT_EQ(rgb(palette.getPixel(int16_t(place.x + 3), int16_t(place.y + 10))), 0u) << "its black line";
    });
}

// A child who cannot Control+click or use a second button holds the colour
// button instead; a child with one switch lets the ring come to the control
// and presses Space on the page.
TEST_F(ToolPaletteTest, ALongPressPicksAColourAndTheRingReachesThePaletteFromThePage)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        ToolPalette& palette = *app.getToolPalette();
        palette.selectColorButton(7);
        layer.answerColour({ 0x1200, 0x3400, 0x5600 });
        auto [x, y] = centreOf(3);
        onPalette(KNativeMessage::LeftDown, KMouseKeys::LeftButton, x, y);
        layer.advance(ToolPalette::kLongPress / 2);
        app.turn();
        EXPECT_EQ(layer.colourRequests(), 0) << "not yet a long press";
        layer.advance(ToolPalette::kLongPress);
        app.turn();
        EXPECT_EQ(layer.colourRequests(), 1);
        onPalette(KNativeMessage::LeftUp, 0, x, y);
        EXPECT_EQ(palette.getButtonColor(2), KColor(0x1200, 0x3400, 0x5600));
        EXPECT_EQ(palette.getSelectedButton(), 7) << "the release after the chooser selects nothing";
        clickControl(4);
        layer.advance(2 * ToolPalette::kLongPress);
        app.turn();
        EXPECT_EQ(layer.colourRequests(), 1) << "a short click starts no chooser later";
        EXPECT_EQ(palette.getSelectedButton(), 3);

        // F6 on the page brings the ring; Space presses; Escape gives the
        // keys back (Space then edits the element again).
        StylusWindow& window = *StylusWindow::current();
        auto send = [&](int32_t code, int32_t modifiers = 0) {
            KKeyEvent event(KKeyEvent::KeyDown, &window, code, modifiers);
            window.doKeyDown(event);
        };
        send(KKeyEvent::F1 + 5);
        ASSERT_NE(palette.getFocusedControl(), nullptr);
        EXPECT_EQ(palette.getFocusedControl()->getId(), 1);
        send(KKeyEvent::F1 + 5);
        send(' ');
        EXPECT_EQ(palette.getSelectedButton(), 1);
        send(KKeyEvent::Escape);
        EXPECT_EQ(palette.getFocusedControl(), nullptr);

        // Scanning steps the ring by itself, at the interval only.
        palette.setScanInterval(100);
        EXPECT_EQ(palette.getScanInterval(), ToolPalette::kMinimumScanInterval) << "kept within its bounds";
        layer.advance(ToolPalette::kMinimumScanInterval + 10);
        app.turn();
        ASSERT_NE(palette.getFocusedControl(), nullptr);
        EXPECT_EQ(palette.getFocusedControl()->getId(), 1);
        for (int32_t step = 2; step <= 5; ++step) {
            layer.advance(ToolPalette::kMinimumScanInterval + 10);
            app.turn();
        }
        EXPECT_EQ(palette.getFocusedControl()->getId(), 5);
        send(' ');
        EXPECT_EQ(palette.getSelectedButton(), 4);
        palette.setScanInterval(0);
        layer.advance(3 * ToolPalette::kMinimumScanInterval);
        app.turn();
        EXPECT_EQ(palette.getFocusedControl()->getId(), 5) << "stopped";
    });
}

// A blind teacher's screen reader finds every control by its hover text,
// its kind and its state, and follows the ring.
TEST_F(ToolPaletteTest, ScreenReadersAreToldEveryControlByName)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        ToolPalette& palette = *app.getToolPalette();
        palette.showFull(true);
        palette.selectColorButton(2);
        palette.focusNext(false);
        auto told = [&] { return layer.windowOf(palette.getNativeWindow())->accessibles; };
        // The item told of a control: the one standing where it stands.
        auto toldOf = [&](int32_t id) {
            KWideRectangle place = palette.getControl(id)->getBounds();
            for (const KNativeAccessible& item : told()) {
                if (item.bounds == KNativeRect { place.x, place.y, place.width, place.height })
                    return item;
            }
            ADD_FAILURE() << "control " << id << " was not told";
            return KNativeAccessible();
        };
        size_t shown = 0;
        for (int32_t id = 1; id <= ToolPalette::LastControl; ++id) {
            if (!palette.getControl(id)->isVisible())
                continue;
            ++shown;
            EXPECT_EQ(toldOf(id).name, ToolPalette::tooltipOf(id).c_str()) << id;
            EXPECT_FALSE(toldOf(id).name.empty()) << id;
        }
        EXPECT_EQ(told().size(), shown);
        EXPECT_GE(shown, size_t(30));
        EXPECT_EQ(toldOf(1).role, KNativeAccessibleRole::ToggleButton);
        EXPECT_TRUE(toldOf(1).focused);
        EXPECT_TRUE(toldOf(3).pressed) << "the selected colour";
        EXPECT_EQ(toldOf(ToolPalette::SizeControl).role, KNativeAccessibleRole::Slider);
        EXPECT_EQ(toldOf(ToolPalette::PlayButton).role, KNativeAccessibleRole::Button);
        palette.clearFocus();
        EXPECT_FALSE(toldOf(1).focused);
        palette.showFull(false);
        KWindowEvent paint(KWindowEvent::Paint, &palette);
        palette.paint(paint);
        EXPECT_LT(told().size(), shown) << "the hidden row is not told";
    });
}

// --- Palette files -------------------------------------------------------------------------

TEST_F(ToolPaletteTest, PaletteFilesLoadWholeOrNotAtAllAndSaveWhereTheUserKeepsThem)
{
    std::string folder = freshFolder("palettes");
    ColorPaletteFile::Colors third;
    third.set(2, KColor(0x1100, 0x2200, 0x3300));
    ASSERT_TRUE(ColorPaletteFile::save(fileAt(folder + "/Third.SCP"), third));
    {
        std::ofstream bad(folder + "/Bad.SCP", std::ios::binary);
        bad << "STCP\0\0\0\2garbage";
    }
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        ToolPalette& palette = *app.getToolPalette();
        ASSERT_TRUE(palette.loadColorsFrom(fileAt(folder + "/Third.SCP")));
        for (int32_t i = 0; i < 16; ++i)
            EXPECT_EQ(palette.getButtonColor(i), i == 2 ? KColor(0x1100, 0x2200, 0x3300)
                                                        : ColorPaletteFile::asShown(ToolPalette::defaultButtonColor(i)))
                << i;

        EXPECT_FALSE(palette.loadColorsFrom(fileAt(folder + "/Bad.SCP")));
        ASSERT_EQ(alertTexts().size(), 1u);
        EXPECT_EQ(alertTexts()[0], "This file is not a TaleLoom Colors File!");
        EXPECT_EQ(layer.alerts()[0].title, "Error while reading file");
        EXPECT_EQ(palette.getButtonColor(2), KColor(0x1100, 0x2200, 0x3300)) << "the colours stay";

        EXPECT_FALSE(palette.loadColorsFrom(fileAt(folder + "/Missing.SCP")));
        EXPECT_EQ(alertTexts().size(), 1u) << "a missing file is not told";

        // Save Colors proposes "Color Palette" in the user's palette folder.
        std::string saved = folder + "/Mine.SCP";
        layer.answerChooser({ true, saved });
        StylusActions::current()->doSaveColors();
        ASSERT_FALSE(layer.chooserRequests().empty());
        const KNativeChooserRequest& request = layer.chooserRequests().back();
        EXPECT_EQ(request.name, "Color Palette.SCP");
        EXPECT_EQ(fs::path(request.folder), fs::path(sandboxRoot() + "/data/TaleLoom/Color Palettes/"));
        EXPECT_TRUE(fs::is_directory(request.folder));
        ColorPaletteFile::Colors read;
        bool opened = false;
        ASSERT_EQ(ColorPaletteFile::load(fileAt(saved), read, opened), ColorPaletteFile::Form::Document);
        EXPECT_EQ(read.count(), 16);
        EXPECT_EQ(read.colors[2], KColor(0x1100, 0x2200, 0x3300));

        StylusActions::current()->doResetColors();
        EXPECT_EQ(palette.getButtonColor(2), ColorPaletteFile::asShown(ToolPalette::defaultButtonColor(2)));
        layer.answerChooser({ true, saved });
        StylusActions::current()->doLoadColors();
        EXPECT_EQ(palette.getButtonColor(2), KColor(0x1100, 0x2200, 0x3300));
    });
}

TEST_F(ToolPaletteTest, APaletteOnTheCommandLineLoadsItsColoursAndOpensNoStory)
{
    std::string folder = freshFolder("palette-argument");
    ColorPaletteFile::Colors first;
    first.set(0, KColor(0x4400, 0x5500, 0x6600));
    ASSERT_TRUE(ColorPaletteFile::save(fileAt(folder + "/First.SCP"), first));
    runApp({ folder + "/First.SCP" }, [&](TestApplication& app) {
        app.turn(2);
        EXPECT_EQ(app.getToolPalette()->getButtonColor(0), KColor(0x4400, 0x5500, 0x6600));
        EXPECT_EQ(rgb(app.getToolPalette()->getBrushColor()), 0x445566u);
        EXPECT_FALSE(app.getProject() && app.getProject()->hasFile());
    });
}

// --- Drawing ------------------------------------------------------------------------------

TEST(ToolPaletteRenderTest, ThePaletteDrawsItsColoursFrameAndFadedControls)
{
    KImagePtr full(new KImage());
    std::string reason;
    ASSERT_TRUE(renderToolPalette(PaletteRenderRequest(), *full, reason)) << reason;
    ASSERT_EQ(full->getSize(), KGraphicSize(640, 132));
    EXPECT_EQ(pixelAt(*full, 96 + 16, 33 + 16), 0xEF0000u) << "button 8 in the middle";
    EXPECT_EQ(pixelAt(*full, 160 + 16, 1 + 16), 0x00CFE7u) << "button 11";
    EXPECT_EQ(pixelAt(*full, 16, 17), 0xFFFFFFu) << "button 1";
    EXPECT_EQ(pixelAt(*full, 0, 17), 0x000000u) << "the frame of the selected button";
    EXPECT_EQ(pixelAt(*full, 257, 30), 0xFFFFFFu) << "the white face between the controls";
    EXPECT_EQ(pixelAt(*full, 70, 100), 0xFFFFFFu) << "between the second row's buttons";

    PaletteRenderRequest playing;
    playing.full = false;
    playing.windowMode = 3;
    playing.scale = 2;
    KImagePtr small(new KImage());
    ASSERT_TRUE(renderToolPalette(playing, *small, reason)) << reason;
    ASSERT_EQ(small->getSize(), KGraphicSize(1280, 134));
    // Disabled buttons are faded towards the white.
    uint32_t faded = pixelAt(*small, 2 * (96 + 16), 2 * (33 + 16));
    EXPECT_NE(faded, 0xEF0000u);
    EXPECT_GT(faded & 0xFF, 0x80u) << "lighter than the red itself";
    uint32_t stop = pixelAt(*small, 2 * (323 + 10), 2 * (2 + 31));
    EXPECT_GT(stop >> 16, (stop >> 8) & 0xFF) << "the stop button is shown, red and not faded";
}

} // namespace
