#include "graphics/KImageTransforms.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace KImageTransforms {

namespace {

constexpr double kPi = 3.14159265358979323846;

uint32_t channel(uint32_t pixel, int shift) { return (pixel >> shift) & 0xFF; }

// Bilinear sample at a point in pixel-centre coordinates; false outside.
bool sample(const KPixelBuffer& in, double x, double y, uint32_t& result)
{
    if (x < -0.5 || y < -0.5 || x > in.width - 0.5 || y > in.height - 0.5)
        return false;
    double fx = std::clamp(x, 0.0, double(in.width - 1));
    double fy = std::clamp(y, 0.0, double(in.height - 1));
    int32_t x0 = int32_t(fx), y0 = int32_t(fy);
    int32_t x1 = std::min(x0 + 1, in.width - 1), y1 = std::min(y0 + 1, in.height - 1);
    double tx = fx - x0, ty = fy - y0;
    uint32_t p00 = *in.at(x0, y0), p10 = *in.at(x1, y0), p01 = *in.at(x0, y1), p11 = *in.at(x1, y1);
    result = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        double top = channel(p00, shift) * (1 - tx) + channel(p10, shift) * tx;
        double bottom = channel(p01, shift) * (1 - tx) + channel(p11, shift) * tx;
        result |= uint32_t(std::lround(top * (1 - ty) + bottom * ty)) << shift;
    }
    return true;
}

} // namespace

void flipHorizontal(const KPixelBuffer& in, const KPixelBuffer& out)
{
    for (int32_t y = 0; y < in.height; ++y)
        std::reverse_copy(in.row(y), in.row(y) + in.width, out.row(y));
}

void flipVertical(const KPixelBuffer& in, const KPixelBuffer& out)
{
    for (int32_t y = 0; y < in.height; ++y)
        std::copy_n(in.row(in.height - 1 - y), in.width, out.row(y));
}

void rotateLeft(const KPixelBuffer& in, const KPixelBuffer& out)
{
    for (int32_t y = 0; y < out.height; ++y) {
        uint32_t* row = out.row(y);
        for (int32_t x = 0; x < out.width; ++x)
            row[x] = *in.at(in.width - 1 - y, x);
    }
}

void rotateRight(const KPixelBuffer& in, const KPixelBuffer& out)
{
    for (int32_t y = 0; y < out.height; ++y) {
        uint32_t* row = out.row(y);
        for (int32_t x = 0; x < out.width; ++x)
            row[x] = *in.at(y, in.height - 1 - x);
    }
}

void rotateHalf(const KPixelBuffer& in, const KPixelBuffer& out)
{
    for (int32_t y = 0; y < in.height; ++y)
        std::reverse_copy(in.row(in.height - 1 - y), in.row(in.height - 1 - y) + in.width, out.row(y));
}

Size shearedSize(int32_t width, int32_t height, double factor)
{
    int32_t extra = int32_t(std::ceil(std::fabs(factor) * std::max(height - 1, 0) - 1e-9));
    return { width + extra, height };
}

void shearHorizontal(const KPixelBuffer& in, const KPixelBuffer& out, double factor)
{
    int32_t extra = out.width - in.width;
    for (int32_t y = 0; y < in.height; ++y) {
        int32_t shift = int32_t(std::lround(factor * y));
        if (factor < 0)
            shift += extra;
        shift = std::clamp(shift, 0, extra);
        std::fill_n(out.row(y), out.width, 0u);
        std::copy_n(in.row(y), in.width, out.row(y) + shift);
    }
}

Size rotatedSize(int32_t width, int32_t height, double degrees)
{
    double a = degrees * kPi / 180.0;
    double c = std::fabs(std::cos(a)), s = std::fabs(std::sin(a));
    return { int32_t(std::ceil(width * c + height * s - 1e-6)), int32_t(std::ceil(width * s + height * c - 1e-6)) };
}

void rotateBy(const KPixelBuffer& in, const KPixelBuffer& out, double degrees)
{
    // y grows downwards, so a counter-clockwise turn on the screen is a
    // negative angle in these coordinates; each result pixel looks up where
    // it came from.
    double a = degrees * kPi / 180.0;
    double c = std::cos(a), s = std::sin(a);
    double inCx = in.width / 2.0, inCy = in.height / 2.0;
    double outCx = out.width / 2.0, outCy = out.height / 2.0;
    for (int32_t y = 0; y < out.height; ++y) {
        uint32_t* row = out.row(y);
        for (int32_t x = 0; x < out.width; ++x) {
            double dx = x + 0.5 - outCx, dy = y + 0.5 - outCy;
            double sx = c * dx - s * dy + inCx - 0.5;
            double sy = s * dx + c * dy + inCy - 0.5;
            uint32_t pixel = 0;
            row[x] = sample(in, sx, sy, pixel) ? pixel : 0;
        }
    }
}

void smooth(const KPixelBuffer& in, const KPixelBuffer& out)
{
    for (int32_t y = 0; y < in.height; ++y) {
        const uint32_t* rows[3] = { in.row(std::max(y - 1, 0)), in.row(y), in.row(std::min(y + 1, in.height - 1)) };
        uint32_t* target = out.row(y);
        for (int32_t x = 0; x < in.width; ++x) {
            int32_t xs[3] = { std::max(x - 1, 0), x, std::min(x + 1, in.width - 1) };
            uint32_t sums[3] = { 0, 0, 0 };
            for (const uint32_t* r : rows) {
                for (int32_t xi : xs) {
                    sums[0] += channel(r[xi], 16);
                    sums[1] += channel(r[xi], 8);
                    sums[2] += channel(r[xi], 0);
                }
            }
            target[x] = (((sums[0] + 4) / 9) << 16) | (((sums[1] + 4) / 9) << 8) | ((sums[2] + 4) / 9);
        }
    }
}

void thresholdMask(const KPixelBuffer& in, const KPixelBuffer& out, uint16_t threshold)
{
    for (int32_t y = 0; y < in.height; ++y) {
        const uint32_t* source = in.row(y);
        uint32_t* target = out.row(y);
        for (int32_t x = 0; x < in.width; ++x) {
            uint32_t p = source[x];
            bool white = channel(p, 16) * 257 >= threshold && channel(p, 8) * 257 >= threshold
                         && channel(p, 0) * 257 >= threshold;
            target[x] = white ? KPixelBuffer::kColourBits : 0;
        }
    }
}

namespace {

// The source indices sampled for each of `outputs` cells along an axis of
// `length` source pixels: up to kMaxSamples per cell, evenly spread.
constexpr int32_t kMaxSamples = 4;

struct SampleCell {
    int32_t count;
    int32_t index[kMaxSamples];
};

std::vector<SampleCell> sampleAxis(int32_t length, int32_t outputs)
{
    std::vector<SampleCell> cells(static_cast<size_t>(outputs));
    for (int32_t o = 0; o < outputs; ++o) {
        int64_t begin = int64_t(o) * length / outputs;
        int64_t end = std::max(begin + 1, int64_t(o + 1) * length / outputs);
        int64_t span = end - begin;
        SampleCell& cell = cells[size_t(o)];
        cell.count = int32_t(std::min<int64_t>(span, kMaxSamples));
        for (int32_t k = 0; k < cell.count; ++k)
            cell.index[k] = int32_t(begin + (2 * k + 1) * span / (2 * cell.count));
    }
    return cells;
}

} // namespace

// Red and blue are summed side by side in one word, green in another: at
// most 16 samples of 255 need 12 bits, so the lanes never meet.
void sampledShrink(const KPixelBuffer& in, const KPixelBuffer& out)
{
    if (!in.isValid() || !out.isValid())
        return;
    std::vector<SampleCell> columns = sampleAxis(in.width, out.width);
    std::vector<SampleCell> rows = sampleAxis(in.height, out.height);
    for (int32_t y = 0; y < out.height; ++y) {
        const SampleCell& row = rows[size_t(y)];
        const uint32_t* lines[kMaxSamples];
        for (int32_t r = 0; r < row.count; ++r)
            lines[r] = in.row(row.index[r]);
        uint32_t* target = out.row(y);
        for (int32_t x = 0; x < out.width; ++x) {
            const SampleCell& column = columns[size_t(x)];
            uint32_t redBlue = 0;
            uint32_t green = 0;
            for (int32_t r = 0; r < row.count; ++r) {
                for (int32_t c = 0; c < column.count; ++c) {
                    uint32_t p = lines[r][column.index[c]];
                    redBlue += p & 0x00FF00FFu;
                    green += p & 0x0000FF00u;
                }
            }
            uint32_t n = uint32_t(row.count * column.count);
            uint32_t red = ((redBlue >> 16) + n / 2) / n;
            uint32_t blue = ((redBlue & 0xFFFFu) + n / 2) / n;
            uint32_t greenMean = ((green >> 8) + n / 2) / n;
            target[x] = 0xFF000000u | (red << 16) | (greenMean << 8) | blue;
        }
    }
}

} // namespace KImageTransforms
