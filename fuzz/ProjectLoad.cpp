// Loads arbitrary bytes as a project document, with every class a document
// may name registered. Damaged input must only make the load refuse the
// file: a fatal error reached from the bytes is a finding and aborts, so that
// libFuzzer reports it. A project that loaded is drawn when that stays
// cheap, saved again, and what it saved must load again.

#include "app/AppClasses.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KKernelClasses.h"
#include "kernel/KMemory.h"
#include "project/StylusProject.h"
#include "tape/ImageTapePage.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tape/WipeOut.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Drawing a crafted stroke may mean millions of dabs; past this many the
// tape is only read and written.
constexpr int64_t kMaxDabs = 20000;

void onError(int32_t code, const char* location)
{
    if (KErrorHandler::severityOf(code) == KErrorHandler::Fatal) {
        std::fprintf(stderr, "fatal error %d reached from document bytes: %s\n", int(code), location ? location : "");
        std::abort();
    }
}

bool setUp()
{
    KErrorHandler::loadKernelErrors();
    KErrorHandler::setErrorMode(KErrorHandler::Forwarding);
    KErrorHandler::setErrorProc(&onError);
    kRegisterKernelClasses();
    registerDocumentClasses();
    StylusProject::setRetryDelay(0);
    return true;
}

bool loadBytes(StylusProject& project, const uint8_t* data, size_t size)
{
    auto* image = static_cast<uint8_t*>(KMemory::allocate(size ? size : 1, false));
    if (size)
        std::memcpy(image, data, size);
    KFile file;
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(image, int32_t(size));
    bool loaded = project.loadFrom(file);
    file.close();
    return loaded;
}

int64_t dabsOf(const Stroke& stroke)
{
    int64_t step = std::max(1, stroke.getBrushWidth() / 8);
    int64_t dabs = 1;
    for (int32_t i = 1; i < stroke.getPointCount(); ++i) {
        KGraphicPoint from = stroke.getPoint(i - 1);
        KGraphicPoint to = stroke.getPoint(i);
        dabs += 1 + std::max(std::abs(to.x - from.x), std::abs(to.y - from.y)) / step;
    }
    return dabs;
}

// Only strokes and colour pages: anything else might read files the
// document names, or take long to draw.
bool cheapToDraw(const Tape& tape)
{
    int64_t dabs = 0;
    for (int32_t i = 0; i < tape.getCount(); ++i) {
        TapeObject* element = tape.getAt(i);
        if (auto* stroke = dynamic_cast<Stroke*>(element))
            dabs += dabsOf(*stroke);
        else if (auto* wipe = dynamic_cast<WipeOut*>(element);
                 !wipe || wipe->getBackground() != WipeOut::ColourBackground)
            return false;
    }
    return dabs <= kMaxDabs;
}

// The page size comes from the bytes; a small page keeps drawing cheap.
void drawSmall(Tape& tape)
{
    ImageTapePagePtr page(new ImageTapePage(KGraphicSize(48, 36)));
    tape.setSpriteSystem(*page);
    tape.goToEnd();
    tape.stepBack();
    tape.clearSpriteSystem();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = setUp();
    (void)ready;
    if (size > size_t(INT32_MAX))
        return 0;

    StylusProjectPtr project(new StylusProject());
    Tape* before = project->getTape();
    if (!loadBytes(*project, data, size)) {
        // A refused document leaves the project's story alone.
        if (project->getTape() != before)
            std::abort();
        return 0;
    }
    Tape& tape = *project->getTape();
    if (tape.getPosition() < 0 || tape.getPosition() > tape.getCount())
        std::abort();
    if (cheapToDraw(tape))
        drawSmall(tape);

    StylusProjectPtr copy(static_cast<StylusProject*>(project->deepCopy()));
    KFile stream;
    stream.setMode(KFileModeMemory);
    copy->writeToFile(stream, 1);

    KFile out;
    out.setMode(KFileModeMemory);
    if (!project->saveTo(out) || out.getMemorySize() <= 0)
        std::abort();
    StylusProjectPtr again(new StylusProject());
    if (!loadBytes(*again, static_cast<const uint8_t*>(out.getMemoryData()), size_t(out.getMemorySize()))) {
        std::fprintf(stderr, "a saved project does not load again\n");
        std::abort();
    }
    if (again->getTape()->getCount() != tape.getCount() || again->getTape()->getPageSize() != tape.getPageSize())
        std::abort();
    return 0;
}
