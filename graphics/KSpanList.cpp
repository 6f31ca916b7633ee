#include "graphics/KSpanList.h"

#include <algorithm>

void KSpanList::addRectangle(int32_t x, int32_t y, int32_t width, int32_t height)
{
    if (width <= 0 || height <= 0)
        return;
    for (int32_t row = y; row < y + height; ++row)
        spans.push_back({ row, x, x + width });
}

void KSpanList::normalise()
{
    if (spans.size() < 2)
        return;
    std::sort(spans.begin(), spans.end(),
              [](const KSpan& a, const KSpan& b) { return a.y != b.y ? a.y < b.y : a.x0 < b.x0; });
    size_t out = 0;
    for (size_t i = 1; i < spans.size(); ++i) {
        KSpan& last = spans[out];
        const KSpan& next = spans[i];
        if (next.y == last.y && next.x0 <= last.x1)
            last.x1 = std::max(last.x1, next.x1);
        else
            spans[++out] = next;
    }
    spans.resize(out + 1);
}

void KSpanList::limitRows(int32_t top, int32_t bottom)
{
    std::erase_if(spans, [&](const KSpan& s) { return s.y < top || s.y >= bottom; });
}

int64_t KSpanList::pixelCount() const
{
    int64_t count = 0;
    for (const KSpan& s : spans)
        count += s.x1 - s.x0;
    return count;
}
