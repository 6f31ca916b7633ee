// Reads arbitrary bytes as an SHI file. Whatever is read must be a sane
// highlight: markers in time order, none before the start, each word inside
// the text; written again it reads back the same, and the editor's steps
// work on it.

#include "fuzz/FuzzErrors.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSoundHiliteEditing.h"
#include "kmultimedia/KSoundHiliteFile.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <vector>

namespace {

bool setUp()
{
    fuzzForwardErrors();
    kRegisterMultimediaClasses();
    return true;
}

void openBytes(KFile& file, const void* data, size_t size)
{
    void* block = KMemory::allocate(size + 1, false);
    if (size > 0)
        std::memcpy(block, data, size);
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(block, int32_t(size));
}

void check(bool condition)
{
    if (!condition)
        std::abort();
}

using Mark = std::tuple<int32_t, int32_t, int32_t, std::string, bool>;

std::vector<Mark> marksOf(const KSoundHiliteMedia& media)
{
    std::vector<Mark> marks;
    int32_t length = media.getText().getLength();
    for (int32_t i = 0; i < media.getMarkerCount(); ++i) {
        KSoundHiliteMarker* marker = media.getMarkerAt(i);
        check(marker != nullptr);
        check(marker->getElapsedTime() >= 0);
        check(marker->getWordStart() >= 0 && marker->getWordLength() > 0);
        check(marker->getWordStart() + marker->getWordLength() <= length);
        check(i == 0 || media.getMarkerAt(i - 1)->getElapsedTime() <= marker->getElapsedTime());
        marks.emplace_back(marker->getElapsedTime(), marker->getWordStart(), marker->getWordLength(),
                           std::string(marker->getText().c_str(), size_t(marker->getText().getLength())),
                           marker->isSelected());
    }
    return marks;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static bool ready = setUp();
    (void)ready;
    KClassStreamState::reset();

    KFile file;
    openBytes(file, data, size);
    KSoundHiliteMediaPtr media(new KSoundHiliteMedia());
    int32_t duration = -1;
    KSoundHiliteFile::read(file, duration, *media);
    file.close();
    check(duration >= 0);
    std::vector<Mark> marks = marksOf(*media);

    KFile out;
    out.setMode(KFileModeMemory);
    KSoundHiliteFile::write(out, duration, *media);
    KFile again;
    openBytes(again, out.getMemoryData(), size_t(out.getMemorySize()));
    KSoundHiliteMediaPtr reread(new KSoundHiliteMedia());
    int32_t durationAgain = -1;
    check(KSoundHiliteFile::read(again, durationAgain, *reread));
    again.close();
    check(durationAgain == duration);
    check(marksOf(*reread) == marks);
    check(reread->getText() == media->getText());

    KSoundHiliteMediaPtr copy(static_cast<KSoundHiliteMedia*>(media->deepCopy()));
    check(marksOf(*copy) == marks);

    // The editor's steps on what was read.
    int32_t first = -1;
    int32_t last = -1;
    if (KSoundHiliteEditing::checkMerge(*media, first, last) == KSoundHiliteEditing::MergeCheck::Ready)
        check(KSoundHiliteEditing::merge(*media, first, last));
    if (duration > 0) {
        check(KSoundHiliteEditing::update(*media, duration) == KSoundHiliteEditing::UpdateResult::Updated);
        std::vector<Mark> laid = marksOf(*media);
        check(laid.empty() || std::get<0>(laid.back()) < duration);
    }
    return 0;
}
