#include "graphics/KTextBlock.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextStyle.h"
#include "graphics/KTextStyleRun.h"
#include "kernel/KBag.h"
#include "kernel/KClass.h"
#include "tests/graphics/GraphicsTestSupport.h"
#include "tests/graphics/StreamTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

using TextBlock = GraphicsTest;

namespace {

uint32_t idOf(const KClass* cls) { return uint32_t(cls->getClassID()); }

// A class stream of one section 1 around the payload.
std::vector<uint8_t> frame(const KClass* cls, const std::vector<uint8_t>& payload)
{
    std::vector<uint8_t> bytes;
    auto length = uint32_t(payload.size() + 8);
    streams::appendLongs(bytes, { idOf(cls), 1, length, 1, 1, length });
    streams::append(bytes, payload);
    return bytes;
}

KTextStyle boldRed() { return KTextStyle(KFont("Times New Roman", 18.0, KFont::Bold), KColor(KColor::Red)); }

// Every line's runs cover its text, and the lines joined by CR are `text`.
void expectConsistent(const KTextBlock& block, const std::string& text)
{
    KString plain = block.getPlainText();
    EXPECT_EQ(std::string(plain.c_str(), size_t(plain.getLength())), text);
    EXPECT_EQ(block.getLength(), int32_t(text.size()));
    for (int32_t i = 0; i < block.getLineCount(); ++i)
        EXPECT_TRUE(block.getLine(i)->hasConsistentStyleRuns()) << "line " << i;
}

std::vector<int32_t> runLengths(const KTextLine& line)
{
    std::vector<int32_t> lengths;
    for (int32_t i = 0; i < line.getStyleRunCount(); ++i)
        lengths.push_back(line.getStyleRun(i)->getLength());
    return lengths;
}

// A line whose runs are stored with the lengths given, whatever the text.
std::vector<uint8_t> lineWithRuns(const char* text, const std::vector<int32_t>& lengths)
{
    KBag runs;
    for (size_t i = 0; i < lengths.size(); ++i)
        runs.add(*new KTextStyleRun());
    std::vector<uint8_t> bagBytes = streams::of(runs);
    // Each run's length is the last long of its record.
    KTextStyleRun model;
    std::vector<uint8_t> runBytes = streams::of(model);
    auto at = bagBytes.begin();
    for (int32_t length : lengths) {
        at = std::search(at, bagBytes.end(), runBytes.begin(), runBytes.end()) + long(runBytes.size());
        streams::putLongAt(bagBytes, size_t(at - bagBytes.begin()) - 4, uint32_t(length));
    }
    KString string(text);
    streams::append(bagBytes, streams::of(string));
    return frame(KTextLine::classRecord, bagBytes);
}

template<class T>
bool readFrom(const std::vector<uint8_t>& bytes, T& object)
{
    KFile file;
    streams::openOver(file, bytes);
    return object.readRecord(file);
}

} // namespace

TEST_F(TextBlock, RecordsAreLaidOutToTheByteAndReadBack)
{
    KTextStyle style;
    KColor black(KColor::Black);
    KFont arial("Arial", 24.0);
    std::vector<uint8_t> styleBytes = frame(KTextStyle::classRecord, [&] {
        std::vector<uint8_t> payload = streams::of(arial);
        streams::append(payload, streams::of(black));
        return payload;
    }());
    EXPECT_EQ(streams::of(style), styleBytes);

    KTextStyleRun run(style, 2);
    std::vector<uint8_t> runBytes = styleBytes;
    streams::appendLongs(runBytes, { 2 });
    runBytes = frame(KTextStyleRun::classRecord, runBytes);
    EXPECT_EQ(streams::of(run), runBytes);
    // The length is the record's last long, behind the nested style.
    EXPECT_EQ(streams::longAt(runBytes, 24 + styleBytes.size()), 2u);

    KTextBlock block(KString("Hi"));
    KTextLine& line = *block.getLine(0);
    KBag runs;
    runs.add(*new KTextStyleRun(style, 2));
    std::vector<uint8_t> lineBytes = streams::of(runs);
    KString text = line.getText();
    streams::append(lineBytes, streams::of(text));
    lineBytes = frame(KTextLine::classRecord, lineBytes);
    EXPECT_EQ(streams::of(line), lineBytes);
    // The text's record closes the line: charset, length, "Hi" and 0.
    std::vector<uint8_t> tail(lineBytes.end() - 9, lineBytes.end());
    EXPECT_EQ(tail, (std::vector<uint8_t> { 0, 1, 0, 0, 0, 2, 'H', 'i', 0 }));

    block.setAlignment(KTextBlock::AlignCentre);
    KBag lines;
    lines.add(*new KTextLine(line));
    std::vector<uint8_t> blockBytes = streams::of(lines);
    streams::appendShorts(blockBytes, { 1 });
    blockBytes = frame(KTextBlock::classRecord, blockBytes);
    std::vector<uint8_t> written = streams::of(block);
    EXPECT_EQ(written, blockBytes);
    EXPECT_EQ(streams::longAt(written, 0), idOf(KTextBlock::classRecord));
    EXPECT_EQ(streams::longAt(written, 24), idOf(KBag::classRecord));
    EXPECT_EQ(written[written.size() - 1], 1);

    KTextBlock again;
    ASSERT_TRUE(readFrom(written, again));
    EXPECT_EQ(again.getAlignment(), KTextBlock::AlignCentre);
    EXPECT_EQ(streams::of(again), written);
    KTextStyleRun runAgain;
    ASSERT_TRUE(readFrom(runBytes, runAgain));
    EXPECT_EQ(runAgain.getLength(), 2);
    EXPECT_TRUE(runAgain.hasSameStyle(style));
}

TEST_F(TextBlock, StyleRunsSplitMergeAndAnswerPositions)
{
    KTextLine line(KString("Hello world"));
    EXPECT_EQ(line.getStyleRunCount(), 1);
    EXPECT_FALSE(line.splitStyleRun(0, 0));
    EXPECT_FALSE(line.splitStyleRun(0, 11));
    EXPECT_FALSE(line.splitStyleRun(1, 5));
    ASSERT_TRUE(line.splitStyleRun(0, 5));
    ASSERT_TRUE(line.splitStyleRun(1, 6));
    EXPECT_EQ(runLengths(line), (std::vector<int32_t> { 5, 1, 5 }));
    EXPECT_EQ(line.getStartPositionOfStyleRun(1), 5);
    EXPECT_EQ(line.getStartPositionOfStyleRun(2), 6);
    EXPECT_EQ(line.getStartPositionOfStyleRun(9), 11);
    EXPECT_EQ(line.getStyleRunAtPosition(-3), 0);
    EXPECT_EQ(line.getStyleRunAtPosition(4), 0);
    EXPECT_EQ(line.getStyleRunAtPosition(5), 1);
    EXPECT_EQ(line.getStyleRunAtPosition(6), 2);
    EXPECT_EQ(line.getStyleRunAtPosition(11), 2);
    EXPECT_EQ(line.getStyleRunAtPosition(400), 2);

    line.getStyleRun(2)->setStyle(boldRed());
    line.mergeStyleRuns(1, 9);
    EXPECT_EQ(runLengths(line), (std::vector<int32_t> { 5, 6 }));
    EXPECT_TRUE(line.getStyleRun(1)->hasSameStyle(KTextStyle()));
    line.mergeStyleRuns(0, 1);
    EXPECT_EQ(line.getStyleRunCount(), 2);
    line.mergeStyleRuns(0, 2);
    EXPECT_EQ(runLengths(line), (std::vector<int32_t> { 11 }));
}

TEST_F(TextBlock, StylesApplyAcrossLinesAndTypingTakesTheStyleBefore)
{
    KTextBlock block(KString("ab\r\ncd\n\nef"));
    ASSERT_EQ(block.getLineCount(), 4);
    expectConsistent(block, "ab\rcd\r\ref");
    std::vector<std::pair<int32_t, int32_t>> lineOfPosition
        = { { -4, 0 }, { 0, 0 }, { 2, 0 }, { 3, 1 }, { 5, 1 }, { 6, 2 }, { 7, 3 }, { 9, 3 }, { 99, 3 } };
    for (auto [pos, line] : lineOfPosition)
        EXPECT_EQ(block.getLineAtCharPosition(pos), line) << pos;

    // "b", the break, "cd", the empty line and "e".
    block.setStyle(1, 7, boldRed());
    expectConsistent(block, "ab\rcd\r\ref");
    EXPECT_EQ(runLengths(*block.getLine(0)), (std::vector<int32_t> { 1, 1 }));
    EXPECT_EQ(runLengths(*block.getLine(3)), (std::vector<int32_t> { 1, 1 }));
    EXPECT_TRUE(block.getStyleAt(2).hasSameStyle(boldRed()));
    EXPECT_TRUE(block.getLine(2)->getStyleRun(0)->hasSameStyle(boldRed()));
    EXPECT_TRUE(block.getStyleAt(1).hasSameStyle(KTextStyle()));
    EXPECT_TRUE(block.getStyleAt(9).hasSameStyle(KTextStyle()));

    // Typed text continues the style before it; at a line's start that of
    // its first character.
    block.insertText(2, KString("XY"));
    block.insertText(5, KString("Z"));
    expectConsistent(block, "abXY\rZcd\r\ref");
    EXPECT_EQ(runLengths(*block.getLine(0)), (std::vector<int32_t> { 1, 3 }));
    EXPECT_EQ(runLengths(*block.getLine(1)), (std::vector<int32_t> { 3 }));

    // Back to one style, the runs join again.
    block.setStyle(0, block.getLength(), KTextStyle());
    for (int32_t i = 0; i < block.getLineCount(); ++i)
        EXPECT_EQ(block.getLine(i)->getStyleRunCount(), 1);
    block.scaleFontSizes(0.25);
    EXPECT_EQ(block.getStyleAt(0).getFont().getSize(), 6.0);
}

TEST_F(TextBlock, EditsKeepRunsCoveringTheText)
{
    KTextBlock block(KString("one two\rthree"));
    std::string model = "one two\rthree";
    std::mt19937 random(7);
    const char* pieces[] = { "x", "word ", "\r", "a\rb", "\r\n", "" };
    for (int step = 0; step < 600; ++step) {
        int32_t length = int32_t(model.size());
        int32_t pos = int32_t(random() % uint32_t(length + 1));
        int32_t count = int32_t(random() % 6);
        switch (random() % 4) {
        case 0: {
            std::string piece = pieces[random() % 6];
            block.insertText(pos, KString(piece.c_str()));
            if (piece == "\r\n")
                piece = "\r";
            model.insert(size_t(pos), piece);
            break;
        }
        case 1:
            block.insertText(pos, KString("Q"), boldRed());
            model.insert(size_t(pos), "Q");
            break;
        case 2:
            block.deleteText(pos, count);
            model.erase(size_t(pos), size_t(count));
            break;
        default:
            block.changeStyle(pos, count, [&](KTextStyle& s) { s.scaleFontSize(step % 2 ? 2.0 : 0.5); });
            break;
        }
        expectConsistent(block, model);
        if (HasFailure())
            FAIL() << "after step " << step;
    }
}

TEST_F(TextBlock, LinesSplitAndJoinWithTheirStyles)
{
    KTextBlock block(KString("abcd"));
    block.setStyle(2, 2, boldRed());
    block.insertText(2, KString("\r"));
    expectConsistent(block, "ab\rcd");
    EXPECT_TRUE(block.getLine(1)->getStyleRun(0)->hasSameStyle(boldRed()));
    EXPECT_EQ(block.getLine(0)->getStyleRunCount(), 1);

    // Return at the very end opens an empty line that types on in bold.
    block.insertText(5, KString("\r"));
    expectConsistent(block, "ab\rcd\r");
    EXPECT_TRUE(block.getStyleAt(6).hasSameStyle(boldRed()));

    block.deleteText(1, 3);
    expectConsistent(block, "ad\r");
    EXPECT_EQ(runLengths(*block.getLine(0)), (std::vector<int32_t> { 1, 1 }));
    block.deleteText(0, 99);
    expectConsistent(block, "");
    EXPECT_EQ(block.getLineCount(), 1);
}

TEST_F(TextBlock, DamagedRunsAreRepairedOnReading)
{
    struct Case {
        std::vector<int32_t> stored;
        std::vector<int32_t> repaired;
    };
    std::vector<Case> cases = { { { 3, -5, 1000000 }, { 3, 2 } },
                                { { 1 }, { 5 } },
                                { {}, { 5 } },
                                { { 0, 0, 5, 0 }, { 5 } },
                                { { 2147483647, 2147483647 }, { 5 } } };
    for (const Case& c : cases) {
        KTextLine line;
        ASSERT_TRUE(readFrom(lineWithRuns("Hello", c.stored), line));
        EXPECT_EQ(runLengths(line), c.repaired);
        EXPECT_TRUE(line.hasConsistentStyleRuns());
    }
    KTextLine empty;
    ASSERT_TRUE(readFrom(lineWithRuns("", { 4, 4 }), empty));
    EXPECT_EQ(runLengths(empty), (std::vector<int32_t> { 0 }));

    // Elements that are no runs are passed over; a block keeps one line.
    KBag wrong;
    wrong.add(*new KColor(KColor::Red));
    std::vector<uint8_t> payload = streams::of(wrong);
    KString hello("Hello");
    streams::append(payload, streams::of(hello));
    KTextLine line;
    ASSERT_TRUE(readFrom(frame(KTextLine::classRecord, payload), line));
    EXPECT_EQ(runLengths(line), (std::vector<int32_t> { 5 }));
    payload = streams::of(wrong);
    streams::appendShorts(payload, { 77 });
    KTextBlock block(KString("old"));
    ASSERT_TRUE(readFrom(frame(KTextBlock::classRecord, payload), block));
    EXPECT_EQ(block.getLineCount(), 1);
    EXPECT_EQ(block.getLength(), 0);
    EXPECT_EQ(block.getAlignment(), 77);
}

TEST_F(TextBlock, BadFontSizesAreClampedAndBrokenRecordsFail)
{
    KTextBlock block(KString("big\rsmall"));
    std::vector<uint8_t> bytes = streams::of(block);
    const uint8_t size24[] = { 0x40, 0x38, 0, 0, 0, 0, 0, 0 };
    auto patched = [&](double size) {
        std::vector<uint8_t> copy = bytes;
        uint64_t raw = 0;
        std::memcpy(&raw, &size, 8);
        for (auto at = copy.begin(); (at = std::search(at, copy.end(), size24, size24 + 8)) != copy.end(); at += 8) {
            for (int i = 0; i < 8; ++i)
                at[i] = uint8_t(raw >> (56 - 8 * i));
        }
        return copy;
    };
    struct Case {
        double stored;
        double read;
    };
    for (Case c : { Case { std::nan(""), KFont::kDefaultSize }, Case { -3.0, KFont::kDefaultSize },
                    Case { 1e300, KFont::kMaxSize }, Case { 1e-9, KTextStyle::kSmallestFontSize } }) {
        KTextBlock read;
        ASSERT_TRUE(readFrom(patched(c.stored), read));
        EXPECT_EQ(read.getStyleAt(1).getFont().getSize(), c.read) << c.stored;
    }

    // Every cut of the stream is refused and leaves the block as it was.
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        KTextBlock read(KString("kept"));
        KFile file;
        streams::openOver(file, std::vector<uint8_t>(bytes.begin(), bytes.begin() + long(cut)));
        EXPECT_FALSE(read.readRecord(file)) << cut;
        expectConsistent(read, "kept");
    }

    // A slot count that the bytes cannot hold is refused before allocating.
    std::vector<uint8_t> huge = bytes;
    size_t arrayCount = 24 + 24 + 24;
    ASSERT_EQ(streams::longAt(huge, arrayCount), 2u);
    streams::putLongAt(huge, arrayCount, 0x7FFFFFFF);
    KTextBlock read(KString("kept"));
    EXPECT_FALSE(readFrom(huge, read));
    expectConsistent(read, "kept");
}
