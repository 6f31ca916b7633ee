// The record dialog on the fake native layer, with a fake input and a fake
// player: its states and buttons, the name asked on OK with its refusals
// and the overwrite question, Cancel that leaves no file, and a machine
// without a microphone. The level meter is drawn into an image.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/KEditSoundNameDialog.h"
#include "app/KLevelMeterControl.h"
#include "app/KSoundRecordDialog.h"
#include "app/StylusActions.h"
#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KImage.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KSoundCaptureNative.h"
#include "kmultimedia/KSoundRecorder.h"
#include "kmultimedia/KWavFormat.h"
#include "kmultimedia/testing/KFakeCapture.h"
#include "kmultimedia/testing/KFakeSound.h"
#include "windowing/KButtonNativeControl.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace apptest;

namespace {

namespace fs = std::filesystem;
using Kind = KNativeControlKind;
using State = KSoundRecordSession;

std::vector<std::string> filesIn(const std::string& folder)
{
    std::vector<std::string> names;
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(folder, failure))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

uint32_t dataBytesOf(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    KWavInfo info;
    return kReadWavHeader(bytes.data(), bytes.size(), info) ? info.dataBytes : 0;
}

bool isColour(const KColor& pixel, int32_t named)
{
    KColor wanted(named);
    return pixel.getRed() >> 8 == wanted.getRed() >> 8 && pixel.getGreen() >> 8 == wanted.getGreen() >> 8
           && pixel.getBlue() >> 8 == wanted.getBlue() >> 8;
}

class SoundRecordDialogTest : public AppTest {
protected:
    void SetUp() override
    {
        AppTest::SetUp();
        input = std::make_shared<KFakeCapture::Script>();
        // A tenth of a second per drain, at -20 dBFS.
        input->bytesPerDrain = 4410;
        input->sampleValue = 3277;
        KFakeCapture::install(input);
        sound = std::make_shared<KFakeSound::Script>();
        KFakeSound::install(sound);
        folder = freshFolder("Media");
    }
    void TearDown() override
    {
        KSoundRecorder::setCaptureFactory(nullptr);
        KFakeSound::install(nullptr);
        AppTest::TearDown();
    }

    KDirectory mediaFolder() const { return KDirectory(KPath(KString(folder.c_str()), KPath::kHostPlatform)); }

    // A dialog shown without its modal loop: the test turns the loop.
    KPtr<KSoundRecordDialog> showDialog()
    {
        KPtr<KSoundRecordDialog> dialog(new KSoundRecordDialog());
        dialog->prepare(mediaFolder());
        dialog->open(KWindow::Normal);
        return dialog;
    }

    void click(KSoundRecordDialog& dialog, const std::string& button)
    {
        layer.clickControl(buttonNamed(layer, dialog, button));
    }
    bool enabled(KSoundRecordDialog& dialog, const std::string& button)
    {
        const KFakeNativeLayer::Control* control = layer.controlOf(buttonNamed(layer, dialog, button));
        return control && control->enabled;
    }
    // Record, Play, Stop and OK, as 1 for enabled.
    std::string buttons(KSoundRecordDialog& dialog)
    {
        std::string shown;
        for (const char* name : { "Record", "Play", "Stop", "OK" })
            shown += enabled(dialog, name) ? '1' : '0';
        return shown;
    }
    std::string timeShown(KSoundRecordDialog& dialog)
    {
        const KFakeNativeLayer::Control* control = layer.controlOf(nativeControl(layer, dialog, Kind::StaticText));
        return control ? control->text : "";
    }
    // Turns the loop until the fake clock moved `ms` further.
    void runFor(TestApplication& app, uint32_t ms)
    {
        uint32_t end = layer.now() + ms;
        while (int32_t(end - layer.now()) > 0)
            app.turn();
    }
    std::string lastAlert() const { return layer.alerts().empty() ? "" : layer.alerts().back().text; }
    std::string lastCaption() const { return layer.alerts().empty() ? "" : layer.alerts().back().title; }

    std::shared_ptr<KFakeCapture::Script> input;
    std::shared_ptr<KFakeSound::Script> sound;
    std::string folder;
};

} // namespace

TEST_F(SoundRecordDialogTest, RecordStopPlayAndRecordAgainWalkTheStatesAndCancelLeavesNoFile)
{
    runApp({}, [&](TestApplication& app) {
        KPtr<KSoundRecordDialog> dialog = showDialog();
        EXPECT_EQ(dialog->getTitle(), KString("Record Sound"));
        EXPECT_EQ(dialog->getBounds().width, 350);
        EXPECT_EQ(dialog->getBounds().height, 250);
        const KFakeNativeLayer::Control* record = layer.controlOf(buttonNamed(layer, *dialog, "Record"));
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->bounds.x, 16);
        EXPECT_EQ(record->bounds.width, 85);
        EXPECT_EQ(dialog->getState(), State::Ready);
        EXPECT_EQ(buttons(*dialog), "1000");
        EXPECT_EQ(timeShown(*dialog), "00:00");

        click(*dialog, "Record");
        EXPECT_EQ(dialog->getState(), State::Recording);
        EXPECT_EQ(buttons(*dialog), "0010");
        runFor(app, 2000);
        // The clock and the meter follow the take: -20 dBFS is two thirds.
        double seconds = dialog->getRecorder()->getSeconds();
        EXPECT_GE(seconds, 2.0);
        EXPECT_EQ(timeShown(*dialog), KSoundRecordSession::formatTime(seconds));
        EXPECT_NEAR(dialog->getMeter()->getLevel(), 66.67f, 0.1f);
        EXPECT_FALSE(dialog->getMeter()->isClipping());

        click(*dialog, "Stop");
        EXPECT_EQ(dialog->getState(), State::TakeReady);
        EXPECT_EQ(buttons(*dialog), "1101");
        EXPECT_FALSE(input->running);
        std::string take = KTextCodec::toUtf8(dialog->getFilePath().getNativeText());
        uint32_t firstTake = dataBytesOf(take);
        EXPECT_EQ(firstTake, dialog->getRecorder()->getBytes());
        EXPECT_GE(firstTake, 2u * 44100u);

        // Play runs to the end by itself, or stops at Stop.
        click(*dialog, "Play");
        EXPECT_EQ(dialog->getState(), State::Playing);
        EXPECT_EQ(buttons(*dialog), "1011");
        EXPECT_EQ(sound->openedPath, take);
        KFakeSound::advance(*sound, sound->duration);
        runFor(app, 200);
        EXPECT_EQ(dialog->getState(), State::TakeReady);
        click(*dialog, "Play");
        click(*dialog, "Stop");
        EXPECT_EQ(dialog->getState(), State::TakeReady);
        EXPECT_FALSE(sound->playing);

        // Record again replaces the take.
        click(*dialog, "Record");
        EXPECT_EQ(input->starts, 2);
        runFor(app, 300);
        click(*dialog, "Stop");
        EXPECT_LT(dataBytesOf(take), firstTake);
        EXPECT_EQ(filesIn(folder), std::vector<std::string> { ".Recording.WAV" });

        click(*dialog, "Cancel");
        EXPECT_FALSE(dialog->isOpen());
        EXPECT_TRUE(filesIn(folder).empty());
    });
}

TEST_F(SoundRecordDialogTest, OkAsksTheNameRefusesBadOnesAndAsksBeforeReplacingASound)
{
    runApp({}, [&](TestApplication& app) {
        // An untitled story records into the user's recordings folder.
        KDirectory where = KSoundRecordDialog::folderFor(StylusActions::current()->getProject());
        std::string recordings = fs::path(KTextCodec::toUtf8(where.getPath().getNativeText())).parent_path();
        EXPECT_EQ(recordings, sandboxRoot() + "/data/TaleLoom/Recordings");
        fs::remove_all(recordings);
        fs::create_directories(recordings);
        std::ofstream(recordings + "/Recorded Sound.WAV") << "an older sound";

        DialogScript script(layer);
        script.then<KSoundRecordDialog>([&](KSoundRecordDialog& dialog) {
            EXPECT_FALSE(enabled(dialog, "OK"));
            click(dialog, "Record");
        });
        script.then<KSoundRecordDialog>([&](KSoundRecordDialog& dialog) {
            runFor(app, 500);
            click(dialog, "Stop");
            click(dialog, "OK");
        });
        script.then<KEditSoundNameDialog>([&](KEditSoundNameDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("New Sound File"));
            EXPECT_EQ(dialog.getName(), KString("Recorded Sound"));
            layer.typeControlText(nativeControl(layer, dialog, Kind::Entry), "Tom/Jerry");
            size_t shown = layer.alerts().size();
            layer.clickControl(buttonNamed(layer, dialog, "OK"));
            EXPECT_EQ(layer.alerts().size(), shown + 1);
            EXPECT_EQ(lastAlert(), "The sound name contains illegal characters.");
            ASSERT_TRUE(dialog.isOpen());
            // Another case of an existing name is the same sound.
            layer.typeControlText(nativeControl(layer, dialog, Kind::Entry), "recorded sound");
            layer.answerMessageBox(KNativeAnswer::No);
            layer.clickControl(buttonNamed(layer, dialog, "OK"));
        });
        // Not replaced: the name is asked again, as typed.
        script.then<KEditSoundNameDialog>([&](KEditSoundNameDialog& dialog) {
            EXPECT_EQ(lastCaption(), "Warning!");
            EXPECT_EQ(lastAlert(), "This sound already exists. Are you sure you want to overwrite it?");
            EXPECT_EQ(dialog.getName(), KString("recorded sound"));
            layer.typeControlText(nativeControl(layer, dialog, Kind::Entry), "Recorded Sound.wav");
            layer.answerMessageBox(KNativeAnswer::Yes);
            layer.clickControl(buttonNamed(layer, dialog, "OK"));
        });
        KFileReference recorded;
        EXPECT_TRUE(StylusActions::current()->doRecordSound(recorded));
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(KTextCodec::toUtf8(recorded.getPath().getNativeText()), recordings + "/Recorded Sound.WAV");
        EXPECT_EQ(filesIn(recordings), std::vector<std::string> { "Recorded Sound.WAV" });
        EXPECT_GE(dataBytesOf(recordings + "/Recorded Sound.WAV"), 44100u / 2);
    });
}

TEST_F(SoundRecordDialogTest, WithoutAMicrophoneRecordSaysSoAndLeavesNothing)
{
    runApp({}, [&](TestApplication& app) {
        // A stand-in source is what an automatic source picks on a machine
        // without an input: the real capture must see through it.
        KSoundRecorder::setCaptureFactory([] { return knsCreateSoundCapture("fakesrc"); });
        KPtr<KSoundRecordDialog> dialog = showDialog();
        click(*dialog, "Record");
        EXPECT_EQ(lastCaption(), "Record Sound");
        EXPECT_EQ(lastAlert(), "No microphone was found.");
        EXPECT_EQ(dialog->getState(), State::Ready);
        EXPECT_EQ(buttons(*dialog), "1000");
        EXPECT_TRUE(filesIn(folder).empty());

        // A device that goes during a take keeps what was captured.
        input->failAfter = 3;
        KFakeCapture::install(input);
        size_t alerts = layer.alerts().size();
        click(*dialog, "Record");
        EXPECT_EQ(layer.alerts().size(), alerts);
        EXPECT_EQ(dialog->getState(), State::Recording);
        runFor(app, 500);
        EXPECT_EQ(dialog->getState(), State::TakeReady);
        EXPECT_EQ(dialog->getRecorder()->getFailure(), KSoundRecorder::DeviceLost);
        EXPECT_GT(dataBytesOf(folder + "/.Recording.WAV"), 0u);
        click(*dialog, "Cancel");
        EXPECT_TRUE(filesIn(folder).empty());
    });
}

TEST_F(SoundRecordDialogTest, TheMeterDrawsItsLevelAndHoldsItsPeakInRedWhenClipping)
{
    runApp({}, [&](TestApplication&) {
        KPtr<KLevelMeterControl> meter(new KLevelMeterControl(1, KWideRectangle(0, 0, 102, 20)));
        KImagePtr image(new KImage(KGraphicSize(110, 30)));
        KGraphicDevice& device = image->getDevice();
        auto pixel = [&](int x) { return device.getPixel(int16_t(4 + x), 14); };

        // Inner width 100: a level of 50 fills 50 pixels in green; the peak
        // of 80, 500 ms old, stands as a blue mark ending at 80.
        meter->setLevel(80.0f, 1000);
        meter->setLevel(50.0f, 1500);
        meter->render(device, 4, 4);
        EXPECT_TRUE(isColour(device.getPixel(4, 4), KColor::Black));
        EXPECT_TRUE(isColour(pixel(1), KColor::Green));
        EXPECT_TRUE(isColour(pixel(50), KColor::Green));
        EXPECT_TRUE(isColour(pixel(51), KColor::White));
        EXPECT_TRUE(isColour(pixel(79), KColor::Blue));
        EXPECT_TRUE(isColour(pixel(81), KColor::White));
        EXPECT_TRUE(isColour(pixel(101), KColor::Black));

        // Past 800 ms the mark falls at once.
        meter->setLevel(50.0f, 1801);
        meter->render(device, 4, 4);
        EXPECT_TRUE(isColour(pixel(79), KColor::White));

        // Above -1 dBFS everything is red, and stays so while the peak holds.
        meter->setLevel(KLevelMeterState::levelFromPeak(0.95), 2000);
        EXPECT_TRUE(meter->isClipping());
        meter->setLevel(30.0f, 2700);
        meter->render(device, 4, 4);
        EXPECT_TRUE(isColour(pixel(10), KColor::Red));
        EXPECT_TRUE(isColour(pixel(99), KColor::Red));
        EXPECT_TRUE(isColour(pixel(60), KColor::White));
        meter->setLevel(KLevelMeterState::levelFromPeak(0.85), 3600);
        EXPECT_FALSE(meter->isClipping());
    });
}
