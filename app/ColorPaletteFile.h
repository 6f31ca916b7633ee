#pragma once

#include "graphics/KColor.h"
#include "kernel/KFileReference.h"
#include "kernel/KString.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

class KFile;

// The SCP file of the tool palette's 16 colours. It is a document with the
// magic "STCP" and version 2 whose entries are named "Color 1" to
// "Color 16", each a variable holding a KColor object; a file may name
// only some of the buttons.
//
// Older files hold "STCP" and then the 16 colours as the old class stream
// wrote them: each a class head (class id, version) and three 16-bit
// channels, nothing else. That form is taken only when the file has
// exactly its size, so that a damaged document is never read as one.
//
// A file is read whole or not at all: anything wrong in it (another magic,
// a cut, more than kLargestFile bytes, an entry of another name or kind, a
// name twice) leaves the colours read empty.
class ColorPaletteFile {
public:
    static constexpr int32_t kColorCount = 16;
    static constexpr int32_t kVersion = 2;
    static constexpr int32_t kLargestFile = 1 << 20;
    static constexpr int32_t kOldRecordSize = 14;
    static constexpr int32_t kOldFormSize = 4 + kColorCount * kOldRecordSize;
    static constexpr const char* kExtension = "SCP";

    // What a file held: the colours of the buttons it names.
    struct Colors {
        std::array<KColor, kColorCount> colors;
        std::array<bool, kColorCount> present {};

        void set(int32_t index, const KColor& colour);
        bool has(int32_t index) const { return index >= 0 && index < kColorCount && present[size_t(index)]; }
        int32_t count() const;
    };

    enum class Form : int32_t { None = 0, Document = 1, Old = 2 };

    // "STCP" as the document's magic.
    static int32_t magic();
    // "Color 1" for index 0, up to "Color 16".
    static KString variableName(int32_t index);
    // A colour as a button shows it: 8 bits a channel, each read back as
    // its byte shifted up, so that white becomes 0xFF00. What is written is
    // always in this form, which then stays the same from save to save.
    static KColor asShown(const KColor& colour);

    // Reads a whole file held in memory. The form it had, None when it was
    // no palette file; `out` is then empty.
    static Form decode(const uint8_t* bytes, size_t size, Colors& out);
    // The document of the colours present, as shown.
    static std::vector<uint8_t> encode(const Colors& colors);

    // Reads the rest of an open file from its position.
    static Form read(KFile& file, Colors& out);
    static void write(KFile& file, const Colors& colors);

    // The same on whole files. `opened` tells a file that could not be
    // opened at all from one that is no palette. Saving goes through a
    // temporary file: a failed save leaves the old file as it was.
    static Form load(const KFileReference& reference, Colors& out, bool& opened);
    static bool save(const KFileReference& reference, const Colors& colors);

private:
    static Form decodeDocument(const uint8_t* bytes, size_t size, Colors& out);
    static Form decodeOldForm(const uint8_t* bytes, size_t size, Colors& out);
};
