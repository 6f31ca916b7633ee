// The element dialogs on the fake native layer: the values they show and
// take, the checks that keep them open, Cancel that leaves an element's
// bytes alone and drops a new one, and the voices and sounds they start
// to let the user try an element, which stop when they close.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/ElementDialog.h"
#include "app/PauseDialog.h"
#include "app/SoundDialog.h"
#include "app/SpeechDialog.h"
#include "app/StylusActions.h"
#include "app/StylusPreviews.h"
#include "app/TextDialogStandard.h"
#include "app/WaitObjectDialog.h"
#include "kernel/KDirectory.h"
#include "kernel/KPath.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/testing/KFakeSound.h"
#include "kmultimedia/testing/KFakeSpeech.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tape/WaitObject.h"
#include "tests/graphics/StreamTestSupport.h"
#include "windowing/KTimer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

using namespace apptest;

namespace {

using Kind = KNativeControlKind;

class ElementDialogTest : public AppTest {
protected:
    void SetUp() override
    {
        AppTest::SetUp();
        sound = std::make_shared<KFakeSound::Script>();
        KFakeSound::install(sound);
        KSpeechSupport::setEngine(&engine);
    }
    void TearDown() override
    {
        KSpeechSupport::setEngine(nullptr);
        KFakeSound::install(nullptr);
        AppTest::TearDown();
    }

    void click(KWindow& dialog, const std::string& button) { layer.clickControl(buttonNamed(layer, dialog, button)); }
    void check(KWindow& dialog, const std::string& text, bool on)
    {
        layer.changeControlValue(nativeControl(layer, dialog, Kind::CheckBox, 0, text), on ? 1 : 0);
    }
    std::string lastAlert() const { return layer.alerts().empty() ? "" : layer.alerts().back().text; }
    std::string lastCaption() const { return layer.alerts().empty() ? "" : layer.alerts().back().title; }
    // Presses OK on a refused dialog: one alert more, under the dialog's
    // title, and the dialog still open.
    void expectRefused(KDialog& dialog, const std::string& text)
    {
        size_t shown = layer.alerts().size();
        click(dialog, "OK");
        ASSERT_EQ(layer.alerts().size(), shown + 1);
        EXPECT_EQ(lastAlert(), text);
        EXPECT_EQ(lastCaption(), std::string(dialog.getTitle().c_str()));
        EXPECT_TRUE(dialog.isOpen());
    }
    // The element stands on the tape at its position; the page shows it.
    TapeObject& putOnTape(Tape& tape, TapeObject& element)
    {
        tape.addElement(element);
        tape.clearModified();
        return element;
    }

    KFakeSpeechEngine engine;
    std::shared_ptr<KFakeSound::Script> sound;
};

TEST_F(ElementDialogTest, PauseShowsSecondsWithTwoDecimalsAndOkTakesTheMilliseconds)
{
    EXPECT_EQ(PauseDialog::millisecondsOf(0.29), 290);
    EXPECT_EQ(PauseDialog::millisecondsOf(1.005), 1005);
    EXPECT_EQ(PauseDialog::millisecondsOf(-2.0), 0);
    EXPECT_EQ(PauseDialog::millisecondsOf(9999.0), 3600000);
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        KPtr<StylusPause> pause = kAdopt(new StylusPause());
        pause->setDuration(1500);
        putOnTape(tape, *pause);
        uint32_t revision = pause->getRevision();

        DialogScript script(layer);
        script.then<PauseDialog>([&](PauseDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Pause"));
            const KFakeNativeLayer::Control* field = layer.controlOf(nativeControl(layer, dialog, Kind::SpinField));
            ASSERT_NE(field, nullptr);
            EXPECT_DOUBLE_EQ(field->value, 1.5);
            EXPECT_EQ(field->range.decimals, 2);
            EXPECT_DOUBLE_EQ(field->range.maximum, 3600.0);
            // The widget keeps two decimals and the hour.
            layer.changeControlValue(nativeControl(layer, dialog, Kind::SpinField), 0.287);
            EXPECT_DOUBLE_EQ(dialog.getSeconds(), 0.29);
            click(dialog, "OK");
        });
        EXPECT_TRUE(ElementDialog::edit(tape, *pause));
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(pause->getDuration(), 290);
        EXPECT_TRUE(tape.isModified());
        EXPECT_EQ(tape.getCount(), 1);
        EXPECT_GE(pause->getRevision(), revision);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ElementDialogTest, WaitTakesItsSixFlagsAndRefusesNothingToWaitFor)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        DialogScript script(layer);
        script.then<WaitObjectDialog>([&](WaitObjectDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Wait"));
            // The defaults of a new wait.
            EXPECT_FALSE(dialog.isChecked(WaitObjectDialog::WaitSounds));
            EXPECT_TRUE(dialog.isChecked(WaitObjectDialog::WaitUser));
            check(dialog, "Wait User Input", false);
            // The flags of the end do not count as something to wait for.
            check(dialog, "Visual Warning", true);
            check(dialog, "Stop Playing Sounds", true);
            check(dialog, "Stop Speech", true);
            expectRefused(dialog, "Please check at least one item to wait for.");
            EXPECT_EQ(tape.getCount(), 0);
            check(dialog, "Wait for Speech Completion", true);
            check(dialog, "Visual Warning", false);
            check(dialog, "Stop Speech", false);
            click(dialog, "OK");
        });
        StylusActions::current()->insertElement(WaitType);
        EXPECT_TRUE(script.finished());
        ASSERT_EQ(tape.getCount(), 1);
        EXPECT_EQ(tape.getPosition(), 1);
        auto* wait = dynamic_cast<WaitObject*>(tape.getAt(0));
        ASSERT_NE(wait, nullptr);
        EXPECT_FALSE(wait->getWaitForSounds());
        EXPECT_TRUE(wait->getWaitForSpeech());
        EXPECT_FALSE(wait->getWaitForUser());
        EXPECT_FALSE(wait->getVisualWarning());
        EXPECT_TRUE(wait->getStopSounds());
        EXPECT_FALSE(wait->getStopSpeech());
        EXPECT_TRUE(tape.isModified());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ElementDialogTest, SpeechSpeaksWhatTheControlsSayRefusesABlankTextAndStopsWhenItCloses)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        KPtr<StylusSpeech> speech = kAdopt(new StylusSpeech());
        speech->setText(KString("Hello"));
        speech->setVolume(0.333);
        putOnTape(tape, *speech);

        DialogScript script(layer);
        script.then<SpeechDialog>([&](SpeechDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Speech"));
            EXPECT_EQ(dialog.getText(), KString("Hello"));
            EXPECT_EQ(dialog.getVolumePosition(), 33);
            layer.typeControlText(nativeControl(layer, dialog, Kind::MultiLineText), "  \n ");
            expectRefused(dialog, "Please Specify Some Text.");

            layer.typeControlText(nativeControl(layer, dialog, Kind::MultiLineText), "Once upon\na time");
            const auto& voices = dialog.getVoices();
            auto french = std::find(voices.begin(), voices.end(), KString("French (France)"));
            ASSERT_NE(french, voices.end());
            layer.changeControlValue(nativeControl(layer, dialog, Kind::PopUpList), double(french - voices.begin()));
            layer.changeControlValue(nativeControl(layer, dialog, Kind::Slider), 40);
            check(dialog, "Wait Until Finished", false);
            click(dialog, "Speak");
            ASSERT_FALSE(engine.script->requests.empty());
            EXPECT_EQ(engine.script->requests.back().voice, "roa/fr");
            EXPECT_NE(engine.script->requests.back().text.find("Once upon"), std::string::npos);
            ASSERT_NE(dialog.getTrialSpeech(), nullptr);
            EXPECT_TRUE(dialog.getTrialSpeech()->isPlaying());
            // The element's own medium was not used.
            EXPECT_EQ(speech->getText(), KString("Hello"));
            click(dialog, "OK");
            EXPECT_FALSE(dialog.getTrialSpeech()->isPlaying());
        });
        EXPECT_TRUE(ElementDialog::edit(tape, *speech));
        EXPECT_TRUE(script.finished());
        // Lines end with a CR inside the program.
        EXPECT_EQ(speech->getText(), KString("Once upon\ra time"));
        EXPECT_EQ(speech->getVoice(), KString("French (France)"));
        EXPECT_FALSE(speech->getWaitForEnd());
        EXPECT_DOUBLE_EQ(speech->getVolume(), 0.4);
        EXPECT_TRUE(tape.isModified());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ElementDialogTest, SoundImportsIntoMediaPlaysAsTheControlsStandAndNeedsAFile)
{
    std::string outside = freshFolder("outside");
    std::string media = freshFolder("Media");
    std::ofstream(outside + "/bell.wav") << "RIFF-bell";
    std::ofstream(outside + "/notes.txt") << "text";
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        tape.setMediaDirectory(KDirectory(KPath(KString(media.c_str()), KPath::kHostPlatform)));
        DialogScript script(layer);
        script.then<SoundDialog>([&](SoundDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Sound"));
            expectRefused(dialog, "Please Select A Sound File.");
            layer.answerChooser({ true, outside + "/notes.txt" });
            click(dialog, "Import");
            EXPECT_EQ(lastAlert(), "Unsupported Format!");
            EXPECT_TRUE(dialog.getFile().getPath().isEmpty());

            layer.answerChooser({ true, outside + "/bell.wav" });
            size_t shown = layer.alerts().size();
            click(dialog, "Import");
            EXPECT_EQ(layer.alerts().size(), shown);
            EXPECT_TRUE(std::filesystem::exists(media + "/bell.wav"));
            EXPECT_EQ(dialog.getFile().getObjectName(), KString("bell.wav"));
            // The same file again is the one there.
            layer.answerChooser({ true, outside + "/bell.wav" });
            click(dialog, "Import");
            EXPECT_EQ(lastAlert(), "File already in project");
            EXPECT_EQ(lastCaption(), "Sound");

            layer.changeControlValue(nativeControl(layer, dialog, Kind::Slider), 25);
            click(dialog, "Play");
            ASSERT_NE(dialog.getTrialSound(), nullptr);
            EXPECT_TRUE(sound->playing);
            EXPECT_DOUBLE_EQ(sound->volume, 0.25);
            EXPECT_EQ(sound->openedPath, media + "/bell.wav");
            check(dialog, "Wait Until Finished", false);
            click(dialog, "OK");
            // What was started to try the sound stops with the dialog.
            EXPECT_FALSE(sound->playing);
        });
        StylusActions::current()->insertElement(SoundType);
        EXPECT_TRUE(script.finished());
        ASSERT_EQ(tape.getCount(), 1);
        auto* element = dynamic_cast<StylusSound*>(tape.getAt(0));
        ASSERT_NE(element, nullptr);
        EXPECT_TRUE(element->usesMediaNamed("bell.wav"));
        EXPECT_FALSE(element->getWaitForEnd());
        EXPECT_DOUBLE_EQ(element->getVolume(), 0.25);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ElementDialogTest, RecordTakesTheRecordedSoundAndACancelledRecordingChangesNothing)
{
    std::string media = freshFolder("Media");
    std::ofstream(media + "/voice-1.wav") << "RIFF-voice";
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        tape.setMediaDirectory(KDirectory(KPath(KString(media.c_str()), KPath::kHostPlatform)));
        bool answer = false;
        int32_t asked = 0;
        StylusActions::current()->hooks().recordSound = [&](KFileReference& file) {
            ++asked;
            if (answer)
                file = KFileReference(KPath(KString((media + "/voice-1.wav").c_str()), KPath::kHostPlatform));
            return answer;
        };
        KPtr<StylusSound> element = kAdopt(new StylusSound());
        DialogScript script(layer);
        script.then<SoundDialog>([&](SoundDialog& dialog) {
            click(dialog, "Record");
            EXPECT_TRUE(dialog.getFile().getPath().isEmpty());
            answer = true;
            size_t shown = layer.alerts().size();
            click(dialog, "Record");
            // A recording made in "Media" is taken where it is.
            EXPECT_EQ(layer.alerts().size(), shown);
            EXPECT_EQ(dialog.getFile().getObjectName(), KString("voice-1.wav"));
            click(dialog, "OK");
        });
        EXPECT_TRUE(ElementDialog::create(tape, SoundType));
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(asked, 2);
        ASSERT_EQ(tape.getCount(), 1);
        EXPECT_TRUE(tape.getAt(0)->usesMediaNamed("voice-1.wav"));
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ElementDialogTest, CancelLeavesEveryElementsBytesAndDropsANewOne)
{
    std::string outside = freshFolder("outside");
    std::ofstream(outside + "/drum.wav") << "RIFF-drum";
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        KPtr<StylusPause> pause = kAdopt(new StylusPause());
        KPtr<WaitObject> wait = kAdopt(new WaitObject());
        KPtr<StylusSpeech> speech = kAdopt(new StylusSpeech());
        speech->setVolume(0.337);
        KPtr<StylusSound> sound = kAdopt(new StylusSound());
        KPtr<StylusText> text = kAdopt(new StylusText());
        for (TapeObject* element :
             std::initializer_list<TapeObject*> { pause.get(), wait.get(), speech.get(), sound.get(), text.get() })
            putOnTape(tape, *element);

        // Every control changed, then Cancel.
        DialogScript script(layer);
        script.then<PauseDialog>([&](PauseDialog& dialog) {
            dialog.setSeconds(7.5);
            click(dialog, "Cancel");
        });
        script.then<WaitObjectDialog>([&](WaitObjectDialog& dialog) {
            for (int32_t flag = 0; flag < WaitObjectDialog::FlagCount; ++flag)
                dialog.setChecked(WaitObjectDialog::Flag(flag), flag % 2 == 0);
            click(dialog, "Cancel");
        });
        script.then<SpeechDialog>([&](SpeechDialog& dialog) {
            dialog.setText(KString("Changed"));
            layer.changeControlValue(nativeControl(layer, dialog, Kind::Slider), 90);
            check(dialog, "Wait Until Finished", false);
            click(dialog, "Speak");
            click(dialog, "Cancel");
        });
        script.then<SoundDialog>([&](SoundDialog& dialog) {
            layer.answerChooser({ true, outside + "/drum.wav" });
            click(dialog, "Import");
            check(dialog, "Wait Until Finished", false);
            click(dialog, "Cancel");
        });
        script.then<TextDialogStandard>([&](TextDialogStandard& dialog) {
            check(dialog, "Transparent Background", true);
            check(dialog, "Use Speech", false);
            check(dialog, "Highlight Text", false);
            click(dialog, "Cancel");
        });
        std::vector<std::vector<uint8_t>> before;
        for (TapeObject* element :
             std::initializer_list<TapeObject*> { pause.get(), wait.get(), speech.get(), sound.get(), text.get() }) {
            before.push_back(streams::of(*element));
            EXPECT_FALSE(ElementDialog::edit(tape, *element));
        }
        EXPECT_TRUE(script.finished());
        size_t i = 0;
        for (TapeObject* element :
             std::initializer_list<TapeObject*> { pause.get(), wait.get(), speech.get(), sound.get(), text.get() })
            EXPECT_EQ(streams::of(*element), before[i++]) << "element " << i;
        EXPECT_FALSE(tape.isModified());
        EXPECT_FALSE(speech->getSpeech().isPlaying());

        // A new element cancelled never reaches the tape.
        script.then<PauseDialog>([&](PauseDialog& dialog) { click(dialog, "Cancel"); });
        StylusActions::current()->insertElement(PauseType);
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(tape.getCount(), 5);
        EXPECT_FALSE(tape.isModified());
    });
}

TEST_F(ElementDialogTest, TextSettingsTakeTheirFlagsAndSpoilThePreviewsFromTheText)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        KPtr<StylusText> text = kAdopt(new StylusText());
        KPtr<StylusPause> after = kAdopt(new StylusPause());
        putOnTape(tape, *text);
        putOnTape(tape, *after);
        tape.setPositionQuietly(1);
        // Thumbnails built while the dialog is up would make the elements
        // valid again.
        app.getPreviews()->setPaused(true);
        text->setPreviewValid(true);
        after->setPreviewValid(true);
        DialogScript script(layer);
        script.then<TextDialogStandard>([&](TextDialogStandard& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Text Settings"));
            EXPECT_TRUE(dialog.isChecked(TextDialogStandard::UseSpeech));
            check(dialog, "Transparent Background", true);
            check(dialog, "Use Speech", false);
            check(dialog, "Wait Until Finished", false);
            check(dialog, "Highlight Text", false);
            layer.changeControlValue(nativeControl(layer, dialog, Kind::Slider), 60);
            click(dialog, "Speak");
            ASSERT_FALSE(engine.script->requests.empty());
            EXPECT_EQ(engine.script->requests.back().text.rfind("New Text", 0), 0u);
            click(dialog, "OK");
        });
        EXPECT_TRUE(ElementDialog::edit(tape, *text));
        EXPECT_TRUE(script.finished());
        EXPECT_TRUE(text->isTransparent());
        EXPECT_FALSE(text->getSpeaks());
        EXPECT_FALSE(text->getWaitForEnd());
        EXPECT_FALSE(text->getMarksWords());
        EXPECT_DOUBLE_EQ(text->getVolume(), 0.6);
        EXPECT_FALSE(text->isPreviewValid());
        EXPECT_FALSE(after->isPreviewValid());
        EXPECT_TRUE(tape.isModified());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ElementDialogTest, ADialogIsNeverOpenedWithoutItsElementOrOnAnotherKind)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        KPtr<WaitObjectDialog> dialog = kAdopt(new WaitObjectDialog());
        size_t shown = layer.alerts().size();
        dialog->open();
        EXPECT_FALSE(dialog->isOpen());
        ASSERT_EQ(layer.alerts().size(), shown + 1);
        EXPECT_EQ(lastAlert(), "Please Use WaitObjectDialog::open(const WaitObject&)!");
        EXPECT_EQ(lastCaption(), "WaitObjectDialog::open()");

        KPtr<StylusPause> pause = kAdopt(new StylusPause());
        EXPECT_FALSE(dialog->open(tape, *pause, true));
        EXPECT_FALSE(dialog->isOpen());
        EXPECT_EQ(layer.alerts().size(), shown + 2);
        EXPECT_EQ(tape.getCount(), 0);
    });
}

} // namespace
