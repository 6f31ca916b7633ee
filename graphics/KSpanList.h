#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// One row's run of pixels: x0 up to x1, x1 exclusive.
struct KSpan {
    int32_t y;
    int32_t x0;
    int32_t x1;
};

// The pixel set of a drawing operation as runs of pixels. A shape made of
// overlapping parts (a wide line, a polygon with its outline) is normalised
// before it is painted, so that every pixel is touched once: an inverting
// pen must flip each pixel exactly once.
class KSpanList {
public:
    void add(int32_t y, int32_t x0, int32_t x1)
    {
        if (x1 > x0)
            spans.push_back({ y, x0, x1 });
    }
    void addRectangle(int32_t x, int32_t y, int32_t width, int32_t height);
    void clear() { spans.clear(); }
    bool isEmpty() const { return spans.empty(); }
    size_t size() const { return spans.size(); }

    // Sorts by row and x and merges runs that overlap or touch.
    void normalise();
    // Keeps only the rows from top (inclusive) to bottom (exclusive).
    void limitRows(int32_t top, int32_t bottom);
    // Number of pixels; the list must be normalised for this to be exact.
    int64_t pixelCount() const;

    const std::vector<KSpan>& items() const { return spans; }
    std::vector<KSpan>::const_iterator begin() const { return spans.begin(); }
    std::vector<KSpan>::const_iterator end() const { return spans.end(); }

private:
    std::vector<KSpan> spans;
};
