// Reads arbitrary bytes as an SCP colour palette. A file is read whole or
// not at all: a palette names at least one button (the old form all 16),
// nothing is read from a refused file, and what was read, written again,
// reads back as the buttons show it.

#include "app/AppClasses.h"
#include "app/ColorPaletteFile.h"
#include "fuzz/FuzzErrors.h"
#include "kernel/KClassStreamState.h"

#include <cstdint>
#include <cstdlib>

namespace {

bool setUp()
{
    fuzzForwardErrors();
    registerDocumentClasses();
    return true;
}

void check(bool condition)
{
    if (!condition)
        std::abort();
}

bool sameShown(const KColor& a, const KColor& b)
{
    KColor shown = ColorPaletteFile::asShown(a);
    return shown.getRed() == b.getRed() && shown.getGreen() == b.getGreen() && shown.getBlue() == b.getBlue();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = setUp();
    (void)ready;
    KClassStreamState::reset();

    ColorPaletteFile::Colors colors;
    ColorPaletteFile::Form form = ColorPaletteFile::decode(data, size, colors);
    if (form == ColorPaletteFile::Form::None) {
        check(colors.count() == 0);
        return 0;
    }
    check(colors.count() > 0);
    check(form != ColorPaletteFile::Form::Old || colors.count() == ColorPaletteFile::kColorCount);

    std::vector<uint8_t> written = ColorPaletteFile::encode(colors);
    ColorPaletteFile::Colors again;
    check(ColorPaletteFile::decode(written.data(), written.size(), again) == ColorPaletteFile::Form::Document);
    for (int32_t i = 0; i < ColorPaletteFile::kColorCount; ++i) {
        check(again.has(i) == colors.has(i));
        if (colors.has(i))
            check(sameShown(colors.colors[size_t(i)], again.colors[size_t(i)]));
    }
    return 0;
}
