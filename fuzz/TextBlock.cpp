// Reads arbitrary bytes as the class stream of a text block, then uses what
// came out as the text element does: lays it out, draws it with a word
// marked when that stays cheap, edits it, and writes it again. Whatever was
// read must have its style runs covering its text, and must read back from
// its own stream unchanged.

#include "graphics/KGraphicsClasses.h"
#include "graphics/KImage.h"
#include "graphics/KTextBlock.h"
#include "graphics/KTextBlockObject.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextStyleRun.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// Past these the block is only read, edited and written: glyphs of
// thousands of points, or pages of text, make drawing slow, not wrong.
constexpr int32_t kMaxDrawnCharacters = 4000;
constexpr double kMaxDrawnFontSize = 300.0;

void onError(int32_t code, const char*)
{
    if (KErrorHandler::severityOf(code) == KErrorHandler::Fatal)
        std::abort();
}

bool setUp()
{
    KErrorHandler::loadKernelErrors();
    KErrorHandler::setErrorMode(KErrorHandler::Forwarding);
    KErrorHandler::setErrorProc(&onError);
    kRegisterGraphicsClasses();
    return true;
}

void fail(const char* what)
{
    std::fprintf(stderr, "text block: %s\n", what);
    std::abort();
}

void openOver(KFile& file, const void* data, size_t size)
{
    void* block = KMemory::allocate(size + 1, false);
    if (size > 0)
        std::memcpy(block, data, size);
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(block, int32_t(size));
}

std::vector<uint8_t> bytesOf(KTextBlock& block)
{
    KFile out;
    out.setMode(KFileModeMemory);
    block.writeToFile(out, 1);
    auto* data = static_cast<const uint8_t*>(out.getMemoryData());
    return std::vector<uint8_t>(data, data + out.getMemorySize());
}

void checkRuns(const KTextBlock& block)
{
    if (block.getLineCount() < 1)
        fail("no lines");
    for (int32_t i = 0; i < block.getLineCount(); ++i) {
        if (!block.getLine(i)->hasConsistentStyleRuns())
            fail("runs do not cover the text");
    }
    if (block.getPlainText().getLength() != block.getLength())
        fail("positions do not match the plain text");
}

bool cheapToDraw(const KTextBlock& block)
{
    if (block.getLength() > kMaxDrawnCharacters)
        return false;
    for (int32_t i = 0; i < block.getLineCount(); ++i) {
        const KTextLine& line = *block.getLine(i);
        for (int32_t r = 0; r < line.getStyleRunCount(); ++r) {
            if (line.getStyleRun(r)->getFont().getSize() > kMaxDrawnFontSize)
                return false;
        }
    }
    return true;
}

void draw(const KTextBlock& block)
{
    KTextBlockObjectPtr object(new KTextBlockObject(block));
    object->setWidth(120);
    object->setSingleLineMode(block.getLength() % 2);
    object->setSelection(block.getLength() / 3, 5);
    KImagePtr image(new KImage(KGraphicSize(60, 40)));
    object->drawIn(image->getDevice(), KGraphicRectangle(0, 0, 60, 40));
    object->getCharacterBoxes(0, block.getLength());
    object->getCharPositionAt(KWidePoint(30, 10));
}

void edit(KTextBlock& block)
{
    int32_t middle = block.getLength() / 2;
    block.insertText(middle, KString("a\rb"));
    block.setStyle(middle - 2, 5, KTextStyle());
    block.deleteText(middle / 2, middle);
    checkRuns(block);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = setUp();
    (void)ready;
    KClassStreamState::reset();

    KFile file;
    openOver(file, data, size);
    KTextBlockPtr block(new KTextBlock());
    bool read = block->readRecord(file);
    file.close();
    checkRuns(*block);
    if (!read)
        return 0;

    if (cheapToDraw(*block))
        draw(*block);

    std::vector<uint8_t> written = bytesOf(*block);
    KFile again;
    openOver(again, written.data(), written.size());
    KTextBlockPtr copy(new KTextBlock());
    if (!copy->readRecord(again) || bytesOf(*copy) != written)
        fail("a block did not read back what it wrote");

    edit(*block);
    return 0;
}
