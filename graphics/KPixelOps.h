#pragma once

#include "graphics/KPixelBuffer.h"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Whole-rectangle pixel operations between two buffers. The rectangles are
// already clipped to both buffers; source and destination do not overlap
// unless they are the same rows copied with copyRows.
namespace KPixelOps {

enum class RasterOp : int32_t {
    Copy = 0, // destination = source
    MergePaint = 1, // destination = destination OR NOT source
    And = 2, // destination = destination AND source
};

struct Area {
    int32_t dx, dy; // destination origin
    int32_t sx, sy; // source origin
    int32_t width, height;
};

void apply(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, RasterOp op);

// destination = source × alpha + destination × (255 - alpha), a channel at
// a time, rounded; the source is RGB24.
void blendConstant(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, uint8_t alpha);

// Porter-Duff "over" from a premultiplied ARGB32 source, whose every
// channel is first scaled by the constant alpha.
void blendPremultiplied(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, uint8_t alpha);

// Runs of pixels: the inner loops of every shape, written so that they
// move four pixels a store whatever the length.
inline void fillRun(uint32_t* p, int32_t n, uint32_t value)
{
#if defined(__SSE2__)
    __m128i four = _mm_set1_epi32(int(value));
    for (; n >= 4; n -= 4, p += 4)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), four);
#endif
    for (; n > 0; --n)
        *p++ = value;
}

inline void invertRun(uint32_t* p, int32_t n)
{
#if defined(__SSE2__)
    __m128i white = _mm_set1_epi32(int(KPixelBuffer::kColourBits));
    for (; n >= 4; n -= 4, p += 4) {
        __m128i* q = reinterpret_cast<__m128i*>(p);
        _mm_storeu_si128(q, _mm_xor_si128(_mm_loadu_si128(q), white));
    }
#endif
    for (; n > 0; --n, ++p)
        *p ^= KPixelBuffer::kColourBits;
}

// Asks for a row's cache lines ahead of time. Rows of a narrow area lie a
// stride apart, where the processor's own prefetching does not follow, and
// short row operations would otherwise wait for each row in turn.
inline void prefetchRow(const uint32_t* row, int32_t n)
{
    constexpr int32_t kLine = 64 / int32_t(sizeof(uint32_t));
    for (int32_t i = 0; i < n; i += kLine)
        __builtin_prefetch(row + i);
    __builtin_prefetch(row + n - 1);
}

inline void prefetchRowForWriting(uint32_t* row, int32_t n)
{
    constexpr int32_t kLine = 64 / int32_t(sizeof(uint32_t));
    for (int32_t i = 0; i < n; i += kLine)
        __builtin_prefetch(row + i, 1);
    __builtin_prefetch(row + n - 1, 1);
}

// x / 255 rounded, exact for 0 <= x <= 255 × 255.
inline uint32_t divide255(uint32_t x)
{
    x += 128;
    return (x + (x >> 8)) >> 8;
}

// Premultiplies an RGB24 colour by an alpha into an ARGB32 pixel.
uint32_t premultiply(uint32_t rgb, uint8_t alpha);

// One row of a prepared masked picture: d = (d AND keep) OR put, colour
// bits only. With keep = source and put = source AND NOT mask it is the
// pair of raster operations MergePaint (mask) and And (source) in a single
// pass.
void keepAndPutRow(uint32_t* d, const uint32_t* keep, const uint32_t* put, int32_t n);

} // namespace KPixelOps
