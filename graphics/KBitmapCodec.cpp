#include "graphics/KBitmapCodec.h"

#include <cstdint>
#include <limits>

namespace KBitmapCodec {

namespace {

constexpr int32_t kCoreHeaderSize = 12;
constexpr uint32_t kCompressionNone = 0;
constexpr uint32_t kCompressionBitFields = 3;
constexpr uint32_t kCompressionAlphaBitFields = 6;
// 72 dots per inch in pixels per metre.
constexpr int32_t kPixelsPerMetre = 2835;

uint16_t le16(const uint8_t* p) { return uint16_t(p[0] | (p[1] << 8)); }
uint32_t le32(const uint8_t* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

void put16(uint8_t* p, uint16_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
}

void put32(uint8_t* p, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        p[i] = uint8_t(v >> (8 * i));
}

// One colour channel under a bit mask, scaled to 8 bits.
struct Channel {
    uint32_t mask = 0;
    int32_t shift = 0;
    uint64_t maximum = 0;

    explicit Channel(uint32_t bits = 0)
        : mask(bits)
    {
        if (!mask)
            return;
        while (!((mask >> shift) & 1))
            ++shift;
        maximum = uint64_t(mask) >> shift;
    }
    uint32_t extract(uint32_t value) const
    {
        if (!maximum)
            return 0;
        uint64_t v = uint64_t(value & mask) >> shift;
        return uint32_t(v * 255 / maximum);
    }
};

// What the headers say about the pixels.
struct Layout {
    int32_t width = 0;
    int32_t height = 0;
    bool topDown = false;
    int32_t bitCount = 0;
    uint32_t masks[3] = { 0, 0, 0 };
    size_t paletteStart = 0;
    int32_t paletteCount = 0;
    int32_t paletteEntrySize = 4;
    size_t headersEnd = 0;
};

bool isSupportedDepth(int32_t bits, bool core)
{
    if (core)
        return bits == 1 || bits == 4 || bits == 8 || bits == 24;
    return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

bool parseCoreHeader(const uint8_t* dib, size_t size, Layout& layout)
{
    if (size < size_t(kCoreHeaderSize))
        return false;
    layout.width = le16(dib + 4);
    layout.height = le16(dib + 6);
    layout.bitCount = le16(dib + 10);
    layout.paletteEntrySize = 3;
    layout.paletteStart = kCoreHeaderSize;
    return isSupportedDepth(layout.bitCount, true);
}

void setDefaultMasks(Layout& layout)
{
    if (layout.bitCount == 16) {
        layout.masks[0] = 0x7C00;
        layout.masks[1] = 0x03E0;
        layout.masks[2] = 0x001F;
    } else {
        layout.masks[0] = 0xFF0000;
        layout.masks[1] = 0x00FF00;
        layout.masks[2] = 0x0000FF;
    }
}

// The masks stand inside a header of 52 bytes or more, else right behind
// a 40-byte one (with an alpha mask after them in the alpha form).
bool readMasks(const uint8_t* dib, size_t size, uint32_t headerSize, uint32_t compression, Layout& layout)
{
    size_t at = headerSize >= 52 ? 40 : headerSize;
    if (at + 12 > size)
        return false;
    for (int i = 0; i < 3; ++i)
        layout.masks[i] = le32(dib + at + 4 * size_t(i));
    if (headerSize < 52)
        layout.paletteStart = headerSize + (compression == kCompressionAlphaBitFields ? 16 : 12);
    return true;
}

bool parseInfoHeader(const uint8_t* dib, size_t size, uint32_t headerSize, Layout& layout)
{
    if (headerSize < uint32_t(kInfoHeaderSize) || headerSize > size)
        return false;
    int32_t width = int32_t(le32(dib + 4));
    int32_t height = int32_t(le32(dib + 8));
    layout.bitCount = le16(dib + 14);
    uint32_t compression = le32(dib + 16);
    uint32_t colorsUsed = le32(dib + 32);
    if (height == std::numeric_limits<int32_t>::min() || !isSupportedDepth(layout.bitCount, false))
        return false;
    layout.width = width;
    layout.topDown = height < 0;
    layout.height = height < 0 ? -height : height;
    layout.paletteStart = headerSize;
    setDefaultMasks(layout);
    if (compression == kCompressionBitFields || compression == kCompressionAlphaBitFields) {
        if (layout.bitCount != 16 && layout.bitCount != 32)
            return false;
        if (!readMasks(dib, size, headerSize, compression, layout))
            return false;
    } else if (compression != kCompressionNone) {
        return false;
    }
    if (layout.bitCount <= 8 && colorsUsed > 0) {
        if (colorsUsed > (1u << layout.bitCount))
            return false;
        layout.paletteCount = int32_t(colorsUsed);
    }
    return true;
}

bool parseHeaders(const uint8_t* dib, size_t size, Layout& layout)
{
    if (size < 4)
        return false;
    uint32_t headerSize = le32(dib);
    bool parsed = headerSize == uint32_t(kCoreHeaderSize) ? parseCoreHeader(dib, size, layout)
                                                          : parseInfoHeader(dib, size, headerSize, layout);
    if (!parsed)
        return false;
    if (layout.width <= 0 || layout.height <= 0 || layout.width > kMaxSide || layout.height > kMaxSide
        || int64_t(layout.width) * layout.height > kMaxPixels)
        return false;
    if (layout.bitCount <= 8 && layout.paletteCount == 0)
        layout.paletteCount = 1 << layout.bitCount;
    if (layout.bitCount > 8)
        layout.paletteCount = 0;
    layout.headersEnd = layout.paletteStart + size_t(layout.paletteCount) * size_t(layout.paletteEntrySize);
    return layout.headersEnd <= size;
}

std::vector<uint32_t> readPalette(const uint8_t* dib, const Layout& layout)
{
    std::vector<uint32_t> palette(size_t(layout.paletteCount));
    for (int32_t i = 0; i < layout.paletteCount; ++i) {
        const uint8_t* entry = dib + layout.paletteStart + size_t(i) * size_t(layout.paletteEntrySize);
        palette[size_t(i)] = uint32_t(entry[2]) << 16 | uint32_t(entry[1]) << 8 | entry[0];
    }
    return palette;
}

int64_t rowSizeOf(int32_t width, int32_t bitCount) { return (int64_t(width) * bitCount + 31) / 32 * 4; }

void decodeIndexedRow(const uint8_t* in, const Layout& layout, const std::vector<uint32_t>& palette, uint32_t* out)
{
    int32_t bits = layout.bitCount;
    int32_t perByte = 8 / bits;
    uint32_t mask = (1u << bits) - 1;
    for (int32_t x = 0; x < layout.width; ++x) {
        uint8_t byte = in[x / perByte];
        int32_t shift = 8 - bits * (x % perByte + 1);
        uint32_t index = (uint32_t(byte) >> shift) & mask;
        out[x] = index < palette.size() ? palette[index] : 0;
    }
}

void decodeMaskedRow(const uint8_t* in, const Layout& layout, const Channel* channels, uint32_t* out)
{
    int32_t bytes = layout.bitCount / 8;
    for (int32_t x = 0; x < layout.width; ++x) {
        const uint8_t* p = in + size_t(x) * size_t(bytes);
        uint32_t value = bytes == 2 ? le16(p) : le32(p);
        out[x] = channels[0].extract(value) << 16 | channels[1].extract(value) << 8 | channels[2].extract(value);
    }
}

void decodeRgbRow(const uint8_t* in, const Layout& layout, uint32_t* out)
{
    for (int32_t x = 0; x < layout.width; ++x) {
        const uint8_t* p = in + size_t(x) * 3;
        out[x] = uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | p[0];
    }
}

} // namespace

int32_t encodedRowSize(int32_t width) { return int32_t(rowSizeOf(width, 24)); }

int64_t encodedSize(int32_t width, int32_t height)
{
    if (width <= 0 || height <= 0)
        return 0;
    int64_t size = kFileHeaderSize + kInfoHeaderSize + rowSizeOf(width, 24) * height;
    return size > std::numeric_limits<int32_t>::max() ? 0 : size;
}

void encodeHeaders(int32_t width, int32_t height, uint8_t* out)
{
    uint32_t total = uint32_t(encodedSize(width, height));
    out[0] = 'B';
    out[1] = 'M';
    put32(out + 2, total);
    put32(out + 6, 0);
    put32(out + 10, kFileHeaderSize + kInfoHeaderSize);
    uint8_t* info = out + kFileHeaderSize;
    put32(info, kInfoHeaderSize);
    put32(info + 4, uint32_t(width));
    put32(info + 8, uint32_t(height));
    put16(info + 12, 1);
    put16(info + 14, 24);
    put32(info + 16, kCompressionNone);
    put32(info + 20, uint32_t(encodedRowSize(width)) * uint32_t(height));
    put32(info + 24, kPixelsPerMetre);
    put32(info + 28, kPixelsPerMetre);
    put32(info + 32, 0);
    put32(info + 36, 0);
}

void encodeRow(const uint32_t* row, int32_t width, uint8_t* out)
{
    int32_t size = encodedRowSize(width);
    for (int32_t x = 0; x < width; ++x) {
        uint32_t pixel = row[x];
        out[3 * x] = uint8_t(pixel);
        out[3 * x + 1] = uint8_t(pixel >> 8);
        out[3 * x + 2] = uint8_t(pixel >> 16);
    }
    for (int32_t i = 3 * width; i < size; ++i)
        out[i] = 0;
}

bool readFileHeader(const uint8_t* header, uint32_t& totalSize, uint32_t& pixelOffset)
{
    if (header[0] != 'B' || header[1] != 'M')
        return false;
    totalSize = le32(header + 2);
    pixelOffset = le32(header + 10);
    return true;
}

bool decode(const uint8_t* dib, size_t size, uint32_t pixelOffset, Picture& out)
{
    out = Picture();
    Layout layout;
    if (!parseHeaders(dib, size, layout))
        return false;
    // An offset that points into the headers is not believed.
    size_t start = layout.headersEnd;
    if (pixelOffset >= uint32_t(kFileHeaderSize) && pixelOffset - kFileHeaderSize > layout.headersEnd)
        start = pixelOffset - kFileHeaderSize;
    int64_t rowSize = rowSizeOf(layout.width, layout.bitCount);
    if (start > size || rowSize * layout.height > int64_t(size - start))
        return false;

    std::vector<uint32_t> palette = readPalette(dib, layout);
    Channel channels[3] = { Channel(layout.masks[0]), Channel(layout.masks[1]), Channel(layout.masks[2]) };
    out.width = layout.width;
    out.height = layout.height;
    out.pixels.assign(size_t(layout.width) * size_t(layout.height), 0);
    for (int32_t y = 0; y < layout.height; ++y) {
        const uint8_t* in = dib + start + size_t(rowSize) * size_t(y);
        int32_t target = layout.topDown ? y : layout.height - 1 - y;
        uint32_t* row = out.pixels.data() + size_t(target) * size_t(layout.width);
        if (layout.bitCount <= 8)
            decodeIndexedRow(in, layout, palette, row);
        else if (layout.bitCount == 24)
            decodeRgbRow(in, layout, row);
        else
            decodeMaskedRow(in, layout, channels, row);
    }
    return true;
}

} // namespace KBitmapCodec
