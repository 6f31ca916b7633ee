#include "graphics/KPixelOps.h"

#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

namespace KPixelOps {

namespace {

constexpr uint32_t kRedBlue = 0x00FF00FF;
constexpr uint32_t kGreen = 0x0000FF00;

// Both lanes of red and blue, or the green lane, scaled by f / 255.
inline uint32_t scaleRedBlue(uint32_t p, uint32_t f)
{
    uint32_t t = (p & kRedBlue) * f + 0x00800080;
    return ((t + ((t >> 8) & kRedBlue)) >> 8) & kRedBlue;
}

inline uint32_t scaleAlphaGreen(uint32_t p, uint32_t f)
{
    uint32_t t = ((p >> 8) & kRedBlue) * f + 0x00800080;
    return (t + ((t >> 8) & kRedBlue)) & ~kRedBlue;
}

inline uint32_t mix(uint32_t s, uint32_t d, uint32_t a)
{
    uint32_t ia = 255 - a;
    uint32_t rb = (s & kRedBlue) * a + (d & kRedBlue) * ia + 0x00800080;
    rb = ((rb + ((rb >> 8) & kRedBlue)) >> 8) & kRedBlue;
    uint32_t g = (s & kGreen) * a + (d & kGreen) * ia + 0x00008000;
    g = ((g + ((g >> 8) & kGreen)) >> 8) & kGreen;
    return rb | g;
}

} // namespace

namespace {

// The bitwise raster operations, four pixels a step; the tails one by one.
void mergePaintRow(uint32_t* d, const uint32_t* s, int32_t n)
{
    int32_t i = 0;
#if defined(__SSE2__)
    const __m128i colourBits = _mm_set1_epi32(int(KPixelBuffer::kColourBits));
    for (; i + 4 <= n; i += 4) {
        __m128i* q = reinterpret_cast<__m128i*>(d + i);
        __m128i src = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        // (d OR NOT s) AND colour = (NOT s AND colour) OR (d AND colour)
        __m128i result = _mm_or_si128(_mm_andnot_si128(src, colourBits), _mm_and_si128(_mm_loadu_si128(q), colourBits));
        _mm_storeu_si128(q, result);
    }
#endif
    for (; i < n; ++i)
        d[i] = (d[i] | ~s[i]) & KPixelBuffer::kColourBits;
}

void andRow(uint32_t* d, const uint32_t* s, int32_t n)
{
    int32_t i = 0;
#if defined(__SSE2__)
    const __m128i colourBits = _mm_set1_epi32(int(KPixelBuffer::kColourBits));
    for (; i + 4 <= n; i += 4) {
        __m128i* q = reinterpret_cast<__m128i*>(d + i);
        __m128i src = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        _mm_storeu_si128(q, _mm_and_si128(_mm_and_si128(_mm_loadu_si128(q), src), colourBits));
    }
#endif
    for (; i < n; ++i)
        d[i] = d[i] & s[i] & KPixelBuffer::kColourBits;
}

} // namespace

void apply(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, RasterOp op)
{
    for (int32_t j = 0; j < area.height; ++j) {
        uint32_t* d = destination.at(area.dx, area.dy + j);
        const uint32_t* s = source.at(area.sx, area.sy + j);
        int32_t n = area.width;
        if (j + 1 < area.height && n > 0) {
            prefetchRow(s + source.stride, n);
            prefetchRowForWriting(d + destination.stride, n);
        }
        switch (op) {
        case RasterOp::Copy:
            std::memmove(d, s, size_t(n) * sizeof(uint32_t));
            break;
        case RasterOp::MergePaint:
            mergePaintRow(d, s, n);
            break;
        case RasterOp::And:
            andRow(d, s, n);
            break;
        }
    }
}

void keepAndPutRow(uint32_t* d, const uint32_t* keep, const uint32_t* put, int32_t n)
{
    int32_t i = 0;
#if defined(__SSE2__)
    const __m128i colourBits = _mm_set1_epi32(int(KPixelBuffer::kColourBits));
    for (; i + 4 <= n; i += 4) {
        __m128i* q = reinterpret_cast<__m128i*>(d + i);
        __m128i k = _mm_loadu_si128(reinterpret_cast<const __m128i*>(keep + i));
        __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(put + i));
        __m128i result = _mm_or_si128(_mm_and_si128(_mm_loadu_si128(q), k), p);
        _mm_storeu_si128(q, _mm_and_si128(result, colourBits));
    }
#endif
    for (; i < n; ++i)
        d[i] = ((d[i] & keep[i]) | put[i]) & KPixelBuffer::kColourBits;
}

namespace {

#if defined(__SSE2__)

// Sixteen-bit lanes: x / 255 rounded, for x up to 255 × 255; the high half
// of (x + 128) × 257 is the same as ((x + 128) + ((x + 128) >> 8)) >> 8.
inline __m128i divide255Lanes(__m128i x)
{
    return _mm_mulhi_epu16(_mm_add_epi16(x, _mm_set1_epi16(128)), _mm_set1_epi16(257));
}

// Each pixel's alpha (the fourth lane) in all four of its lanes.
inline __m128i spreadAlpha(__m128i pixels) { return _mm_shufflehi_epi16(_mm_shufflelo_epi16(pixels, 0xFF), 0xFF); }

#endif

// Four pixels at a time where the processor has the means; the tail and
// other processors go one by one.
void blendConstantRow(uint32_t* d, const uint32_t* s, int32_t n, uint32_t alpha)
{
    int32_t i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i a = _mm_set1_epi16(short(alpha));
    const __m128i ia = _mm_set1_epi16(short(255 - alpha));
    for (; i + 4 <= n; i += 4) {
        __m128i src = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        __m128i dst = _mm_loadu_si128(reinterpret_cast<const __m128i*>(d + i));
        __m128i low = _mm_add_epi16(_mm_mullo_epi16(_mm_unpacklo_epi8(src, zero), a),
                                    _mm_mullo_epi16(_mm_unpacklo_epi8(dst, zero), ia));
        __m128i high = _mm_add_epi16(_mm_mullo_epi16(_mm_unpackhi_epi8(src, zero), a),
                                     _mm_mullo_epi16(_mm_unpackhi_epi8(dst, zero), ia));
        __m128i result = _mm_packus_epi16(divide255Lanes(low), divide255Lanes(high));
        result = _mm_and_si128(result, _mm_set1_epi32(int(KPixelBuffer::kColourBits)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), result);
    }
#endif
    for (; i < n; ++i)
        d[i] = mix(s[i], d[i], alpha);
}

inline uint32_t overPixel(uint32_t p, uint32_t q, uint32_t alpha)
{
    if (alpha != 255)
        p = scaleRedBlue(p, alpha) | scaleAlphaGreen(p, alpha);
    uint32_t a = p >> 24;
    if (a == 255)
        return p & KPixelBuffer::kColourBits;
    if (p == 0)
        return q;
    uint32_t ia = 255 - a;
    return ((p & KPixelBuffer::kColourBits) + scaleRedBlue(q, ia) + (scaleAlphaGreen(q, ia) & kGreen))
           & KPixelBuffer::kColourBits;
}

#if defined(__x86_64__) && defined(__GNUC__)
#define K_HAVE_AVX2_PATH 1

// The same with eight pixels a step, for processors with AVX2, chosen at
// run time. The unpacking works within each 128-bit half, and the packing
// puts the halves back where they were.
__attribute__((target("avx2"), always_inline)) inline __m256i divideWide(__m256i x)
{
    return _mm256_mulhi_epu16(_mm256_add_epi16(x, _mm256_set1_epi16(128)), _mm256_set1_epi16(257));
}

__attribute__((target("avx2"), always_inline)) inline __m256i spreadWide(__m256i x)
{
    return _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(x, 0xFF), 0xFF);
}

__attribute__((target("avx2"))) int32_t blendPremultipliedWide(uint32_t* d, const uint32_t* s, int32_t n,
                                                               uint32_t alpha)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i full = _mm256_set1_epi16(255);
    const __m256i constant = _mm256_set1_epi16(short(alpha));
    const __m256i alphaBits = _mm256_set1_epi32(int(0xFF000000u));
    const __m256i colourBits = _mm256_set1_epi32(int(KPixelBuffer::kColourBits));
    int32_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m256i src = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i));
        if (alpha == 255) {
            __m256i a = _mm256_and_si256(src, alphaBits);
            if (_mm256_movemask_epi8(_mm256_cmpeq_epi32(a, alphaBits)) == -1) {
                _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + i), _mm256_and_si256(src, colourBits));
                continue;
            }
            if (_mm256_movemask_epi8(_mm256_cmpeq_epi32(src, zero)) == -1)
                continue;
        }
        __m256i dst = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(d + i));
        __m256i sLow = _mm256_unpacklo_epi8(src, zero), sHigh = _mm256_unpackhi_epi8(src, zero);
        if (alpha != 255) {
            sLow = divideWide(_mm256_mullo_epi16(sLow, constant));
            sHigh = divideWide(_mm256_mullo_epi16(sHigh, constant));
        }
        __m256i dLow
            = divideWide(_mm256_mullo_epi16(_mm256_unpacklo_epi8(dst, zero), _mm256_sub_epi16(full, spreadWide(sLow))));
        __m256i dHigh = divideWide(
            _mm256_mullo_epi16(_mm256_unpackhi_epi8(dst, zero), _mm256_sub_epi16(full, spreadWide(sHigh))));
        __m256i result = _mm256_packus_epi16(_mm256_add_epi16(sLow, dLow), _mm256_add_epi16(sHigh, dHigh));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + i), _mm256_and_si256(result, colourBits));
    }
    return i;
}

bool hasAvx2()
{
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}
#endif

void blendPremultipliedRow(uint32_t* d, const uint32_t* s, int32_t n, uint32_t alpha)
{
    int32_t i = 0;
#if defined(K_HAVE_AVX2_PATH)
    if (hasAvx2())
        i = blendPremultipliedWide(d, s, n, alpha);
#endif
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i full = _mm_set1_epi16(255);
    const __m128i constant = _mm_set1_epi16(short(alpha));
    const __m128i alphaBits = _mm_set1_epi32(int(0xFF000000u));
    const __m128i colourBits = _mm_set1_epi32(int(KPixelBuffer::kColourBits));
    for (; i + 4 <= n; i += 4) {
        __m128i src = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        if (alpha == 255) {
            // Runs of opaque or empty pixels, common in sprites, skip the
            // arithmetic.
            __m128i a = _mm_and_si128(src, alphaBits);
            if (_mm_movemask_epi8(_mm_cmpeq_epi32(a, alphaBits)) == 0xFFFF) {
                _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), _mm_and_si128(src, colourBits));
                continue;
            }
            if (_mm_movemask_epi8(_mm_cmpeq_epi32(src, zero)) == 0xFFFF)
                continue;
        }
        __m128i dst = _mm_loadu_si128(reinterpret_cast<const __m128i*>(d + i));
        __m128i sLow = _mm_unpacklo_epi8(src, zero), sHigh = _mm_unpackhi_epi8(src, zero);
        if (alpha != 255) {
            sLow = divide255Lanes(_mm_mullo_epi16(sLow, constant));
            sHigh = divide255Lanes(_mm_mullo_epi16(sHigh, constant));
        }
        __m128i dLow
            = divide255Lanes(_mm_mullo_epi16(_mm_unpacklo_epi8(dst, zero), _mm_sub_epi16(full, spreadAlpha(sLow))));
        __m128i dHigh
            = divide255Lanes(_mm_mullo_epi16(_mm_unpackhi_epi8(dst, zero), _mm_sub_epi16(full, spreadAlpha(sHigh))));
        __m128i result = _mm_packus_epi16(_mm_add_epi16(sLow, dLow), _mm_add_epi16(sHigh, dHigh));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), _mm_and_si128(result, colourBits));
    }
#endif
    for (; i < n; ++i)
        d[i] = overPixel(s[i], d[i], alpha);
}

} // namespace

void blendConstant(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, uint8_t alpha)
{
    if (alpha == 0)
        return;
    if (alpha == 255) {
        apply(destination, source, area, RasterOp::Copy);
        return;
    }
    for (int32_t j = 0; j < area.height; ++j)
        blendConstantRow(destination.at(area.dx, area.dy + j), source.at(area.sx, area.sy + j), area.width, alpha);
}

void blendPremultiplied(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, uint8_t alpha)
{
    if (alpha == 0)
        return;
    for (int32_t j = 0; j < area.height; ++j)
        blendPremultipliedRow(destination.at(area.dx, area.dy + j), source.at(area.sx, area.sy + j), area.width, alpha);
}

uint32_t premultiply(uint32_t rgb, uint8_t alpha)
{
    if (alpha == 255)
        return 0xFF000000u | (rgb & KPixelBuffer::kColourBits);
    return (uint32_t(alpha) << 24) | scaleRedBlue(rgb, alpha) | (scaleAlphaGreen(rgb, alpha) & kGreen);
}

} // namespace KPixelOps
