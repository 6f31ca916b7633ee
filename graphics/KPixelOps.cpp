#include "graphics/KPixelOps.h"

#include <cstring>

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

void apply(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, RasterOp op)
{
    for (int32_t j = 0; j < area.height; ++j) {
        uint32_t* d = destination.at(area.dx, area.dy + j);
        const uint32_t* s = source.at(area.sx, area.sy + j);
        int32_t n = area.width;
        switch (op) {
        case RasterOp::Copy:
            std::memmove(d, s, size_t(n) * sizeof(uint32_t));
            break;
        case RasterOp::MergePaint:
            for (int32_t i = 0; i < n; ++i)
                d[i] = (d[i] | ~s[i]) & KPixelBuffer::kColourBits;
            break;
        case RasterOp::And:
            for (int32_t i = 0; i < n; ++i)
                d[i] = d[i] & s[i] & KPixelBuffer::kColourBits;
            break;
        }
    }
}

void blendConstant(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, uint8_t alpha)
{
    if (alpha == 0)
        return;
    if (alpha == 255) {
        apply(destination, source, area, RasterOp::Copy);
        return;
    }
    for (int32_t j = 0; j < area.height; ++j) {
        uint32_t* d = destination.at(area.dx, area.dy + j);
        const uint32_t* s = source.at(area.sx, area.sy + j);
        for (int32_t i = 0; i < area.width; ++i)
            d[i] = mix(s[i], d[i], alpha);
    }
}

void blendPremultiplied(const KPixelBuffer& destination, const KPixelBuffer& source, const Area& area, uint8_t alpha)
{
    if (alpha == 0)
        return;
    for (int32_t j = 0; j < area.height; ++j) {
        uint32_t* d = destination.at(area.dx, area.dy + j);
        const uint32_t* s = source.at(area.sx, area.sy + j);
        for (int32_t i = 0; i < area.width; ++i) {
            uint32_t p = s[i];
            if (alpha != 255)
                p = scaleRedBlue(p, alpha) | scaleAlphaGreen(p, alpha);
            uint32_t a = p >> 24;
            if (a == 255) {
                d[i] = p & KPixelBuffer::kColourBits;
                continue;
            }
            if (p == 0)
                continue;
            uint32_t q = d[i];
            uint32_t ia = 255 - a;
            d[i] = ((p & KPixelBuffer::kColourBits) + scaleRedBlue(q, ia) + (scaleAlphaGreen(q, ia) & kGreen))
                & KPixelBuffer::kColourBits;
        }
    }
}

uint32_t premultiply(uint32_t rgb, uint8_t alpha)
{
    if (alpha == 255)
        return 0xFF000000u | (rgb & KPixelBuffer::kColourBits);
    return (uint32_t(alpha) << 24) | scaleRedBlue(rgb, alpha) | (scaleAlphaGreen(rgb, alpha) & kGreen);
}

} // namespace KPixelOps
