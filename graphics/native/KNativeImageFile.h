#pragma once

#include "graphics/KGraphicsForward.h"
#include "graphics/KPixelBuffer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Image files through gdk-pixbuf, into and out of plain pixel arrays.
namespace KNativeImageFile {

// The largest picture a file may declare; anything larger is refused from
// its header, before any memory is taken for it.
constexpr int32_t kMaxSide = 32767;
constexpr int64_t kMaxPixels = int64_t(64) * 1024 * 1024;

struct Picture {
    int32_t width = 0;
    int32_t height = 0;
    // 0x00RRGGBB, row by row; transparent parts lie over white.
    std::vector<uint32_t> pixels;
    // One byte a pixel; empty when the file is opaque.
    std::vector<uint8_t> alpha;
};

// The 8-bit path as a file name of the file system.
std::string fileNameOf(const KString& path);

// Reads a BMP, JPEG, PNG, GIF, TIFF, TGA, XPM or ICO file, whatever its
// extension says; false for any other content, for a damaged file and for
// a declared size beyond the limits.
bool read(const std::string& fileName, Picture& out);
// The same for the bytes of such a file held in memory: the program's own
// pictures, which are trusted. The size limits apply to the decoded picture
// only, and a file cut short may give the part that arrived; a file from
// outside goes through read(), which refuses both.
bool readBytes(const void* bytes, size_t size, Picture& out);

// Writes the RGB24 pixels as "png", "jpeg", "bmp" or "tiff".
bool write(const std::string& fileName, const char* type, const KPixelBuffer& pixels);

} // namespace KNativeImageFile
