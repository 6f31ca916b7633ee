// Reads arbitrary bytes as the class stream of a tape, then uses what came
// out the way a document would: measures it, draws it when that stays
// cheap, writes it again and copies it.

#include "kernel/KClassStreamState.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "tape/ImageTapePage.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tape/TapeClasses.h"
#include "tape/WipeOut.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// Drawing a crafted stroke may mean millions of dabs; past this many the
// tape is only read and written.
constexpr int64_t kMaxDabs = 20000;

// A fatal error on damaged input is a finding; the others are the reports a
// user would see.
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
    registerTapeClasses();
    return true;
}

int64_t dabsOf(const Stroke& stroke)
{
    int64_t step = std::max(1, stroke.getBrushWidth() / 8);
    int64_t dabs = 1;
    for (int32_t i = 1; i < stroke.getPointCount(); ++i) {
        KGraphicPoint from = stroke.getPoint(i - 1);
        KGraphicPoint to = stroke.getPoint(i);
        int64_t length = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
        dabs += 1 + length / step;
    }
    return dabs;
}

// Image backgrounds would read whatever file the stream names.
bool cheapToDraw(const Tape& tape)
{
    int64_t dabs = 0;
    for (int32_t i = 0; i < tape.getCount(); ++i) {
        TapeObject* element = tape.getAt(i);
        if (auto* stroke = dynamic_cast<Stroke*>(element))
            dabs += dabsOf(*stroke);
        else if (auto* wipe = dynamic_cast<WipeOut*>(element);
                 wipe && wipe->getBackground() == WipeOut::ImageBackground)
            return false;
    }
    return dabs <= kMaxDabs;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = setUp();
    (void)ready;
    KClassStreamState::reset();

    void* block = KMemory::allocate(size + 1, false);
    if (size > 0)
        std::memcpy(block, data, size);
    KFile file;
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(block, int32_t(size));
    TapePtr tape(new Tape());
    tape->readFromFile(file);
    file.close();

    KGraphicRectangle bounds;
    tape->getBounds(bounds);
    tape->findNextStop(0);
    tape->getBookmarkNames();
    if (cheapToDraw(*tape)) {
        ImageTapePagePtr page(new ImageTapePage(KGraphicSize(64, 48)));
        tape->setSpriteSystem(*page);
        tape->goToEnd();
        tape->stepBack();
        tape->clearSpriteSystem();
    }

    KFile out;
    out.setMode(KFileModeMemory);
    tape->writeToFile(out, 1);
    TapePtr copy(new Tape(*tape));
    return 0;
}
