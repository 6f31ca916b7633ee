#pragma once

#include "graphics/KPixelBuffer.h"

#include <cstdint>

// The pixel operations of images, each from one buffer into another of the
// size the operation gives. They treat pixels as RGB24; areas of the result
// that no source pixel reaches are black, as a new image is.
namespace KImageTransforms {

struct Size {
    int32_t width;
    int32_t height;
};

void flipHorizontal(const KPixelBuffer& in, const KPixelBuffer& out);
void flipVertical(const KPixelBuffer& in, const KPixelBuffer& out);
// A quarter turn counter-clockwise; the result is height by width.
void rotateLeft(const KPixelBuffer& in, const KPixelBuffer& out);
// A quarter turn clockwise; the result is height by width.
void rotateRight(const KPixelBuffer& in, const KPixelBuffer& out);
void rotateHalf(const KPixelBuffer& in, const KPixelBuffer& out);

// Row y moves right by factor × y pixels (left when negative), so the top
// row stays and the result grows by |factor| × (height - 1).
Size shearedSize(int32_t width, int32_t height, double factor);
void shearHorizontal(const KPixelBuffer& in, const KPixelBuffer& out, double factor);

// A turn by any angle in degrees, counter-clockwise on the screen, into the
// bounding box of the turned image, sampled bilinearly.
Size rotatedSize(int32_t width, int32_t height, double degrees);
void rotateBy(const KPixelBuffer& in, const KPixelBuffer& out, double degrees);

// Each channel the mean of the 3 by 3 neighbourhood, the edge pixels
// repeated beyond the border.
void smooth(const KPixelBuffer& in, const KPixelBuffer& out);

// White where the pixel counts as white (every channel, widened to 16 bits,
// at least the threshold), black elsewhere.
void thresholdMask(const KPixelBuffer& in, const KPixelBuffer& out, uint16_t threshold);

// A quick picture of `in` at the size of `out`: each result pixel is the
// mean of at most 4 by 4 source pixels spread evenly over the area it
// covers (all of them when the area is that small), so the cost follows the
// result's size, not the source's. The result is opaque (top byte 0xFF).
void sampledShrink(const KPixelBuffer& in, const KPixelBuffer& out);

} // namespace KImageTransforms
