// Reads arbitrary bytes as an old document and converts them in memory with
// both answers to the platform question, as the program does before it
// touches the disk. Damaged input must stop the conversion with a failure
// text; a converted tape must hold one element per converted record.

#include "project/legacy/OldDocument.h"
#include "app/AppClasses.h"
#include "fuzz/FuzzErrors.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KString.h"
#include "tape/Tape.h"

#include <cstdint>
#include <vector>

namespace {

bool setUp()
{
    fuzzForwardErrors();
    registerDocumentClasses();
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = setUp();
    (void)ready;
    KClassStreamState::reset();
    std::vector<uint8_t> bytes(data, data + size);
    for (int32_t platform : { int32_t(KString::Macintosh), int32_t(KString::Windows) }) {
        OldDocumentReport report;
        // No folder exists there: media are looked for and found missing.
        ZConversion conversion("/nonexistent/old", "/nonexistent/new/Media", platform, report);
        TapePtr tape = OldDocument::convertInMemory(bytes, conversion);
        if (!tape) {
            fuzzCheck(!report.failure.empty());
            continue;
        }
        int32_t made = 0;
        for (const auto& [kind, count] : report.elements)
            made += count;
        fuzzCheck(made == tape->getCount());
        fuzzCheck(tape->getPageSize() == KGraphicSize(640, 480));
        fuzzCheck(tape->getPlayInterval() >= 1 && tape->getPlayInterval() <= 50);
    }
    return 0;
}
