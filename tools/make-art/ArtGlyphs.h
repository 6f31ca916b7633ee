#pragma once

#include <cairo.h>

#include <cstdint>

// The drawings the program's pictures are made of. Every glyph draws into
// the box (0, 0)-(100, 100) of the current user space, so one drawing serves
// a 20-pixel filter icon and a 62-pixel palette button alike: the caller
// scales. Shapes are simple and bright, with a dark outline, so they read
// well on any page and at any size.
namespace ArtGlyphs {

struct Rgb {
    double r;
    double g;
    double b;
};

// 0xRRGGBB.
Rgb colour(uint32_t rgb);
// The colour with each channel multiplied by `factor` (below 1 darkens).
Rgb shade(const Rgb& c, double factor);

// The colours of the family.
extern const Rgb kOutline;
extern const Rgb kWhite;
extern const Rgb kRed;
extern const Rgb kOrange;
extern const Rgb kYellow;
extern const Rgb kGreen;
extern const Rgb kTeal;
extern const Rgb kBlue;
extern const Rgb kPurple;
extern const Rgb kPink;
extern const Rgb kBrown;
extern const Rgb kGrey;
extern const Rgb kSky;

void setColour(cairo_t* cr, const Rgb& c);
void roundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius);
void circle(cairo_t* cr, double cx, double cy, double radius);
// Fills the current path and outlines it in the dark outline colour.
void fillOutlined(cairo_t* cr, const Rgb& fill, double line = 5);
// A thick line with round ends, outlined: a dark wider line under it.
void strokeOutlined(cairo_t* cr, const Rgb& c, double width, double outline = 4);
// A solid arrow from (x1, y1) to the tip (x2, y2).
void arrowPath(cairo_t* cr, double x1, double y1, double x2, double y2, double shaft, double head);

// The pictures of the element kinds.
void blankPage(cairo_t* cr);
void waitForClick(cairo_t* cr);
void brushStroke(cairo_t* cr);
void letterText(cairo_t* cr);
void speechBubble(cairo_t* cr);
void pauseClock(cairo_t* cr);
void musicNotes(cairo_t* cr);
void pageTurn(cairo_t* cr);
void macroGear(cairo_t* cr);
void movieClapper(cairo_t* cr);
void framedPicture(cairo_t* cr);
void actor(cairo_t* cr);
// The actor with a badge telling what happens to it: 1 enters, 2 leaves,
// 3 moves or changes size, 4 jumps, 5 changes its order, 6 changes its
// movement; 7 walks along a recorded path.
void actorDoing(cairo_t* cr, int32_t what);
// Four little coloured squares: every kind.
void allKinds(cairo_t* cr);
// An eraser rubbing out a line.
void eraser(cairo_t* cr);
// A pointing hand, its finger tip at (30, 4).
void pointingHand(cairo_t* cr);
// An open story book with a rainbow and a star: the program's own picture.
void storyBook(cairo_t* cr);

} // namespace ArtGlyphs
