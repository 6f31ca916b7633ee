#pragma once

#include "graphics/KPixelBuffer.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// The Windows BMP file image that an image's class stream embeds: a 14-byte
// file header beginning "BM", then a device-independent bitmap. Written as
// 24 bits a pixel, bottom-up; read in the uncompressed forms of 1, 4, 8,
// 16, 24 and 32 bits a pixel, with a palette or bit masks, either row
// order. Nothing is taken on trust: every size is checked against the bytes
// at hand before anything is allocated for it.
namespace KBitmapCodec {

constexpr int32_t kFileHeaderSize = 14;
constexpr int32_t kInfoHeaderSize = 40;
// The largest picture that is decoded; the same limits as image files.
constexpr int32_t kMaxSide = 32767;
constexpr int64_t kMaxPixels = int64_t(64) * 1024 * 1024;

struct Picture {
    int32_t width = 0;
    int32_t height = 0;
    // 0x00RRGGBB, top row first.
    std::vector<uint32_t> pixels;
};

// The bytes of the file image of a width by height picture, headers
// included; 0 for a size that cannot be written.
int64_t encodedSize(int32_t width, int32_t height);
// The 54 bytes of file and info header.
void encodeHeaders(int32_t width, int32_t height, uint8_t* out);
// One row as the file holds it, padded to a multiple of 4 bytes.
int32_t encodedRowSize(int32_t width);
void encodeRow(const uint32_t* row, int32_t width, uint8_t* out);

// Whether the 14 bytes are a file header; gives the total size it declares
// and the offset of the pixels from the start of the file.
bool readFileHeader(const uint8_t* header, uint32_t& totalSize, uint32_t& pixelOffset);
// Decodes the bitmap behind the file header: `dib` holds the bytes from
// offset 14 of the file on. False for anything damaged or unsupported.
bool decode(const uint8_t* dib, size_t size, uint32_t pixelOffset, Picture& out);

} // namespace KBitmapCodec
