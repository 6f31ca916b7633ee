// The speech exceptions dialogs on the fake native layer: the refusals
// that keep the exception's dialog open, OK that writes the dictionary's
// file and reads it back, Cancel that leaves it, and the test voice.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/KSpeechExceptionAddDialog.h"
#include "app/KSpeechExceptionsDialog.h"
#include "app/StylusActions.h"
#include "kernel/KFile.h"
#include "kmultimedia/KSpeechException.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/testing/KFakeSpeech.h"

#include <gtest/gtest.h>

using namespace apptest;

namespace {

using Kind = KNativeControlKind;

// The entries the dictionary's file holds now.
std::vector<std::pair<std::string, std::string>> entriesOnDisk(const KSpeechExceptionHandler& handler)
{
    std::vector<std::pair<std::string, std::string>> found;
    KFile in(handler.getFile());
    in.setMode(KFileModeReadBuffered);
    in.open();
    int32_t version = 0;
    std::vector<KSpeechExceptionPtr> records;
    if (in.isOpen())
        KSpeechExceptionHandler::readStream(in, version, records);
    in.close();
    for (const KSpeechExceptionPtr& record : records)
        found.emplace_back(record->getWritten().c_str(), record->getSpoken().c_str());
    return found;
}

std::vector<std::pair<std::string, std::string>> entriesOf(const KSpeechExceptionHandler& handler)
{
    std::vector<std::pair<std::string, std::string>> found;
    for (KSpeechException* entry : handler.getEntries())
        found.emplace_back(entry->getWritten().c_str(), entry->getSpoken().c_str());
    return found;
}

class SpeechExceptionsDialogTest : public AppTest {
protected:
    // Types both forms of the open exception dialog and presses OK.
    void answer(KSpeechExceptionAddDialog& dialog, const std::string& written, const std::string& spoken)
    {
        layer.typeControlText(nativeControl(layer, dialog, Kind::Entry, 0), written);
        layer.typeControlText(nativeControl(layer, dialog, Kind::Entry, 1), spoken);
        layer.clickControl(buttonNamed(layer, dialog, "OK"));
    }
    std::string lastAlert() const { return layer.alerts().empty() ? "" : layer.alerts().back().text; }
    std::string lastCaption() const { return layer.alerts().empty() ? "" : layer.alerts().back().title; }
};

TEST_F(SpeechExceptionsDialogTest, RefusedAnswersKeepTheExceptionDialogOpenAndOkSavesTheListAndReloads)
{
    runApp({}, [&](TestApplication&) {
        KSpeechExceptionHandler& handler = *KSpeechExceptionHandler::current();
        ASSERT_TRUE(handler.add("Bob", "Bobby"));
        ASSERT_TRUE(handler.save());

        DialogScript script(layer);
        script.then<KSpeechExceptionsDialog>([&](KSpeechExceptionsDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Speech Exceptions"));
            const KFakeNativeLayer::Control* list = layer.controlOf(nativeControl(layer, dialog, Kind::List));
            ASSERT_NE(list, nullptr);
            EXPECT_EQ(list->setup.columns, (std::vector<std::string> { "Word", "Exception" }));
            EXPECT_EQ(list->items, (std::vector<std::string> { "Bob\tBobby" }));
            layer.clickControl(buttonNamed(layer, dialog, "Add..."));
        });
        script.then<KSpeechExceptionAddDialog>([&](KSpeechExceptionAddDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Add Exception"));
            struct Refused {
                std::string written, spoken, caption, text;
            };
            const Refused refusals[] = {
                { "New York", "noo york", "No blanks allowed!",
                  "Spaces are not allowed in the \"Written As:\" field, please remove any spaces before trying "
                  "again." },
                { "", "noo york", "Speech Exceptions",
                  "Please type the word as it is written in the \"Written As:\" field." },
                { "NYC", "  ", "Speech Exceptions",
                  "Please type in the \"Spoken As:\" field how the word is to be spoken." },
                { "Bob", "Robert", "Speech Exceptions", "Exception already defined" },
            };
            for (const Refused& refused : refusals) {
                size_t shown = layer.alerts().size();
                answer(dialog, refused.written, refused.spoken);
                EXPECT_EQ(layer.alerts().size(), shown + 1) << refused.written;
                EXPECT_EQ(lastCaption(), refused.caption);
                EXPECT_EQ(lastAlert(), refused.text);
                EXPECT_TRUE(dialog.isOpen()) << refused.written;
            }
            answer(dialog, "NYC", "New York City");
            EXPECT_FALSE(dialog.isOpen());
        });
        script.then<KSpeechExceptionsDialog>([&](KSpeechExceptionsDialog& dialog) {
            // Only the dialog's copy has changed so far.
            EXPECT_EQ(entriesOf(handler).size(), 1u);
            const KFakeNativeLayer::Control* list = layer.controlOf(nativeControl(layer, dialog, Kind::List));
            EXPECT_EQ(list->items, (std::vector<std::string> { "Bob\tBobby", "NYC\tNew York City" }));
            EXPECT_EQ(dialog.getSelected(), 1);
            layer.clickControl(buttonNamed(layer, dialog, "OK"));
        });
        StylusActions::current()->doSpeechExceptions();
        EXPECT_TRUE(script.finished());

        std::vector<std::pair<std::string, std::string>> expected { { "Bob", "Bobby" }, { "NYC", "New York City" } };
        EXPECT_EQ(entriesOnDisk(handler), expected);
        EXPECT_EQ(entriesOf(handler), expected);
        EXPECT_EQ(handler.getReadResult(), KSpeechExceptionHandler::ReadResult::Read);
    });
}

TEST_F(SpeechExceptionsDialogTest, EditingAndDeletingChangeOnlyTheCopyUntilOkAndCancelLeavesEverything)
{
    runApp({}, [&](TestApplication&) {
        KSpeechExceptionHandler& handler = *KSpeechExceptionHandler::current();
        handler.add("Bob", "Bobby");
        handler.add("Dr.", "Doctor");
        handler.add("Zoe", "Zoey");
        ASSERT_TRUE(handler.save());
        auto before = entriesOf(handler);

        // Edit the second row into a word of the list: refused; then into
        // a new word, which moves it to its place in the order.
        DialogScript script(layer);
        script.then<KSpeechExceptionsDialog>([&](KSpeechExceptionsDialog& dialog) {
            layer.changeControlValue(nativeControl(layer, dialog, Kind::List), 1);
            EXPECT_EQ(dialog.getSelected(), 1);
            layer.clickControl(buttonNamed(layer, dialog, "Edit..."));
        });
        script.then<KSpeechExceptionAddDialog>([&](KSpeechExceptionAddDialog& dialog) {
            EXPECT_EQ(dialog.getTitle(), KString("Edit Exception"));
            EXPECT_EQ(dialog.getWritten(), KString("Dr."));
            EXPECT_EQ(dialog.getSpoken(), KString("Doctor"));
            answer(dialog, "Zoe", "Doctor");
            EXPECT_EQ(lastAlert(), "Exception already defined");
            ASSERT_TRUE(dialog.isOpen());
            // Its own word is no clash.
            answer(dialog, "Dr.", "Doc");
            EXPECT_FALSE(dialog.isOpen());
        });
        script.then<KSpeechExceptionsDialog>([&](KSpeechExceptionsDialog& dialog) {
            ASSERT_EQ(dialog.getEntries().size(), 3u);
            EXPECT_EQ(dialog.getEntries()[1]->getSpoken(), KString("Doc"));
            layer.changeControlValue(nativeControl(layer, dialog, Kind::List), 0);
            layer.clickControl(buttonNamed(layer, dialog, "Delete"));
            ASSERT_EQ(dialog.getEntries().size(), 2u);
            EXPECT_EQ(dialog.getEntries()[0]->getWritten(), KString("Dr."));
            EXPECT_EQ(entriesOf(handler), before);
            layer.clickControl(buttonNamed(layer, dialog, "Cancel"));
        });
        EXPECT_FALSE(KSpeechExceptionsDialog::run());
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(entriesOf(handler), before);
        EXPECT_EQ(entriesOnDisk(handler), before);
    });
}

TEST_F(SpeechExceptionsDialogTest, TestSpeaksTheSpokenFormWithTheChosenVoiceWithoutKeepingTheVoice)
{
    KFakeSpeechEngine engine;
    KSpeechSupport::setEngine(&engine);
    runApp({}, [&](TestApplication&) {
        KSpeechExceptionHandler& handler = *KSpeechExceptionHandler::current();
        DialogScript script(layer);
        script.then<KSpeechExceptionsDialog>(
            [&](KSpeechExceptionsDialog& dialog) { layer.clickControl(buttonNamed(layer, dialog, "Add...")); });
        script.then<KSpeechExceptionAddDialog>([&](KSpeechExceptionAddDialog& dialog) {
            const KFakeNativeLayer::Control* voices = layer.controlOf(nativeControl(layer, dialog, Kind::PopUpList));
            ASSERT_NE(voices, nullptr);
            ASSERT_EQ(voices->items.size(), KSpeechSupport::current()->getVoices().size());
            auto french = std::find(voices->items.begin(), voices->items.end(), "French (France)");
            ASSERT_NE(french, voices->items.end());
            layer.changeControlValue(nativeControl(layer, dialog, Kind::PopUpList),
                                     double(french - voices->items.begin()));
            layer.typeControlText(nativeControl(layer, dialog, Kind::Entry, 0), "Eiffel");
            layer.typeControlText(nativeControl(layer, dialog, Kind::Entry, 1), "Effel");
            layer.clickControl(buttonNamed(layer, dialog, "Test"));
            ASSERT_FALSE(engine.script->requests.empty());
            EXPECT_EQ(engine.script->requests.back().text, "Effel");
            EXPECT_EQ(engine.script->requests.back().voice, "roa/fr");
            layer.clickControl(buttonNamed(layer, dialog, "OK"));
        });
        script.then<KSpeechExceptionsDialog>(
            [&](KSpeechExceptionsDialog& dialog) { layer.clickControl(buttonNamed(layer, dialog, "OK")); });
        EXPECT_TRUE(KSpeechExceptionsDialog::run());
        // Exceptions hold for every voice.
        ASSERT_NE(handler.find("Eiffel"), nullptr);
        EXPECT_EQ(handler.find("Eiffel")->getSpoken(), KString("Effel"));
    });
    KSpeechSupport::setEngine(nullptr);
}

} // namespace
