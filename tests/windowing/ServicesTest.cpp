#include "FrameworkTestSupport.h"

#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KPath.h"
#include "kernel/KVolume.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KClipboardManager.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KMailslot.h"
#include "windowing/native/KGLibMessageSlot.h"
#include "windowing/native/KGLibNativeLayer.h"

#include <unistd.h>

namespace {

std::string text(char fill, size_t length, char at126 = 0)
{
    std::string result(length, fill);
    if (at126 && length > 126)
        result[126] = at126;
    return result;
}

std::string withZero(const std::string& s) { return s + std::string(1, '\0'); }

class ServicesTest : public FrameworkTest { };

TEST_F(ServicesTest, MailslotTextsTravelInChunksOf126AndAMark)
{
    // 126 characters fit one message: no mark, no empty message after it.
    auto messages = kMailslotMessages(KString(text('a', 126).c_str()));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0], withZero(text('a', 126)));

    // 128: a chunk of 126 with the mark, 128 bytes in all, then 2.
    messages = kMailslotMessages(KString(text('b', 128).c_str()));
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].size(), 128u);
    EXPECT_EQ(messages[0], withZero(text('b', 126) + "+"));
    EXPECT_EQ(messages[1], withZero("bb"));

    // 127 fills a message exactly; one whose 127th character is the mark
    // would read as a chunk, so it is split too.
    EXPECT_EQ(kMailslotMessages(KString(text('c', 127).c_str())).size(), 1u);
    messages = kMailslotMessages(KString(text('c', 127, '+').c_str()));
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[1], withZero("+"));
    EXPECT_EQ(kMailslotMessages(KString()).size(), 1u);

    // Whatever was cut, the reader puts back together through the loop.
    ASSERT_TRUE(setMailslotName("TaleLoom"));
    EXPECT_EQ(layer.openSlotName(), "TaleLoom");
    std::vector<std::string> sent { text('x', 300), text('y', 127, '+'), text('z', 5) };
    for (auto& each : sent)
        ASSERT_TRUE(sendToMailslot("TaleLoom", KString(each.c_str())));
    layer.script(record(KNativeMessage::Null));
    app->doOneLoop();
    EXPECT_EQ(app->received, sent);

    // A full message without the mark is a whole text.
    layer.sendSlotMessages("TaleLoom", { text('q', 128) });
    KString whole;
    EXPECT_TRUE(readMailslot(whole));
    EXPECT_EQ(std::string(whole.c_str()), text('q', 128));
    closeMailslot();
    EXPECT_FALSE(hasMailslotMessage());
}

TEST_F(ServicesTest, TheApplicationsNameOpensItsSlot)
{
    app->setName("TaleLoom");
    EXPECT_EQ(layer.openSlotName(), "TaleLoom");
    EXPECT_STREQ(getMailslotName().c_str(), "TaleLoom");
    // A slot that another program holds is not taken.
    layer.holdSlotElsewhere("Other");
    app->setName("Other");
    EXPECT_TRUE(getMailslotName().isEmpty());
    EXPECT_STREQ(app->getName().c_str(), "Other");
    app->setName("TaleLoom");
    app.clear();
    EXPECT_TRUE(layer.openSlotName().empty());
}

// The real channel: a unix datagram socket in the runtime folder.
TEST(GLibMessageSlotTest, DatagramsKeepTheirBoundariesAndStaleSlotsAreTakenOver)
{
    std::string name = "TaleLoomTest" + std::to_string(getpid());
    KGLibMessageSlot slot;
    ASSERT_TRUE(slot.open(name.c_str())) << KGLibMessageSlot::pathOf(name.c_str());
    KGLibMessageSlot second;
    EXPECT_FALSE(second.open(name.c_str()));
    EXPECT_EQ(slot.nextSize(), -1);

    auto messages = kMailslotMessages(KString(text('m', 200).c_str()));
    ASSERT_TRUE(KGLibMessageSlot::send(name.c_str(), messages));
    ASSERT_EQ(slot.nextSize(), 128);
    char buffer[300] = {};
    EXPECT_EQ(slot.read(buffer, sizeof buffer), 128);
    EXPECT_EQ(buffer[126], '+');
    EXPECT_EQ(slot.nextSize(), 75);
    EXPECT_EQ(slot.read(buffer, sizeof buffer), 75);
    EXPECT_EQ(slot.nextSize(), -1);

    // A slot whose program ended without closing it is free again.
    KGLibNativeLayer layer;
    KNativeLayer::install(&layer);
    {
        KGLibMessageSlot abandoned;
        ASSERT_TRUE(abandoned.open("TaleLoomStale"));
        std::string path = KGLibMessageSlot::pathOf("TaleLoomStale");
        std::string kept = path + ".kept";
        ASSERT_EQ(::link(path.c_str(), kept.c_str()), 0);
        abandoned.close();
        ASSERT_EQ(::rename(kept.c_str(), path.c_str()), 0);
    }
    EXPECT_TRUE(setMailslotName("TaleLoomStale"));
    ASSERT_TRUE(sendToMailslot("TaleLoomStale", KString(text('s', 130).c_str())));
    KString received;
    EXPECT_FALSE(readMailslot(received));
    EXPECT_TRUE(readMailslot(received));
    EXPECT_EQ(std::string(received.c_str()), text('s', 130));
    closeMailslot();
    EXPECT_NE(::access(KGLibMessageSlot::pathOf("TaleLoomStale").c_str(), F_OK), 0);
    KNativeLayer::install(nullptr);
}

TEST_F(ServicesTest, ClipboardCarriesTextImagesAndPrivateFormats)
{
    KClipboardManagerPtr clipboard(new KClipboardManager());
    EXPECT_FALSE(clipboard->holdsSomething());
    ASSERT_TRUE(clipboard->setText("caf\xE9"));
    EXPECT_TRUE(clipboard->hasText());
    EXPECT_FALSE(clipboard->hasImage());
    KString got;
    ASSERT_TRUE(clipboard->getText(got));
    EXPECT_STREQ(got.c_str(), "caf\xE9");

    KImagePtr image(new KImage(KGraphicSize(3, 2)));
    image->getDevice().setPixel(2, 1, KColor(KColor::Red));
    ASSERT_TRUE(clipboard->setImage(*image));
    EXPECT_FALSE(clipboard->hasText());
    ASSERT_TRUE(clipboard->hasImage());
    KImagePtr pasted(new KImage());
    ASSERT_TRUE(clipboard->getImage(*pasted));
    EXPECT_EQ(pasted->getSize(), KGraphicSize(3, 2));
    EXPECT_EQ(pasted->getDevice().getPixel(2, 1).getNative(), 0xFF0000u);
    EXPECT_EQ(pasted->getDevice().getPixel(0, 0).getNative(), 0u);

    // A private format counts only when the program looks for it.
    ASSERT_TRUE(clipboard->setData("application/x-taleloom-tape", { 1, 2, 3 }));
    EXPECT_FALSE(clipboard->holdsSomething());
    clipboard->registerFormat("application/x-taleloom-tape");
    EXPECT_TRUE(clipboard->holdsSomething());
    std::vector<uint8_t> data;
    ASSERT_TRUE(clipboard->getData("application/x-taleloom-tape", data));
    EXPECT_EQ(data, (std::vector<uint8_t> { 1, 2, 3 }));
    EXPECT_FALSE(clipboard->getData("application/x-other", data));
    clipboard->exportClipboard();
    EXPECT_EQ(layer.clipboardStoreCount(), 1);
}

TEST_F(ServicesTest, AClipboardThatHoldsSomethingAtStartIsAnnounced)
{
    KNativeClipboardContent outside;
    outside.hasText = true;
    outside.text = "from another program";
    layer.setClipboardFromOutside(outside);
    app->onInit = [&] { app->requestQuit(); };
    manager.clear();
    Watchdog watchdog(60000);
    app->run("RecordingWindow", 1, std::vector<const char*> { "taleloom" }.data());
    EXPECT_EQ(std::count(seen().begin(), seen().end(), "app clipboard changed"), 1);
    // The content stays for the other programs when the program ends.
    EXPECT_EQ(layer.clipboardStoreCount(), 1);
}

TEST_F(ServicesTest, ChoosersLeaveTheArgumentAloneWhenCancelled)
{
    KDialogHandlerPtr handler(new KDialogHandler());
    KFileTypeID text = KFileTypeHandler::getAssociation(KString("TXT"))->getID();
    KFileTypeID png = KFileTypeHandler::getAssociation(KString("PNG"))->getID();
    KPath original(KString("/home/child/stories/old.txt"), KPath::LinuxPlatform);
    KFileReferencePtr file(new KFileReference(original));

    // Cancelled: the reference is as it was.
    EXPECT_FALSE(handler->doSaveDialog(*file, "Save the story", text));
    EXPECT_TRUE(file->getPath() == original);
    ASSERT_EQ(layer.chooserRequests().size(), 1u);
    const KNativeChooserRequest& asked = layer.chooserRequests()[0];
    EXPECT_EQ(asked.mode, KNativeChooserRequest::Save);
    EXPECT_EQ(asked.title, "Save the story");
    EXPECT_EQ(asked.folder, "/home/child/stories/");
    EXPECT_EQ(asked.name, "old.txt");

    // A name typed without an extension gets the type's.
    layer.answerChooser({ true, "/tmp/new story" });
    EXPECT_TRUE(handler->doSaveDialog(*file, "Save the story", text));
    EXPECT_STREQ(file->getPath().getNativeText().c_str(), "/tmp/new story.txt");

    // Open offers one filter a type, in order.
    layer.answerChooser({ true, "/tmp/picture.png" });
    EXPECT_TRUE(handler->doOpenDialog(*file, "Open", std::vector<KFileTypeID> { png, text }));
    EXPECT_STREQ(file->getPath().getNativeText().c_str(), "/tmp/picture.png");
    ASSERT_EQ(layer.chooserRequests().back().filters.size(), 2u);
    EXPECT_EQ(layer.chooserRequests().back().filters[1].extensions, std::vector<std::string> { "TXT" });

    KDirectoryPtr folder(new KDirectory(KPath(KString("/tmp/"), KPath::LinuxPlatform)));
    EXPECT_FALSE(handler->doSelectDirectoryDialog(*folder, "Where"));
    EXPECT_STREQ(folder->getNativeText().c_str(), "/tmp");
    layer.answerChooser({ true, "/tmp/stories" });
    EXPECT_TRUE(handler->doSelectDirectoryDialog(*folder, "Where"));
    EXPECT_EQ(layer.chooserRequests().back().mode, KNativeChooserRequest::Folder);
    EXPECT_STREQ(folder->getNativeText().c_str(), "/tmp/stories");

    KColor colour(100, 200, 300);
    EXPECT_FALSE(handler->doColorDialog(colour));
    EXPECT_EQ(colour, KColor(100, 200, 300));
    layer.answerColour({ 65535, 0, 1 });
    EXPECT_TRUE(handler->doColorDialog(colour));
    EXPECT_EQ(colour, KColor(65535, 0, 1));
    EXPECT_EQ(layer.colourRequests(), 2);
}

TEST_F(ServicesTest, QuickAlertsAnswerByTheirButtonsAndAlertsBeep)
{
    alert("Title", "Text");
    ASSERT_EQ(layer.alerts().size(), 1u);
    EXPECT_EQ(layer.alerts()[0].style, KNativeAlertRequest::Information);
    EXPECT_EQ(layer.alerts()[0].title, "Title");
    EXPECT_EQ(layer.alerts()[0].text, "Text");

    for (int32_t answer : { KNativeAnswer::Yes, KNativeAnswer::No })
        layer.answerMessageBox(answer);
    EXPECT_EQ(askYesNo("t", "q"), 2);
    EXPECT_EQ(askYesNo("t", "q"), 3);
    // Unanswered, a box takes its default button.
    EXPECT_EQ(askYesNo("t", "q"), 2);
    EXPECT_EQ(askYesNoDefaultNo("t", "q"), 3);
    EXPECT_EQ(layer.alerts().back().style, KNativeAlertRequest::YesNoDefaultNo);
    for (int32_t answer : { KNativeAnswer::Yes, KNativeAnswer::No, KNativeAnswer::Cancel })
        layer.answerMessageBox(answer);
    EXPECT_EQ(askYesNoCancel("t", "q"), 2);
    EXPECT_EQ(askYesNoCancel("t", "q"), 3);
    EXPECT_EQ(askYesNoCancel("t", "q"), 1);
    layer.answerMessageBox(KNativeAnswer::Ok);
    EXPECT_EQ(askOkCancel("t", "q"), 1);
    EXPECT_EQ(askOkCancel("t", "q"), 0);

    // The framework's alert beeps, shows its text and has an OK button.
    KAlertPtr box(new KAlert("Careful!"));
    box->open(KWindow::Normal);
    EXPECT_EQ(layer.beepCount(), 1);
    layer.clickControl(box->getDefaultButton()->getNativeControl());
    EXPECT_FALSE(box->isOpen());
    EXPECT_EQ(box->getResult(), 1);
}

} // namespace
