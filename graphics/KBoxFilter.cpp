#include "graphics/KBoxFilter.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace KBoxFilter {

namespace {

// The source pixels under each destination pixel along one axis, with the
// length of their overlap in units of 1 / destination length.
struct Taps {
    std::vector<int32_t> first; // first source index of each output
    std::vector<int32_t> count;
    std::vector<int32_t> offset; // into weights
    std::vector<uint32_t> weights;
};

Taps makeTaps(int32_t sourceLength, int32_t destinationLength, int32_t firstOutput, int32_t outputs)
{
    Taps taps;
    int64_t s = sourceLength, d = destinationLength;
    for (int32_t o = 0; o < outputs; ++o) {
        int64_t i = firstOutput + o;
        int64_t begin = i * s, end = (i + 1) * s; // in 1/d of a source pixel
        int32_t k0 = int32_t(begin / d);
        int32_t k1 = int32_t((end + d - 1) / d); // exclusive
        taps.first.push_back(k0);
        taps.count.push_back(k1 - k0);
        taps.offset.push_back(int32_t(taps.weights.size()));
        for (int32_t k = k0; k < k1; ++k) {
            int64_t overlap = std::min((k + 1) * d, end) - std::max(k * d, begin);
            taps.weights.push_back(uint32_t(overlap));
        }
    }
    return taps;
}

} // namespace

void stretch(const KPixelBuffer& source, const KWideRectangle& from, const KWideRectangle& to,
             const KWideRectangle& visible, const KPixelBuffer& out)
{
    if (from.isEmpty() || to.isEmpty() || visible.isEmpty())
        return;
    Taps columns = makeTaps(from.width, to.width, visible.x - to.x, visible.width);
    Taps rows = makeTaps(from.height, to.height, visible.y - to.y, visible.height);
    uint64_t total = uint64_t(from.width) * uint64_t(from.height);
    int32_t w = visible.width;
    std::vector<uint64_t> sums(size_t(w) * 4);
    for (int32_t j = 0; j < visible.height; ++j) {
        std::fill(sums.begin(), sums.end(), 0);
        for (int32_t r = 0; r < rows.count[size_t(j)]; ++r) {
            uint64_t wy = rows.weights[size_t(rows.offset[size_t(j)]) + size_t(r)];
            const uint32_t* line = source.row(from.y + rows.first[size_t(j)] + r) + from.x;
            for (int32_t c = 0; c < w; ++c) {
                uint32_t channels[4] = { 0, 0, 0, 0 };
                const uint32_t* tap = &columns.weights[size_t(columns.offset[size_t(c)])];
                const uint32_t* pixel = line + columns.first[size_t(c)];
                for (int32_t t = 0; t < columns.count[size_t(c)]; ++t) {
                    uint32_t p = pixel[t], wx = tap[t];
                    channels[0] += (p & 0xFF) * wx;
                    channels[1] += ((p >> 8) & 0xFF) * wx;
                    channels[2] += ((p >> 16) & 0xFF) * wx;
                    channels[3] += (p >> 24) * wx;
                }
                uint64_t* sum = &sums[size_t(c) * 4];
                for (int k = 0; k < 4; ++k)
                    sum[k] += channels[k] * wy;
            }
        }
        uint32_t* target = out.row(j);
        for (int32_t c = 0; c < w; ++c) {
            const uint64_t* sum = &sums[size_t(c) * 4];
            uint32_t p = 0;
            for (int k = 0; k < 4; ++k)
                p |= uint32_t((sum[k] + total / 2) / total) << (8 * k);
            target[c] = p;
        }
    }
}

bool clipToSource(const KWideRectangle& sourceBounds, KWideRectangle& from, KWideRectangle& to)
{
    KWideRectangle inside = from;
    inside.intersectWith(sourceBounds);
    if (inside.isEmpty() || to.isEmpty())
        return false;
    if (inside == from)
        return true;
    double sx = double(to.width) / from.width, sy = double(to.height) / from.height;
    int32_t left = to.x + int32_t(std::lround((inside.x - from.x) * sx));
    int32_t top = to.y + int32_t(std::lround((inside.y - from.y) * sy));
    int32_t right = to.x + int32_t(std::lround((inside.getRight() - from.x) * sx));
    int32_t bottom = to.y + int32_t(std::lround((inside.getBottom() - from.y) * sy));
    from = inside;
    to.setCorners(left, top, right, bottom);
    return !to.isEmpty();
}

} // namespace KBoxFilter
