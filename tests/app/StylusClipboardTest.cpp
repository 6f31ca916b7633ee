// The clipboard of tape elements: what cut, copy, paste and clear leave on
// the tape and in the clip, and their steps in the undo history, taken
// back and made again down to the bytes of the elements.

#include "AppTestSupport.h"

#include "app/EditMenu.h"
#include "app/ForeignPaste.h"
#include "app/StylusClipboard.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "app/UndoHistory.h"
#include "graphics/KImage.h"
#include "kernel/KFile.h"
#include "kernel/KPath.h"
#include "project/StylusProject.h"
#include "tape/Stroke.h"
#include "tape/StylusImage.h"
#include "tape/StylusPause.h"
#include "tape/Tape.h"
#include "tests/graphics/StreamTestSupport.h"
#include "windowing/KEventTranslator.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace apptest;

namespace {

class StylusClipboardTest : public AppTest {
protected:
    // Three strokes and a pause, the position at the end.
    static Tape& fill(TestApplication& app)
    {
        Tape& tape = *app.getProject()->getTape();
        for (int16_t i = 0; i < 3; ++i) {
            StrokePtr stroke(new Stroke());
            stroke->addPoint(int16_t(10 + 20 * i), 10);
            stroke->addPoint(int16_t(20 + 20 * i), 40);
            tape.addElement(*stroke);
        }
        StylusPausePtr pause(new StylusPause());
        pause->setDuration(700);
        tape.addElement(*pause);
        return tape;
    }
    // The bytes of the whole tape's elements, in order.
    static std::vector<uint8_t> bytesOf(Tape& tape)
    {
        std::vector<uint8_t> bytes;
        for (int32_t i = 0; i < tape.getCount(); ++i)
            streams::append(bytes, streams::of(*tape.getAt(i)));
        return bytes;
    }
};

TEST_F(StylusClipboardTest, CutPasteAndClearAreUndoneAndRedoneToTheByte)
{
    runApp({}, [&](TestApplication& app) {
        StylusClipboard& clipboard = *StylusClipboard::current();
        UndoHistory& history = *UndoHistory::current();
        Tape& tape = *app.getProject()->getTape();
        clipboard.copy();
        EXPECT_EQ(clipboard.getClipTape().getCount(), 0) << "nothing to copy on an empty tape";
        fill(app);
        std::vector<uint8_t> whole = bytesOf(tape);
        EXPECT_EQ(history.undoTitle(&tape), KString("Can't Undo"));

        // Cut the pause: it leaves the tape for the clip; undo puts it back.
        clipboard.cut();
        ASSERT_EQ(tape.getCount(), 3);
        EXPECT_EQ(tape.getPosition(), 3);
        ASSERT_EQ(clipboard.getClipTape().getCount(), 1);
        EXPECT_EQ(clipboard.getClipTape().getAt(0)->getType(), PauseType);
        EXPECT_EQ(history.undoTitle(&tape), KString("Undo Cut"));
        history.undo(tape);
        EXPECT_EQ(bytesOf(tape), whole);
        EXPECT_EQ(tape.getPosition(), 4);
        EXPECT_EQ(history.redoTitle(&tape), KString("Redo Cut"));
        history.redo(tape);
        EXPECT_EQ(tape.getCount(), 3);
        history.undo(tape);
        EXPECT_EQ(bytesOf(tape), whole);

        // Paste at the start: one step, and its undo takes exactly it out.
        // A new step leaves nothing to redo.
        tape.setPositionQuietly(0);
        clipboard.paste();
        ASSERT_EQ(tape.getCount(), 5);
        EXPECT_EQ(tape.getAt(0)->getType(), PauseType);
        EXPECT_EQ(tape.getPosition(), 1);
        EXPECT_EQ(history.undoTitle(&tape), KString("Undo Paste"));
        EXPECT_FALSE(history.canRedo(&tape));
        history.undo(tape);
        EXPECT_EQ(bytesOf(tape), whole);
        EXPECT_EQ(tape.getPosition(), 0);
        history.redo(tape);
        EXPECT_EQ(tape.getCount(), 5);

        // Clear leaves the clip alone; a range is taken in order.
        history.undo(tape);
        tape.setPositionQuietly(2);
        clipboard.clear();
        EXPECT_EQ(tape.getCount(), 3);
        EXPECT_EQ(clipboard.getClipTape().getAt(0)->getType(), PauseType);
        history.undo(tape);
        EXPECT_EQ(bytesOf(tape), whole);
        clipboard.copyRange(2, 0, false);
        EXPECT_EQ(clipboard.getClipTape().getCount(), 3);
        clipboard.cutRange(3, 1);
        EXPECT_EQ(tape.getCount(), 1);
        history.undo(tape);
        EXPECT_EQ(bytesOf(tape), whole);
        EXPECT_EQ(history.undoCount(), 0u);
        EXPECT_EQ(history.redoCount(), 1u);

        // A locked beginning stays.
        tape.setLockPosition(4);
        tape.setPositionQuietly(4);
        clipboard.clear();
        EXPECT_EQ(bytesOf(tape), whole);
        tape.setLockPosition(-1);

        // The clip is copies: changing the tape leaves it as it was.
        std::vector<uint8_t> clipped = bytesOf(clipboard.getClipTape());
        static_cast<Stroke*>(tape.getAt(1))->addPoint(200, 200);
        EXPECT_EQ(bytesOf(clipboard.getClipTape()), clipped);
    });
}

TEST_F(StylusClipboardTest, TheEditMenuOffersTheElementsCommandsAndTheUndoStaysWithItsTape)
{
    runApp({}, [&](TestApplication& app) {
        StylusClipboard& clipboard = *StylusClipboard::current();
        UndoHistory& history = *UndoHistory::current();
        Tape& tape = fill(app);
        StylusMenuBar& bar = *StylusMenuBar::current();
        EditMenu& edit = bar.getEditMenu();
        bar.update();
        EXPECT_TRUE(edit.findItem(EditMenu::Cut)->isEnabled());
        EXPECT_FALSE(edit.findItem(EditMenu::Paste)->isEnabled()) << "nothing copied yet";
        EXPECT_FALSE(edit.findItem(EditMenu::Undo)->isEnabled());
        clipboard.cut();
        bar.update();
        EXPECT_TRUE(edit.findItem(EditMenu::Paste)->isEnabled());
        EXPECT_TRUE(edit.findItem(EditMenu::Undo)->isEnabled());
        EXPECT_EQ(edit.findItem(EditMenu::Undo)->getTitle(), KString("Undo Cut"));
        EXPECT_FALSE(edit.findItem(EditMenu::Redo)->isEnabled());
        EXPECT_EQ(edit.findItem(EditMenu::Redo)->getTitle(), KString("Can't Redo"));

        // Control+Z from the menu, Control+Shift+Z from the window.
        layer.typeAccelerator(StylusWindow::current()->getNativeWindow(), 'Z');
        EXPECT_EQ(tape.getCount(), 4);
        bar.update();
        EXPECT_EQ(edit.findItem(EditMenu::Redo)->getTitle(), KString("Redo Cut"));
        KNativeRecord typed;
        typed.window = StylusWindow::current();
        typed.message = KNativeMessage::Char;
        typed.param1 = 'Z';
        typed.time = layer.now();
        layer.setModifiers(2 | 1);
        kksDeliverNativeRecord(typed);
        layer.setModifiers(0);
        EXPECT_EQ(tape.getCount(), 3);

        // Another tape shown: the undo is not its own.
        TapePtr other(new Tape());
        StylusWindow::current()->showTape(*other, nullptr);
        EXPECT_FALSE(history.canUndo(other.get()));
        EXPECT_EQ(history.undoTitle(other.get()), KString("Can't Undo"));
        StylusWindow::current()->showTape(tape, nullptr);
        EXPECT_TRUE(history.canUndo(&tape));
        // A change made outside any step leaves nothing to undo.
        tape.removeRange(0, 0);
        EXPECT_FALSE(history.canUndo(&tape));
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

// A copy goes on the system clipboard as a picture for other programs and
// as the program's own stream, which another TaleLoom pastes; damaged or
// foreign data there leaves the clip as it was.
TEST_F(StylusClipboardTest, ElementsTravelBetweenTwoTaleLoomsThroughTheSystemClipboard)
{
    runApp({}, [&](TestApplication& app) {
        StylusClipboard& clipboard = *StylusClipboard::current();
        Tape& tape = fill(app);
        clipboard.copy();
        // The system clipboard is filled at the loop's next turn, or at
        // once when the user turns to another program.
        EXPECT_FALSE(layer.clipboard().hasImage);
        EXPECT_FALSE(clipboard.takeFromSystem()) << "a copy waiting is newer than the system's";
        app.turn();
        const KNativeClipboardContent& published = layer.clipboard();
        EXPECT_TRUE(published.hasImage);
        EXPECT_EQ(published.image.width, tape.getPageSize().width);
        ASSERT_EQ(published.formats.size(), 1u);
        EXPECT_EQ(published.formats[0].first, StylusClipboard::kSystemFormat);
        EXPECT_FALSE(clipboard.takeFromSystem()) << "its own clip";

        // What another TaleLoom copied: two strokes.
        StylusProjectPtr other(new StylusProject());
        TapePtr theirs(new Tape());
        for (int16_t i = 0; i < 2; ++i) {
            StrokePtr stroke(new Stroke());
            stroke->addPoint(int16_t(100 + i), 100);
            theirs->add(*stroke);
        }
        other->setTape(*theirs);
        KFile stream;
        stream.setMode(KFileModeMemory);
        ASSERT_TRUE(other->saveTo(stream));
        const auto* data = static_cast<const uint8_t*>(stream.getMemoryData());
        KNativeClipboardContent outside;
        outside.formats.emplace_back(StylusClipboard::kSystemFormat,
                                     std::vector<uint8_t>(data, data + stream.getMemorySize()));
        layer.setClipboardFromOutside(outside);
        tape.setPositionQuietly(0);
        clipboard.paste();
        ASSERT_EQ(tape.getCount(), 6);
        EXPECT_EQ(tape.getAt(0)->getType(), StrokeType);
        EXPECT_EQ(tape.getAt(1)->getType(), StrokeType);
        EXPECT_EQ(tape.getAt(5)->getType(), PauseType) << "the copied pause is still last";

        // Damaged data is passed over.
        outside.formats[0].second.resize(20);
        layer.setClipboardFromOutside(outside);
        EXPECT_FALSE(clipboard.takeFromSystem());
        EXPECT_EQ(clipboard.getClipTape().getCount(), 2);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

// A picture copied in a browser, and files copied in a file manager,
// paste as new elements in one step; files of other kinds are named.
TEST_F(StylusClipboardTest, PicturesAndFilesFromOtherProgramsPasteAsElements)
{
    runApp({}, [&](TestApplication& app) {
        StylusClipboard& clipboard = *StylusClipboard::current();
        UndoHistory& history = *UndoHistory::current();
        Tape& tape = fill(app);
        StylusMenuBar& bar = *StylusMenuBar::current();
        bar.update();
        EXPECT_FALSE(bar.getEditMenu().findItem(EditMenu::Paste)->isEnabled());

        KNativeClipboardContent outside;
        outside.hasImage = true;
        outside.image.width = 40;
        outside.image.height = 30;
        outside.image.pixels.assign(40 * 30, 0x00FF0000);
        layer.setClipboardFromOutside(outside);
        bar.update();
        EXPECT_FALSE(bar.getEditMenu().findItem(EditMenu::Paste)->isEnabled()) << "the menus keep their answer";
        // The desktop tells of the new owner; the menus ask again.
        KNativeRecord changed;
        changed.message = KNativeMessage::ClipboardUpdate;
        changed.time = layer.now();
        kksDeliverNativeRecord(changed);
        app.turn();
        EXPECT_TRUE(bar.getEditMenu().findItem(EditMenu::Paste)->isEnabled()) << "a picture is there to paste";
        tape.setPositionQuietly(1);
        clipboard.paste();
        ASSERT_EQ(tape.getCount(), 5);
        auto* image = dynamic_cast<StylusImage*>(tape.getAt(1));
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(tape.getPosition(), 2);
        // At its own size in the middle of the page, its file a PNG.
        KGraphicSize page = tape.getPageSize();
        EXPECT_EQ(image->getBounds(),
                  KGraphicRectangle(int16_t((page.width - 40) / 2), int16_t((page.height - 30) / 2), 40, 30));
        KImage written;
        ASSERT_TRUE(written.createFromPath(image->getImageFile().getPath().getNativeText()));
        EXPECT_EQ(written.getBounds().width, 40);
        EXPECT_EQ(written.getDevice().getPixel(5, 5).getRed() >> 8, 0xFF);
        EXPECT_EQ(history.undoTitle(&tape), KString("Undo Paste"));
        history.undo(tape);
        EXPECT_EQ(tape.getCount(), 4);

        // Two files: a picture, and a text no story can hold.
        std::string folder = freshFolder("copied");
        std::string picture = folder + "/My Cat.png";
        KImage cat(KGraphicSize(20, 10));
        ASSERT_TRUE(cat.writeToFile(KFileReference(KPath(KString(picture.c_str()), KPath::kHostPlatform))));
        std::string note = folder + "/note.txt";
        std::fclose(std::fopen(note.c_str(), "w"));
        std::string list = "# copied\r\nfile://" + folder + "/My%20Cat.png\r\nfile://" + folder + "/note.txt\r\n";
        KNativeClipboardContent files;
        files.formats.emplace_back(ForeignPaste::kUriListFormat, std::vector<uint8_t>(list.begin(), list.end()));
        layer.setClipboardFromOutside(files);
        tape.setPositionQuietly(4);
        clipboard.paste();
        ASSERT_EQ(tape.getCount(), 5);
        ASSERT_NE(dynamic_cast<StylusImage*>(tape.getAt(4)), nullptr);
        std::vector<std::string> alerts = alertTexts();
        ASSERT_FALSE(alerts.empty());
        EXPECT_NE(alerts.back().find("note.txt"), std::string::npos);

        // Elements copied here come before whatever is on the system side.
        clipboard.copy();
        app.turn();
        tape.setPositionQuietly(0);
        clipboard.paste();
        EXPECT_EQ(tape.getAt(0)->getType(), ImageType);
        EXPECT_EQ(tape.getCount(), 6);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST(ForeignPasteUris, OnlyLocalFilesAreTaken)
{
    std::string list = "file:///home/a/b%C3%A9.png\nhttp://x/y.png\n# note\nfile://localhost/tmp/c%2\n"
                       "file://other/tmp/d.png\nfile:///e%00f\n";
    std::vector<std::string> paths = ForeignPaste::pathsOfUriList(std::vector<uint8_t>(list.begin(), list.end()));
    EXPECT_EQ(paths, (std::vector<std::string> { "/home/a/b\xC3\xA9.png", "/tmp/c%2" }));
}

} // namespace
