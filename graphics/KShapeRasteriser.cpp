#include "graphics/KShapeRasteriser.h"

#include "graphics/KGraphicRegion.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace KShapeRasteriser {

namespace {

// How far inside the box's inscribed ellipse a pixel centre must lie. Below
// about 0.086 a 3 by 3 dab turns square; above 0.2 larger ovals get flat.
constexpr double kOvalMargin = 0.09;

struct OvalCacheEntry {
    int32_t width = -1;
    int32_t height = -1;
    std::vector<int32_t> insets;
};

constexpr int kOvalCacheSize = 8;
OvalCacheEntry gOvalCache[kOvalCacheSize];
int gOvalCacheNext = 0;

void computeOvalInsets(int32_t width, int32_t height, std::vector<int32_t>& insets)
{
    insets.assign(size_t(std::max(height, 0)), 0);
    if (width <= 0 || height <= 0)
        return;
    double rx = width / 2.0;
    double ry = height / 2.0;
    double ex = rx - kOvalMargin;
    double ey = ry - kOvalMargin;
    int32_t half = width / 2 + 1; // an inset this large empties the row
    for (int32_t j = 0; j < (height + 1) / 2; ++j) {
        double dy = (j + 0.5 - ry) / ey;
        double t = 1.0 - dy * dy;
        int32_t inset = half;
        if (t >= 0.0) {
            double hw = ex * std::sqrt(t);
            inset = std::max<int32_t>(0, int32_t(std::ceil(rx - hw - 0.5 - 1e-9)));
            inset = std::min(inset, half);
        }
        insets[size_t(j)] = inset;
        insets[size_t(height - 1 - j)] = inset;
    }
}

// Adds the part of [a0, a1) that lies outside [b0, b1).
void addDifference(KSpanList& out, int32_t y, int32_t a0, int32_t a1, int32_t b0, int32_t b1)
{
    if (b1 <= b0) {
        out.add(y, a0, a1);
        return;
    }
    out.add(y, a0, std::min(a1, b0));
    out.add(y, std::max(a0, b1), a1);
}

// Left inset of row j of a round rectangle of width by height whose corners
// come from an oval of cw by ch.
int32_t roundInset(int32_t j, int32_t height, int32_t cw, int32_t ch)
{
    const std::vector<int32_t>& insets = ovalInsets(cw, ch);
    int32_t inset = 0;
    if (j < ch / 2)
        inset = insets[size_t(j)];
    else if (j >= height - ch / 2)
        inset = insets[size_t(j - (height - ch))];
    return std::min(inset, cw / 2);
}

struct RowSpan {
    int32_t x0;
    int32_t x1;
};

RowSpan ovalRow(const KWideRectangle& r, int32_t j)
{
    int32_t inset = ovalInsets(r.width, r.height)[size_t(j)];
    return { r.x + inset, r.x + r.width - inset };
}

RowSpan roundRow(const KWideRectangle& r, int32_t diameter, int32_t j)
{
    int32_t cw = std::min(diameter, r.width);
    int32_t ch = std::min(diameter, r.height);
    if (cw < 2 || ch < 2)
        return { r.x, r.x + r.width };
    int32_t inset = roundInset(j, r.height, cw, ch);
    return { r.x + inset, r.x + r.width - inset };
}

KWideRectangle shrunk(const KWideRectangle& r, int32_t pen)
{
    KWideRectangle inner = r;
    inner.shrink(pen, pen);
    if (pen * 2 >= r.width || pen * 2 >= r.height)
        inner.set(r.x, r.y, 0, 0);
    return inner;
}

template<class Row>
void addFrameRows(KSpanList& out, const KWideRectangle& outer, const KWideRectangle& inner, Row&& row)
{
    for (int32_t j = 0; j < outer.height; ++j) {
        int32_t y = outer.y + j;
        RowSpan a = row(outer, j, true);
        if (inner.isEmpty() || y < inner.y || y >= inner.getBottom()) {
            out.add(y, a.x0, a.x1);
            continue;
        }
        RowSpan b = row(inner, y - inner.y, false);
        addDifference(out, y, a.x0, a.x1, b.x0, b.x1);
    }
}

void stamp(KSpanList& out, int32_t x, int32_t y, int32_t pen)
{
    int32_t x0 = x - pen / 2;
    int32_t y0 = y - pen / 2;
    for (int32_t j = 0; j < pen; ++j)
        out.add(y0 + j, x0, x0 + pen);
}

// Walks the Bresenham line, calling plot for each point; the end point is
// visited only when asked for.
template<class Plot>
void walkLine(KRasterPoint from, KRasterPoint to, bool withEnd, Plot&& plot)
{
    int64_t x = from.x, y = from.y;
    int64_t dx = std::llabs(int64_t(to.x) - from.x);
    int64_t dy = -std::llabs(int64_t(to.y) - from.y);
    int64_t sx = from.x < to.x ? 1 : -1;
    int64_t sy = from.y < to.y ? 1 : -1;
    int64_t err = dx + dy;
    for (;;) {
        bool atEnd = x == to.x && y == to.y;
        if (atEnd) {
            if (withEnd)
                plot(int32_t(x), int32_t(y));
            return;
        }
        plot(int32_t(x), int32_t(y));
        int64_t e2 = 2 * err;
        if (e2 >= dy) {
            err += dy;
            x += sx;
        }
        if (e2 <= dx) {
            err += dx;
            y += sy;
        }
    }
}

} // namespace

const std::vector<int32_t>& ovalInsets(int32_t width, int32_t height)
{
    for (OvalCacheEntry& entry : gOvalCache) {
        if (entry.width == width && entry.height == height)
            return entry.insets;
    }
    OvalCacheEntry& entry = gOvalCache[gOvalCacheNext];
    gOvalCacheNext = (gOvalCacheNext + 1) % kOvalCacheSize;
    entry.width = width;
    entry.height = height;
    computeOvalInsets(width, height, entry.insets);
    return entry.insets;
}

void addRectangleFrame(KSpanList& out, const KWideRectangle& r, int32_t pen)
{
    if (r.isEmpty())
        return;
    KWideRectangle inner = shrunk(r, std::max(pen, 1));
    addFrameRows(out, r, inner, [](const KWideRectangle& box, int32_t, bool) {
        return RowSpan { box.x, box.getRight() };
    });
}

void addOval(KSpanList& out, const KWideRectangle& r)
{
    if (r.isEmpty())
        return;
    for (int32_t j = 0; j < r.height; ++j) {
        RowSpan s = ovalRow(r, j);
        out.add(r.y + j, s.x0, s.x1);
    }
}

void addOvalFrame(KSpanList& out, const KWideRectangle& r, int32_t pen)
{
    if (r.isEmpty())
        return;
    KWideRectangle inner = shrunk(r, std::max(pen, 1));
    // The inner oval's insets are fetched row by row; keep both shapes in
    // the cache by copying the outer one first.
    std::vector<int32_t> outerInsets = ovalInsets(r.width, r.height);
    addFrameRows(out, r, inner, [&](const KWideRectangle& box, int32_t j, bool isOuter) {
        int32_t inset = isOuter ? outerInsets[size_t(j)] : ovalInsets(box.width, box.height)[size_t(j)];
        return RowSpan { box.x + inset, box.x + box.width - inset };
    });
}

void addRoundRectangle(KSpanList& out, const KWideRectangle& r, int32_t diameter)
{
    if (r.isEmpty())
        return;
    for (int32_t j = 0; j < r.height; ++j) {
        RowSpan s = roundRow(r, diameter, j);
        out.add(r.y + j, s.x0, s.x1);
    }
}

void addRoundRectangleFrame(KSpanList& out, const KWideRectangle& r, int32_t diameter, int32_t pen)
{
    if (r.isEmpty())
        return;
    pen = std::max(pen, 1);
    KWideRectangle inner = shrunk(r, pen);
    int32_t innerDiameter = std::max(diameter - 2 * pen, 0);
    addFrameRows(out, r, inner, [&](const KWideRectangle& box, int32_t j, bool isOuter) {
        return roundRow(box, isOuter ? diameter : innerDiameter, j);
    });
}

void addLine(KSpanList& out, KRasterPoint from, KRasterPoint to, int32_t pen)
{
    if (pen <= 1) {
        walkLine(from, to, false, [&](int32_t x, int32_t y) { out.add(y, x, x + 1); });
        return;
    }
    walkLine(from, to, true, [&](int32_t x, int32_t y) { stamp(out, x, y, pen); });
}

void addPolyline(KSpanList& out, const std::vector<KRasterPoint>& points, bool closed, int32_t pen)
{
    if (points.empty())
        return;
    if (points.size() == 1) {
        stamp(out, points[0].x, points[0].y, std::max(pen, 1));
        return;
    }
    for (size_t i = 0; i + 1 < points.size(); ++i)
        addLine(out, points[i], points[i + 1], pen);
    if (closed)
        addLine(out, points.back(), points.front(), pen);
    else if (pen <= 1)
        out.add(points.back().y, points.back().x, points.back().x + 1);
}

void addPolygon(KSpanList& out, const std::vector<KRasterPoint>& points, int32_t top, int32_t bottom)
{
    if (points.size() < 3)
        return;
    int32_t minY = points[0].y, maxY = points[0].y;
    for (const KRasterPoint& p : points) {
        minY = std::min(minY, p.y);
        maxY = std::max(maxY, p.y);
    }
    minY = std::max(minY, top);
    maxY = std::min(maxY, bottom);
    std::vector<double> crossings;
    size_t n = points.size();
    for (int32_t y = minY; y < maxY; ++y) {
        double yc = y + 0.5;
        crossings.clear();
        for (size_t i = 0; i < n; ++i) {
            const KRasterPoint& a = points[i];
            const KRasterPoint& b = points[(i + 1) % n];
            if (a.y == b.y)
                continue;
            double lo = std::min(a.y, b.y), hi = std::max(a.y, b.y);
            if (yc < lo || yc >= hi)
                continue;
            crossings.push_back(a.x + (yc - a.y) * double(b.x - a.x) / double(b.y - a.y));
        }
        std::sort(crossings.begin(), crossings.end());
        for (size_t i = 0; i + 1 < crossings.size(); i += 2) {
            int32_t x0 = int32_t(std::ceil(crossings[i] - 0.5));
            int32_t x1 = int32_t(std::ceil(crossings[i + 1] - 0.5));
            out.add(y, x0, x1);
        }
    }
}

void addDashedPath(KSpanList& out, const std::vector<KRasterPoint>& points)
{
    static constexpr int32_t kPattern[] = { 9, 6, 3, 6 };
    static constexpr int32_t kPeriod = 24;
    if (points.size() < 2)
        return;
    int32_t position = 0;
    auto plot = [&](int32_t x, int32_t y) {
        int32_t phase = position % kPeriod;
        bool on = phase < kPattern[0] || (phase >= kPattern[0] + kPattern[1] && phase < kPeriod - kPattern[3]);
        if (on)
            out.add(y, x, x + 1);
        ++position;
    };
    for (size_t i = 0; i < points.size(); ++i)
        walkLine(points[i], points[(i + 1) % points.size()], false, plot);
}

void addRegion(KSpanList& out, const KGraphicRegion& region)
{
    int32_t count = region.getRectangleCount();
    for (int32_t i = 0; i < count; ++i) {
        KWideRectangle r = region.getRectangle(i);
        out.addRectangle(r.x, r.y, r.width, r.height);
    }
}

void addRegionFrame(KSpanList& out, const KGraphicRegion& region, int32_t pen, const KWideRectangle& limit)
{
    pen = std::max(pen, 1);
    KWideRectangle box = region.getBounds();
    KWideRectangle near = limit;
    near.grow(pen + 1, pen + 1);
    box.intersectWith(near);
    if (box.isEmpty())
        return;
    int32_t w = box.width, h = box.height;
    std::vector<uint8_t> inside(size_t(w) * size_t(h), 0);
    for (int32_t i = 0; i < region.getRectangleCount(); ++i) {
        KWideRectangle r = region.getRectangle(i);
        r.intersectWith(box);
        for (int32_t y = r.y; y < r.getBottom(); ++y)
            std::fill_n(&inside[size_t(y - box.y) * size_t(w) + size_t(r.x - box.x)], r.width, uint8_t(1));
    }
    // Erosion by a square of 2 * pen + 1, one axis at a time: a pixel stays
    // inside when every pixel of its window is inside. Outside the box
    // counts as outside the region.
    auto erode = [&](std::vector<uint8_t>& data, int32_t lines, int32_t length, size_t along, size_t across) {
        std::vector<int32_t> runs(size_t(length) + 1);
        std::vector<uint8_t> line(static_cast<size_t>(length));
        for (int32_t l = 0; l < lines; ++l) {
            runs[0] = 0;
            for (int32_t i = 0; i < length; ++i)
                runs[size_t(i) + 1] = runs[size_t(i)] + data[size_t(l) * across + size_t(i) * along];
            for (int32_t i = 0; i < length; ++i) {
                int32_t a = i - pen, b = i + pen + 1;
                bool full = a >= 0 && b <= length && runs[size_t(b)] - runs[size_t(a)] == b - a;
                line[size_t(i)] = full ? 1 : 0;
            }
            for (int32_t i = 0; i < length; ++i)
                data[size_t(l) * across + size_t(i) * along] = line[size_t(i)];
        }
    };
    std::vector<uint8_t> core = inside;
    erode(core, h, w, 1, size_t(w));
    erode(core, w, h, size_t(w), 1);
    for (int32_t y = 0; y < h; ++y) {
        int32_t runStart = -1;
        for (int32_t x = 0; x <= w; ++x) {
            size_t i = size_t(y) * size_t(w) + size_t(x);
            bool on = x < w && inside[i] && !core[i];
            if (on && runStart < 0)
                runStart = x;
            if (!on && runStart >= 0) {
                out.add(box.y + y, box.x + runStart, box.x + x);
                runStart = -1;
            }
        }
    }
}

void addFocusRectangle(KSpanList& out, const KWideRectangle& r)
{
    if (r.isEmpty())
        return;
    int32_t right = r.getRight() - 1, bottom = r.getBottom() - 1;
    auto dot = [&](int32_t x, int32_t y) {
        if (((x + y) & 1) == 0)
            out.add(y, x, x + 1);
    };
    for (int32_t x = r.x; x <= right; ++x) {
        dot(x, r.y);
        if (bottom != r.y)
            dot(x, bottom);
    }
    for (int32_t y = r.y + 1; y < bottom; ++y) {
        dot(r.x, y);
        if (right != r.x)
            dot(right, y);
    }
}

void addPopupArrow(KSpanList& out, const KWideRectangle& r)
{
    int32_t x = r.x + (r.width - 8) / 2;
    int32_t y = r.y + (r.height - 4) / 2;
    for (int32_t k = 0; k < 4; ++k)
        out.add(y + k, x + k, x + 8 - k);
}

} // namespace KShapeRasteriser
