#pragma once

#include <cstddef>
#include <cstdint>

// A view on 32-bit pixels in memory, as cairo's image surfaces keep them:
// RGB24 is 0x00RRGGBB (the top byte is ignored), ARGB32 is premultiplied
// 0xAARRGGBB, both in the host's byte order. The view owns nothing.
struct KPixelBuffer {
    static constexpr uint32_t kColourBits = 0x00FFFFFF;

    uint32_t* data = nullptr;
    int32_t stride = 0; // in pixels
    int32_t width = 0;
    int32_t height = 0;

    bool isValid() const { return data && width > 0 && height > 0; }
    uint32_t* row(int32_t y) const { return data + ptrdiff_t(y) * stride; }
    uint32_t* at(int32_t x, int32_t y) const { return row(y) + x; }
    bool contains(int32_t x, int32_t y) const { return x >= 0 && y >= 0 && x < width && y < height; }
};
