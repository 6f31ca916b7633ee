// The sound highlight editor on the fake native layer: the strip (its
// width, what it draws when far along, the press and drag rules), merging,
// updating by the voice and by the rule of three, playing, and SHI files.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/KSoundHiliteEditorDialog.h"
#include "app/KSoundHiliteLoadDialog.h"
#include "app/KSoundHiliteStrip.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/testing/KFakeLevelReader.h"
#include "kmultimedia/testing/KFakeSound.h"
#include "kmultimedia/testing/KFakeSpeech.h"
#include "windowing/KEventTranslator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace apptest;

namespace {

using Kind = KNativeControlKind;

KFileReference fileAt(const std::string& path)
{
    return KFileReference(KPath(KString(path.c_str()), KPath::kHostPlatform));
}

KSoundHiliteMediaPtr mediaWith(const std::vector<std::pair<int32_t, std::string>>& words)
{
    KSoundHiliteMediaPtr media(new KSoundHiliteMedia());
    std::string text;
    for (const auto& [time, word] : words) {
        if (!text.empty())
            text += ' ';
        media->addMarker(*new KSoundHiliteMarker(time, int32_t(text.size()), KString(word.c_str())));
        text += word;
    }
    media->setText(KString(text.c_str()));
    return media;
}

std::vector<int32_t> timesOf(const KSoundHiliteMedia& media)
{
    std::vector<int32_t> times;
    for (int32_t i = 0; i < media.getMarkerCount(); ++i)
        times.push_back(media.getMarkerAt(i)->getElapsedTime());
    return times;
}

std::vector<bool> selectionOf(const KSoundHiliteMedia& media)
{
    std::vector<bool> selected;
    for (int32_t i = 0; i < media.getMarkerCount(); ++i)
        selected.push_back(media.getMarkerAt(i)->isSelected());
    return selected;
}

bool isColour(const KColor& pixel, int32_t named)
{
    KColor wanted(named);
    return pixel.getRed() >> 8 == wanted.getRed() >> 8 && pixel.getGreen() >> 8 == wanted.getGreen() >> 8
           && pixel.getBlue() >> 8 == wanted.getBlue() >> 8;
}

class SoundHiliteEditorTest : public AppTest {
protected:
    void SetUp() override
    {
        AppTest::SetUp();
        sound = std::make_shared<KFakeSound::Script>();
        sound->duration = 3.0;
        KFakeSound::install(sound);
        levels = std::make_shared<KFakeLevelReader::Script>();
        KFakeLevelReader::install(levels);
        folder = freshFolder("Media");
        std::ofstream(folder + "/reading.wav") << "RIFF";
    }
    void TearDown() override
    {
        KFakeLevelReader::install(nullptr);
        KFakeSound::install(nullptr);
        AppTest::TearDown();
    }

    // An editor shown without its modal loop, so that the test turns the
    // loop itself.
    KPtr<KSoundHiliteEditorDialog> showEditor(const KString& text, const KSoundHiliteMedia* existing, int32_t length)
    {
        KPtr<KSoundHiliteEditorDialog> editor(new KSoundHiliteEditorDialog());
        editor->prepare(text, KDirectory(KPath(KString(folder.c_str()), KPath::kHostPlatform)), existing, length);
        editor->open(KWindow::Normal);
        return editor;
    }

    void mouse(KWindow& window, int32_t message, int32_t keys, int32_t x, int32_t y)
    {
        KNativeRecord r;
        r.window = &window;
        r.message = message;
        r.param1 = keys;
        r.param2 = (y << 16) | (x & 0xFFFF);
        r.x = window.getClientBounds().x + x;
        r.y = window.getClientBounds().y + y;
        r.time = layer.now();
        layer.setCursor(r.x, r.y);
        kksDeliverNativeRecord(r);
    }

    std::string lastAlert() const { return layer.alerts().empty() ? "" : layer.alerts().back().text; }
    std::string lastCaption() const { return layer.alerts().empty() ? "" : layer.alerts().back().title; }
    std::vector<std::string> shiNames() const
    {
        std::vector<std::string> names;
        for (const KString& name :
             KSoundHiliteEditorDialog::shiFilesIn(KDirectory(KPath(KString(folder.c_str()), KPath::kHostPlatform))))
            names.emplace_back(name.c_str());
        return names;
    }

    std::shared_ptr<KFakeSound::Script> sound;
    std::shared_ptr<KFakeLevelReader::Script> levels;
    std::string folder;
};

TEST_F(SoundHiliteEditorTest, TheStripWidensWithItsMarkersAndDrawsOnlyWhatIsInViewFarAlong)
{
    EXPECT_EQ(KSoundHiliteStrip::widthFor(0), 590);
    EXPECT_EQ(KSoundHiliteStrip::widthFor(7), 590);
    EXPECT_EQ(KSoundHiliteStrip::widthFor(8), 640);
    EXPECT_EQ(KSoundHiliteStrip::widthFor(500), 40000);

    runApp({}, [&](TestApplication&) {
        // 500 markers, one every 100 ms: the strip is 40,000 pixels wide,
        // beyond any drawing surface, and marker 450 stands at pixel 36,000.
        KSoundHiliteMediaPtr media(new KSoundHiliteMedia());
        for (int32_t i = 0; i < 500; ++i)
            media->addMarker(*new KSoundHiliteMarker(i * 100, i * 2, KString("w")));
        KPtr<KSoundHiliteStrip> strip(new KSoundHiliteStrip(1, KWideRectangle(0, 0, 590, 100)));
        strip->setMedia(media.get());
        strip->setDuration(50000);
        EXPECT_EQ(strip->getStripWidth(), 40000);
        EXPECT_EQ(strip->getMaximumOffset(), 40000 - 590);
        EXPECT_EQ(strip->xOfTime(45000), 36000);
        strip->setOffset(35990);
        media->getMarkerAt(451)->setSelected(true);

        KImagePtr image(new KImage(KGraphicSize(600, 110)));
        image->getDevice().fillRectangle(KGraphicRectangle(0, 0, 600, 110), KColor(KColor::Red));
        strip->render(image->getDevice(), 5, 5);
        KGraphicDevice& device = image->getDevice();
        // Marker 450 at view pixel 10 (15 on the image), three pixels wide,
        // grey; marker 451 at 90, selected, black.
        for (int16_t x : { 14, 15, 16 })
            EXPECT_TRUE(isColour(device.getPixel(x, 60), KColor::Grey)) << x;
        for (int16_t x : { 94, 95, 96 })
            EXPECT_TRUE(isColour(device.getPixel(x, 60), KColor::Black)) << x;
        EXPECT_TRUE(isColour(device.getPixel(13, 60), KColor::White));
        EXPECT_TRUE(isColour(device.getPixel(50, 60), KColor::White));
        // The word boxes: framed black on white, and white on black for the
        // selected one.
        EXPECT_TRUE(isColour(device.getPixel(25, 10), KColor::Black));
        EXPECT_TRUE(isColour(device.getPixel(26, 11), KColor::White));
        EXPECT_TRUE(isColour(device.getPixel(106, 11), KColor::Black));
        // Nothing outside the view.
        EXPECT_TRUE(isColour(device.getPixel(2, 60), KColor::Red));
        EXPECT_TRUE(isColour(device.getPixel(596, 60), KColor::Red));
        EXPECT_TRUE(isColour(device.getPixel(300, 107), KColor::Red));
        // The last marker is in view at the largest offset.
        strip->setOffset(1000000);
        EXPECT_EQ(strip->getOffset(), 40000 - 590);
        strip->render(device, 5, 5);
        int32_t last = strip->xOfTime(49900) - strip->getOffset() + 5;
        EXPECT_TRUE(isColour(device.getPixel(int16_t(last), 60), KColor::Grey));
    });
}

TEST_F(SoundHiliteEditorTest, APressSelectsAndADraggedMarkerStopsOneMillisecondShortOfItsNeighbours)
{
    runApp({}, [&](TestApplication&) {
        KSoundHiliteMediaPtr media = mediaWith({ { 1000, "one" }, { 2000, "two" }, { 3000, "six" } });
        KPtr<KSoundHiliteEditorDialog> editor = showEditor(media->getText(), media.get(), 4000);
        KSoundHiliteStrip& strip = *editor->getStrip();
        KSoundHiliteMedia& edited = editor->getMedia();
        int32_t left = int32_t(strip.getWindowBounds().x);
        int32_t top = int32_t(strip.getWindowBounds().y) + 50;
        auto xOf = [&](int32_t time) { return left + strip.xOfTime(time); };

        // Through the window's mouse: press the middle marker, drag it past
        // the right one, then past the left one.
        mouse(*editor, KNativeMessage::LeftDown, KMouseKeys::LeftButton, xOf(2000), top);
        EXPECT_EQ(selectionOf(edited), (std::vector<bool> { false, true, false }));
        EXPECT_EQ(strip.getDragged(), 1);
        mouse(*editor, KNativeMessage::MouseMove, KMouseKeys::LeftButton, xOf(2500), top);
        EXPECT_NEAR(edited.getMarkerAt(1)->getElapsedTime(), 2500, 8);
        mouse(*editor, KNativeMessage::MouseMove, KMouseKeys::LeftButton, left + 580, top);
        EXPECT_EQ(edited.getMarkerAt(1)->getElapsedTime(), 2999);
        mouse(*editor, KNativeMessage::MouseMove, KMouseKeys::LeftButton, left + 2, top);
        EXPECT_EQ(edited.getMarkerAt(1)->getElapsedTime(), 1001);
        mouse(*editor, KNativeMessage::LeftUp, 0, left + 2, top);
        EXPECT_EQ(strip.getDragged(), -1);
        EXPECT_EQ(timesOf(edited), (std::vector<int32_t> { 1000, 1001, 3000 }));

        // Control adds to the selection, and two selected markers do not
        // move; a press elsewhere without it clears them.
        mouse(*editor, KNativeMessage::LeftDown, KMouseKeys::LeftButton, xOf(1000), top);
        mouse(*editor, KNativeMessage::LeftUp, 0, xOf(1000), top);
        mouse(*editor, KNativeMessage::LeftDown, KMouseKeys::LeftButton | KMouseKeys::Control, xOf(3000), top);
        EXPECT_EQ(selectionOf(edited), (std::vector<bool> { true, false, true }));
        EXPECT_EQ(strip.getDragged(), -1);
        mouse(*editor, KNativeMessage::MouseMove, KMouseKeys::LeftButton, xOf(3500), top);
        mouse(*editor, KNativeMessage::LeftUp, 0, xOf(3500), top);
        EXPECT_EQ(timesOf(edited), (std::vector<int32_t> { 1000, 1001, 3000 }));
        mouse(*editor, KNativeMessage::LeftDown, KMouseKeys::LeftButton, xOf(2500), top);
        mouse(*editor, KNativeMessage::LeftUp, 0, xOf(2500), top);
        EXPECT_EQ(selectionOf(edited), (std::vector<bool> { false, false, false }));

        // The first goes down to 0 and the last up to the sound's end.
        strip.pressAt(strip.xOfTime(1000), false);
        strip.dragTo(-50);
        EXPECT_EQ(edited.getMarkerAt(0)->getElapsedTime(), 0);
        strip.pressAt(strip.xOfTime(3000), false);
        strip.dragTo(2000);
        EXPECT_EQ(edited.getMarkerAt(2)->getElapsedTime(), 4000);
        // The editor works on a copy.
        EXPECT_EQ(timesOf(*media), (std::vector<int32_t> { 1000, 2000, 3000 }));
        editor->close();
    });
}

TEST_F(SoundHiliteEditorTest, MergeJoinsOnlyNeighboursAfterTheQuestionAndOkHandsBackTheMarkers)
{
    runApp({}, [&](TestApplication&) {
        KSoundHiliteMediaPtr media = mediaWith({ { 0, "one" }, { 1000, "two" }, { 2000, "six" } });
        KSoundHiliteEditorDialog::Result result;
        DialogScript script(layer);
        script.then<KSoundHiliteEditorDialog>([&](KSoundHiliteEditorDialog& editor) {
            EXPECT_EQ(editor.getTitle(), KString("Sound Highlight Editor"));
            KSoundHiliteStrip& strip = *editor.getStrip();
            KSoundHiliteMedia& edited = editor.getMedia();
            void* merge = buttonNamed(layer, editor, "Merge");
            strip.pressAt(strip.xOfTime(0), false);
            strip.pressAt(strip.xOfTime(2000), true);
            layer.clickControl(merge);
            EXPECT_EQ(lastCaption(), "Merge not possible!");
            EXPECT_EQ(lastAlert(), "Merge can be performed only on contiguous markers");
            EXPECT_EQ(edited.getMarkerCount(), 3);

            strip.pressAt(strip.xOfTime(2000), false);
            strip.pressAt(strip.xOfTime(1000), true);
            layer.answerMessageBox(KNativeAnswer::No);
            layer.clickControl(merge);
            EXPECT_EQ(lastCaption(), "Merging...");
            EXPECT_EQ(lastAlert(),
                      "Are you sure you want to merge the selected markers? This operation is not undoable.");
            EXPECT_EQ(edited.getMarkerCount(), 3);
            layer.answerMessageBox(KNativeAnswer::Yes);
            layer.clickControl(merge);
            ASSERT_EQ(edited.getMarkerCount(), 2);
            EXPECT_EQ(edited.getMarkerAt(1)->getText(), KString("two six "));
            EXPECT_EQ(edited.getMarkerAt(1)->getWordLength(), 8);
            EXPECT_EQ(edited.getMarkerAt(1)->getWordStart(), 4);
            layer.clickControl(buttonNamed(layer, editor, "OK"));
        });
        KDirectory mediaFolder(KPath(KString(folder.c_str()), KPath::kHostPlatform));
        ASSERT_TRUE(KSoundHiliteEditorDialog::edit(KString("one two six"), mediaFolder, media.get(), 3000, result));
        EXPECT_TRUE(script.finished());
        ASSERT_TRUE(result.media);
        EXPECT_EQ(result.duration, 3000);
        EXPECT_EQ(result.media->getMarkerCount(), 2);
        EXPECT_EQ(result.media->getText(), KString("one two six"));
        // What was given stays as it was.
        EXPECT_EQ(media->getMarkerCount(), 3);
    });
}

TEST_F(SoundHiliteEditorTest, UpdateFallsBackToTheRuleOfThreeAndAsksBeforeClearingMarkers)
{
    runApp({}, [&](TestApplication&) {
        // No sound: the markers cannot be placed, and the user is told.
        KPtr<KSoundHiliteEditorDialog> editor = showEditor(KString("Once upon a time"), nullptr, 0);
        layer.clickControl(buttonNamed(layer, *editor, "Update"));
        EXPECT_EQ(lastCaption(), "Warning!");
        EXPECT_EQ(editor->getMedia().getMarkerCount(), 0);

        // A sound the level reader cannot read: the rule of three over its
        // 3 seconds, 16 characters.
        editor->setSound(fileAt(folder + "/reading.wav"));
        EXPECT_EQ(editor->getDuration(), 3000);
        layer.clickControl(buttonNamed(layer, *editor, "Update"));
        EXPECT_EQ(editor->getLastPlacing(), KSoundHiliteEditorDialog::Placing::RuleOfThree);
        EXPECT_EQ(timesOf(editor->getMedia()), (std::vector<int32_t> { 0, 937, 1875, 2250 }));
        EXPECT_EQ(editor->getStrip()->getStripWidth(), 590);

        // With markers there, Update asks first; No keeps them.
        editor->getMedia().getMarkerAt(1)->setElapsedTime(700);
        layer.setTurnHook(nullptr);
        size_t asked = layer.alerts().size();
        layer.answerMessageBox(KNativeAnswer::No);
        layer.clickControl(buttonNamed(layer, *editor, "Update"));
        ASSERT_EQ(layer.alerts().size(), asked + 1);
        EXPECT_EQ(lastAlert(), "Updating will clear any edited markers. Are you sure you want to proceed?");
        EXPECT_EQ(editor->getMedia().getMarkerAt(1)->getElapsedTime(), 700);
        editor->close();
    });
}

TEST_F(SoundHiliteEditorTest, UpdatePlacesTheMarkersFromTheVoiceWhenTheEngineAndTheSoundCanBeRead)
{
    KFakeSpeechEngine engine;
    // "Once upon a time": the engine's words at 1-based characters 1, 6, 11
    // and 13, read in 1.2 s with a pause before "time".
    engine.script->words = { { 1, 0 }, { 6, 300 }, { 11, 550 }, { 13, 900 } };
    engine.script->speaksAtOnce = true;
    KSpeechSupport::setEngine(&engine);
    // The reading: sound at 0-800 and 900-1200 ms. The recording: 3 s with
    // the sound at 500-1900 ms and, after a longer pause, at 2400-2900.
    levels->answerOtherwise = true;
    levels->otherwise = KFakeLevelReader::make(1200, { { 0, 800 }, { 900, 1200 } });
    levels->files[folder + "/reading.wav"] = KFakeLevelReader::make(3000, { { 500, 1900 }, { 2400, 2900 } });
    runApp({}, [&](TestApplication&) {
        KPtr<KSoundHiliteEditorDialog> editor = showEditor(KString("Once upon a time"), nullptr, 0);
        editor->setSound(fileAt(folder + "/reading.wav"));
        layer.clickControl(buttonNamed(layer, *editor, "Update"));
        EXPECT_EQ(editor->getLastPlacing(), KSoundHiliteEditorDialog::Placing::Voice);
        std::vector<int32_t> times = timesOf(editor->getMedia());
        ASSERT_EQ(times.size(), 4u);
        // The first word at the first sound, "time" at the sound after the
        // pause; the others paced between by the reading.
        EXPECT_EQ(times[0], 500);
        EXPECT_EQ(times[3], 2400);
        EXPECT_LT(times[0], times[1]);
        EXPECT_LT(times[1], times[2]);
        EXPECT_LT(times[2], times[3]);
        EXPECT_GT(times[2], 1200);
        ASSERT_FALSE(engine.script->requests.empty());
        EXPECT_EQ(engine.script->requests.back().text, "Once upon a time ");
        editor->close();
    });
    KSpeechSupport::setEngine(nullptr);
}

TEST_F(SoundHiliteEditorTest, PlayingLightsTheMarkersTellsTheClockAndLoops)
{
    EXPECT_EQ(KSoundHiliteEditorDialog::formatClock(0), KString("00:00:00"));
    EXPECT_EQ(KSoundHiliteEditorDialog::formatClock(61234), KString("01:01:23"));
    EXPECT_EQ(KSoundHiliteEditorDialog::formatClock(3599999), KString("59:59:99"));
    runApp({}, [&](TestApplication& app) {
        KSoundHiliteMediaPtr media = mediaWith({ { 0, "one" }, { 1000, "two" }, { 2000, "six" } });
        media->setSoundFile(fileAt(folder + "/reading.wav"));
        KPtr<KSoundHiliteEditorDialog> editor = showEditor(media->getText(), media.get(), 3000);
        void* play = buttonNamed(layer, *editor, "Play");
        layer.clickControl(play);
        ASSERT_TRUE(editor->isPlaying());
        EXPECT_EQ(layer.controlOf(play)->text, "Stop");
        auto playFor = [&](double seconds) {
            KFakeSound::advance(*sound, seconds);
            for (int32_t i = 0; i < 3; ++i) {
                layer.advance(KSoundHiliteEditorDialog::kPollInterval + 10);
                app.turn();
            }
        };
        playFor(1.2);
        EXPECT_EQ(selectionOf(editor->getMedia()), (std::vector<bool> { false, true, false }));
        EXPECT_EQ(editor->getClockText(), KString("00:01:20"));
        // At the end the selection goes and the button reads "Play" again.
        playFor(2.0);
        EXPECT_FALSE(editor->isPlaying());
        EXPECT_EQ(layer.controlOf(play)->text, "Play");
        EXPECT_EQ(selectionOf(editor->getMedia()), (std::vector<bool> { false, false, false }));

        // Looping starts again with the markers as they are now.
        editor->setLooping(true);
        layer.clickControl(play);
        playFor(3.5);
        EXPECT_TRUE(editor->isPlaying());
        EXPECT_EQ(layer.controlOf(play)->text, "Stop");
        layer.clickControl(play);
        EXPECT_FALSE(editor->isPlaying());
        editor->close();
    });
}

TEST_F(SoundHiliteEditorTest, SaveAndLoadKeepTheMarkersAndAMovedSoundIsAskedFor)
{
    runApp({}, [&](TestApplication&) {
        KSoundHiliteMediaPtr media = mediaWith({ { 0, "one" }, { 1000, "two" } });
        media->setSoundFile(fileAt(folder + "/gone.wav"));
        KPtr<KSoundHiliteEditorDialog> editor = showEditor(media->getText(), media.get(), 2500);
        layer.clickControl(buttonNamed(layer, *editor, "Load..."));
        EXPECT_EQ(lastCaption(), "Load SHI File");
        EXPECT_EQ(lastAlert(), "No File Found");

        layer.answerChooser({ true, folder + "/story" });
        layer.clickControl(buttonNamed(layer, *editor, "Save..."));
        ASSERT_FALSE(layer.chooserRequests().empty());
        EXPECT_EQ(layer.chooserRequests().back().title, "Save SHI File");
        // The chooser gives the name its type's extension.
        std::vector<std::string> names = shiNames();
        ASSERT_EQ(names.size(), 1u);
        EXPECT_EQ(names[0].substr(0, 6), "story.");

        // Changed after saving, then loaded back from the list of the
        // folder's files; the sound is no longer there, so it is asked for.
        editor->getMedia().getMarkerAt(1)->setElapsedTime(1500);
        editor->setText(KString("changed"));
        DialogScript script(layer);
        script.then<KSoundHiliteLoadDialog>([&](KSoundHiliteLoadDialog& dialog) {
            const KFakeNativeLayer::Control* list = layer.controlOf(nativeControl(layer, dialog, Kind::PopUpList));
            EXPECT_EQ(list->items, names);
            layer.answerChooser({ true, folder + "/reading.wav" });
            layer.clickControl(buttonNamed(layer, dialog, "OK"));
        });
        layer.clickControl(buttonNamed(layer, *editor, "Load..."));
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(layer.chooserRequests().back().title, "Please Relocate Sound");
        EXPECT_EQ(editor->getText(), KString("one two"));
        EXPECT_EQ(timesOf(editor->getMedia()), (std::vector<int32_t> { 0, 1000 }));
        EXPECT_EQ(editor->getDuration(), 2500);
        EXPECT_EQ(std::string(editor->getMedia().getSoundFile().getPath().getNativeText().c_str()),
                  folder + "/reading.wav");
        editor->close();
    });
}

} // namespace
