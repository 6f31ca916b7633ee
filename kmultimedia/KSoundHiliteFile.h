#pragma once

#include "kernel/KFileReference.h"
#include "kmultimedia/KMultimediaForward.h"

#include <cstdint>

// The SHI file of a sound highlight: the sound's length in milliseconds as
// the editor had it (32-bit), then the class stream of the
// KSoundHiliteMedia, with no document around it.
class KSoundHiliteFile {
public:
    static constexpr const char* kExtension = "SHI";

    // Reads from the position. The media keeps what could be read, its
    // markers sorted and clamped into the text; false when the file is
    // damaged. A negative length reads as 0.
    static bool read(KFile& file, int32_t& duration, KSoundHiliteMedia& media);
    static void write(KFile& file, int32_t duration, KSoundHiliteMedia& media);

    // The same on a whole file; saving goes through a temporary file, so a
    // failed save leaves the old file as it was.
    static bool load(const KFileReference& reference, int32_t& duration, KSoundHiliteMedia& media);
    static bool save(const KFileReference& reference, int32_t duration, KSoundHiliteMedia& media);
};
