#include "tools/make-art/ArtGlyphs.h"

#include <cmath>

namespace ArtGlyphs {

namespace {

constexpr double kPi = 3.14159265358979323846;

void ellipse(cairo_t* cr, double cx, double cy, double rx, double ry, double turn = 0)
{
    cairo_save(cr);
    cairo_translate(cr, cx, cy);
    cairo_rotate(cr, turn);
    cairo_scale(cr, rx, ry);
    cairo_new_sub_path(cr);
    cairo_arc(cr, 0, 0, 1, 0, 2 * kPi);
    cairo_close_path(cr);
    cairo_restore(cr);
}

void line(cairo_t* cr, double x1, double y1, double x2, double y2)
{
    cairo_move_to(cr, x1, y1);
    cairo_line_to(cr, x2, y2);
}

// A small round badge at the lower right of the box with a white ground.
void badge(cairo_t* cr, const Rgb& ring)
{
    circle(cr, 74, 74, 22);
    fillOutlined(cr, ring, 4);
}

void whiteArrow(cairo_t* cr, double x1, double y1, double x2, double y2)
{
    arrowPath(cr, x1, y1, x2, y2, 7, 16);
    setColour(cr, kWhite);
    cairo_fill(cr);
}

} // namespace

Rgb colour(uint32_t rgb) { return { ((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0 }; }

Rgb shade(const Rgb& c, double factor) { return { c.r * factor, c.g * factor, c.b * factor }; }

const Rgb kOutline = colour(0x2F3142);
const Rgb kWhite = colour(0xFFFFFF);
const Rgb kRed = colour(0xE8483F);
const Rgb kOrange = colour(0xF7931E);
const Rgb kYellow = colour(0xFFD23B);
const Rgb kGreen = colour(0x4CBB47);
const Rgb kTeal = colour(0x22BFB0);
const Rgb kBlue = colour(0x3A86E8);
const Rgb kPurple = colour(0x9B57D3);
const Rgb kPink = colour(0xF47FB4);
const Rgb kBrown = colour(0xA56A3B);
const Rgb kGrey = colour(0xC9CCD6);
const Rgb kSky = colour(0xBDE6FF);

void setColour(cairo_t* cr, const Rgb& c) { cairo_set_source_rgb(cr, c.r, c.g, c.b); }

void roundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius)
{
    cairo_new_sub_path(cr);
    cairo_arc(cr, x + width - radius, y + radius, radius, -kPi / 2, 0);
    cairo_arc(cr, x + width - radius, y + height - radius, radius, 0, kPi / 2);
    cairo_arc(cr, x + radius, y + height - radius, radius, kPi / 2, kPi);
    cairo_arc(cr, x + radius, y + radius, radius, kPi, 3 * kPi / 2);
    cairo_close_path(cr);
}

void circle(cairo_t* cr, double cx, double cy, double radius)
{
    cairo_new_sub_path(cr);
    cairo_arc(cr, cx, cy, radius, 0, 2 * kPi);
    cairo_close_path(cr);
}

void fillOutlined(cairo_t* cr, const Rgb& fill, double width)
{
    setColour(cr, fill);
    cairo_fill_preserve(cr);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, width);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cr);
}

void strokeOutlined(cairo_t* cr, const Rgb& c, double width, double outline)
{
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, width + 2 * outline);
    cairo_stroke_preserve(cr);
    setColour(cr, c);
    cairo_set_line_width(cr, width);
    cairo_stroke(cr);
}

void arrowPath(cairo_t* cr, double x1, double y1, double x2, double y2, double shaft, double head)
{
    double dx = x2 - x1, dy = y2 - y1;
    double length = std::hypot(dx, dy);
    if (length <= 0)
        return;
    double ux = dx / length, uy = dy / length;
    double nx = -uy, ny = ux;
    double bx = x2 - ux * head, by = y2 - uy * head;
    cairo_new_sub_path(cr);
    cairo_move_to(cr, x1 + nx * shaft / 2, y1 + ny * shaft / 2);
    cairo_line_to(cr, bx + nx * shaft / 2, by + ny * shaft / 2);
    cairo_line_to(cr, bx + nx * head * 0.8, by + ny * head * 0.8);
    cairo_line_to(cr, x2, y2);
    cairo_line_to(cr, bx - nx * head * 0.8, by - ny * head * 0.8);
    cairo_line_to(cr, bx - nx * shaft / 2, by - ny * shaft / 2);
    cairo_line_to(cr, x1 - nx * shaft / 2, y1 - ny * shaft / 2);
    cairo_close_path(cr);
}

void blankPage(cairo_t* cr)
{
    cairo_move_to(cr, 24, 12);
    cairo_line_to(cr, 62, 12);
    cairo_line_to(cr, 78, 28);
    cairo_line_to(cr, 78, 88);
    cairo_line_to(cr, 24, 88);
    cairo_close_path(cr);
    fillOutlined(cr, kWhite, 5);
    cairo_move_to(cr, 62, 12);
    cairo_line_to(cr, 62, 28);
    cairo_line_to(cr, 78, 28);
    cairo_close_path(cr);
    fillOutlined(cr, kGrey, 4);
}

void waitForClick(cairo_t* cr)
{
    // A mouse whose left button is pressed, with a little burst.
    roundedRectangle(cr, 34, 28, 40, 60, 20);
    fillOutlined(cr, kWhite, 5);
    cairo_move_to(cr, 54, 28);
    cairo_line_to(cr, 54, 52);
    cairo_line_to(cr, 34, 52);
    cairo_line_to(cr, 34, 46);
    cairo_arc(cr, 54, 48, 20, kPi, 3 * kPi / 2);
    cairo_close_path(cr);
    fillOutlined(cr, kBlue, 4);
    line(cr, 24, 22, 14, 12);
    line(cr, 20, 36, 8, 36);
    line(cr, 36, 16, 36, 4);
    strokeOutlined(cr, kYellow, 5, 2.5);
}

void brushStroke(cairo_t* cr)
{
    cairo_move_to(cr, 10, 80);
    cairo_curve_to(cr, 22, 56, 34, 92, 48, 70);
    strokeOutlined(cr, kRed, 9, 3);
    cairo_save(cr);
    cairo_translate(cr, 64, 40);
    cairo_rotate(cr, kPi / 4);
    roundedRectangle(cr, -7, -42, 14, 40, 6);
    fillOutlined(cr, kBrown, 4);
    cairo_rectangle(cr, -9, -4, 18, 12);
    fillOutlined(cr, kGrey, 4);
    cairo_move_to(cr, -9, 8);
    cairo_line_to(cr, 9, 8);
    cairo_curve_to(cr, 9, 20, 2, 30, 0, 34);
    cairo_curve_to(cr, -2, 30, -9, 20, -9, 8);
    cairo_close_path(cr);
    fillOutlined(cr, kRed, 4);
    cairo_restore(cr);
}

void letterText(cairo_t* cr)
{
    cairo_move_to(cr, 20, 86);
    cairo_line_to(cr, 50, 14);
    cairo_line_to(cr, 80, 86);
    cairo_move_to(cr, 32, 62);
    cairo_line_to(cr, 68, 62);
    strokeOutlined(cr, kBlue, 13, 4);
}

void speechBubble(cairo_t* cr)
{
    ellipse(cr, 52, 44, 40, 30);
    fillOutlined(cr, kWhite, 5);
    cairo_move_to(cr, 30, 66);
    cairo_line_to(cr, 18, 90);
    cairo_line_to(cr, 46, 72);
    fillOutlined(cr, kWhite, 5);
    // Cover the seam between the tail and the bubble.
    ellipse(cr, 52, 44, 37, 27);
    setColour(cr, kWhite);
    cairo_fill(cr);
    const Rgb dots[] = { kRed, kGreen, kBlue };
    for (int i = 0; i < 3; ++i) {
        circle(cr, 34 + 18 * i, 44, 7);
        fillOutlined(cr, dots[i], 3);
    }
}

void pauseClock(cairo_t* cr)
{
    circle(cr, 28, 20, 12);
    circle(cr, 72, 20, 12);
    fillOutlined(cr, kOrange, 4);
    circle(cr, 50, 54, 38);
    fillOutlined(cr, kOrange, 5);
    circle(cr, 50, 54, 29);
    setColour(cr, kWhite);
    cairo_fill(cr);
    for (int i = 0; i < 12; i += 3) {
        double a = i * kPi / 6;
        line(cr, 50 + 22 * std::sin(a), 54 - 22 * std::cos(a), 50 + 27 * std::sin(a), 54 - 27 * std::cos(a));
    }
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 4);
    cairo_stroke(cr);
    line(cr, 50, 54, 50, 34);
    line(cr, 50, 54, 64, 62);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 6);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_stroke(cr);
}

void musicNotes(cairo_t* cr)
{
    cairo_move_to(cr, 38, 74);
    cairo_line_to(cr, 38, 22);
    cairo_line_to(cr, 82, 12);
    cairo_line_to(cr, 82, 64);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 7);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cr);
    cairo_move_to(cr, 38, 22);
    cairo_line_to(cr, 82, 12);
    cairo_line_to(cr, 82, 26);
    cairo_line_to(cr, 38, 36);
    cairo_close_path(cr);
    fillOutlined(cr, kPurple, 4);
    ellipse(cr, 28, 76, 14, 10, -0.4);
    fillOutlined(cr, kPurple, 4);
    ellipse(cr, 72, 66, 14, 10, -0.4);
    fillOutlined(cr, kPurple, 4);
}

void pageTurn(cairo_t* cr)
{
    roundedRectangle(cr, 12, 12, 50, 64, 4);
    fillOutlined(cr, kSky, 4);
    cairo_move_to(cr, 36, 26);
    cairo_line_to(cr, 88, 26);
    cairo_line_to(cr, 88, 70);
    cairo_line_to(cr, 68, 90);
    cairo_line_to(cr, 36, 90);
    cairo_close_path(cr);
    fillOutlined(cr, kYellow, 5);
    cairo_move_to(cr, 88, 70);
    cairo_curve_to(cr, 78, 70, 70, 72, 68, 90);
    cairo_line_to(cr, 88, 70);
    cairo_close_path(cr);
    fillOutlined(cr, kOrange, 4);
}

void macroGear(cairo_t* cr)
{
    const int teeth = 8;
    cairo_new_sub_path(cr);
    for (int i = 0; i < teeth * 4; ++i) {
        double a = i * 2 * kPi / (teeth * 4);
        double r = (i % 4 == 1 || i % 4 == 2) ? 42 : 32;
        double x = 50 + r * std::cos(a), y = 50 + r * std::sin(a);
        if (i == 0)
            cairo_move_to(cr, x, y);
        else
            cairo_line_to(cr, x, y);
    }
    cairo_close_path(cr);
    fillOutlined(cr, kTeal, 5);
    circle(cr, 50, 50, 12);
    fillOutlined(cr, kWhite, 5);
}

void movieClapper(cairo_t* cr)
{
    roundedRectangle(cr, 14, 40, 72, 48, 5);
    fillOutlined(cr, kOutline, 4);
    cairo_save(cr);
    cairo_translate(cr, 14, 36);
    cairo_rotate(cr, -0.3);
    cairo_rectangle(cr, 0, -14, 72, 14);
    cairo_save(cr);
    cairo_clip_preserve(cr);
    setColour(cr, kWhite);
    cairo_fill_preserve(cr);
    for (int i = 0; i < 4; ++i) {
        cairo_move_to(cr, 4 + 18 * i, -14);
        cairo_line_to(cr, 14 + 18 * i, -14);
        cairo_line_to(cr, 6 + 18 * i, 0);
        cairo_line_to(cr, -4 + 18 * i, 0);
        cairo_close_path(cr);
    }
    setColour(cr, kOutline);
    cairo_fill(cr);
    cairo_restore(cr);
    cairo_rectangle(cr, 0, -14, 72, 14);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 4);
    cairo_stroke(cr);
    cairo_restore(cr);
    circle(cr, 50, 64, 12);
    fillOutlined(cr, kRed, 3);
    cairo_move_to(cr, 46, 57);
    cairo_line_to(cr, 57, 64);
    cairo_line_to(cr, 46, 71);
    cairo_close_path(cr);
    setColour(cr, kWhite);
    cairo_fill(cr);
}

void framedPicture(cairo_t* cr)
{
    roundedRectangle(cr, 10, 18, 80, 64, 4);
    fillOutlined(cr, kSky, 5);
    cairo_save(cr);
    cairo_rectangle(cr, 13, 21, 74, 58);
    cairo_clip(cr);
    circle(cr, 68, 38, 9);
    fillOutlined(cr, kYellow, 3);
    cairo_move_to(cr, 8, 84);
    cairo_line_to(cr, 36, 46);
    cairo_line_to(cr, 56, 70);
    cairo_line_to(cr, 68, 58);
    cairo_line_to(cr, 94, 84);
    cairo_close_path(cr);
    fillOutlined(cr, kGreen, 4);
    cairo_restore(cr);
    roundedRectangle(cr, 10, 18, 80, 64, 4);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 5);
    cairo_stroke(cr);
}

void actor(cairo_t* cr)
{
    ellipse(cr, 36, 88, 12, 7);
    ellipse(cr, 64, 88, 12, 7);
    fillOutlined(cr, kOrange, 4);
    circle(cr, 50, 52, 34);
    fillOutlined(cr, kOrange, 5);
    circle(cr, 38, 44, 9);
    circle(cr, 62, 44, 9);
    fillOutlined(cr, kWhite, 3);
    circle(cr, 40, 46, 4);
    circle(cr, 64, 46, 4);
    setColour(cr, kOutline);
    cairo_fill(cr);
    cairo_arc(cr, 50, 58, 14, 0.2 * kPi, 0.8 * kPi);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 4);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_stroke(cr);
    circle(cr, 28, 60, 5);
    circle(cr, 72, 60, 5);
    setColour(cr, kPink);
    cairo_fill(cr);
}

void actorDoing(cairo_t* cr, int32_t what)
{
    cairo_save(cr);
    cairo_scale(cr, 0.78, 0.78);
    actor(cr);
    cairo_restore(cr);
    switch (what) {
    case 1:
        badge(cr, kGreen);
        whiteArrow(cr, 88, 74, 58, 74);
        break;
    case 2:
        badge(cr, kRed);
        whiteArrow(cr, 60, 74, 90, 74);
        break;
    case 3:
        badge(cr, kBlue);
        arrowPath(cr, 74, 74, 74, 56, 5, 10);
        arrowPath(cr, 74, 74, 74, 92, 5, 10);
        arrowPath(cr, 74, 74, 56, 74, 5, 10);
        arrowPath(cr, 74, 74, 92, 74, 5, 10);
        setColour(cr, kWhite);
        cairo_fill(cr);
        break;
    case 4:
        badge(cr, kOrange);
        cairo_move_to(cr, 60, 86);
        cairo_curve_to(cr, 62, 58, 84, 58, 86, 76);
        setColour(cr, kWhite);
        cairo_set_line_width(cr, 6);
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
        cairo_stroke(cr);
        arrowPath(cr, 84, 70, 88, 88, 1, 10);
        cairo_fill(cr);
        break;
    case 5:
        badge(cr, kPurple);
        cairo_rectangle(cr, 58, 58, 20, 20);
        fillOutlined(cr, kYellow, 3);
        cairo_rectangle(cr, 70, 70, 20, 20);
        fillOutlined(cr, kWhite, 3);
        break;
    case 6:
        badge(cr, kTeal);
        cairo_arc(cr, 74, 74, 11, 0.1 * kPi, 1.7 * kPi);
        setColour(cr, kWhite);
        cairo_set_line_width(cr, 6);
        cairo_stroke(cr);
        arrowPath(cr, 78, 56, 90, 66, 1, 11);
        cairo_fill(cr);
        break;
    default:
        cairo_move_to(cr, 56, 92);
        cairo_curve_to(cr, 70, 94, 96, 84, 92, 56);
        cairo_line_to(cr, 90, 40);
        setColour(cr, kBlue);
        cairo_set_line_width(cr, 7);
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
        double dashes[] = { 0.1, 12 };
        cairo_set_dash(cr, dashes, 2, 0);
        cairo_stroke(cr);
        cairo_set_dash(cr, nullptr, 0, 0);
        arrowPath(cr, 91, 48, 90, 30, 1, 13);
        fillOutlined(cr, kBlue, 2);
        break;
    }
}

void allKinds(cairo_t* cr)
{
    const Rgb colours[] = { kRed, kYellow, kGreen, kBlue };
    for (int i = 0; i < 4; ++i) {
        int column = i % 2;
        int row = i / 2;
        roundedRectangle(cr, 10 + 44 * column, 10 + 44 * row, 36, 36, 8);
        fillOutlined(cr, colours[i], 5);
    }
}

void eraser(cairo_t* cr)
{
    cairo_move_to(cr, 10, 86);
    cairo_line_to(cr, 90, 86);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 5);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    double dashes[] = { 8, 10 };
    cairo_set_dash(cr, dashes, 2, 0);
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0);
    cairo_save(cr);
    cairo_translate(cr, 52, 46);
    cairo_rotate(cr, -kPi / 5);
    roundedRectangle(cr, -34, -17, 68, 34, 7);
    fillOutlined(cr, kPink, 5);
    roundedRectangle(cr, -34, -17, 26, 34, 7);
    fillOutlined(cr, kSky, 5);
    cairo_restore(cr);
}

void pointingHand(cairo_t* cr)
{
    // The finger, then the fist below it.
    roundedRectangle(cr, 22, 2, 16, 50, 8);
    fillOutlined(cr, kWhite, 5);
    roundedRectangle(cr, 18, 40, 62, 52, 16);
    fillOutlined(cr, kWhite, 5);
    for (int i = 0; i < 2; ++i)
        line(cr, 48 + 14 * i, 42, 48 + 14 * i, 60);
    line(cr, 22, 40, 38, 40);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 4);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_stroke(cr);
}

void storyBook(cairo_t* cr)
{
    // The rainbow behind the book.
    const Rgb bands[] = { kRed, kOrange, kYellow, kGreen, kBlue, kPurple };
    for (int i = 0; i < 6; ++i) {
        cairo_new_sub_path(cr);
        cairo_arc(cr, 50, 60, 44 - 5 * i, kPi, 2 * kPi);
        setColour(cr, bands[i]);
        cairo_set_line_width(cr, 5.5);
        cairo_stroke(cr);
    }
    // The two pages of the open book.
    cairo_move_to(cr, 50, 50);
    cairo_curve_to(cr, 38, 42, 20, 42, 8, 48);
    cairo_line_to(cr, 8, 88);
    cairo_curve_to(cr, 20, 82, 38, 82, 50, 90);
    cairo_curve_to(cr, 62, 82, 80, 82, 92, 88);
    cairo_line_to(cr, 92, 48);
    cairo_curve_to(cr, 80, 42, 62, 42, 50, 50);
    cairo_close_path(cr);
    fillOutlined(cr, kWhite, 5);
    line(cr, 50, 50, 50, 90);
    cairo_move_to(cr, 16, 58);
    cairo_curve_to(cr, 24, 55, 34, 55, 42, 60);
    cairo_move_to(cr, 16, 68);
    cairo_curve_to(cr, 24, 65, 34, 65, 42, 70);
    setColour(cr, kOutline);
    cairo_set_line_width(cr, 3.5);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_stroke(cr);
    // A little painted sun on the right page.
    circle(cr, 71, 66, 9);
    fillOutlined(cr, kYellow, 3);
    // The star over it all.
    cairo_new_sub_path(cr);
    for (int i = 0; i < 10; ++i) {
        double a = -kPi / 2 + i * kPi / 5;
        double r = (i % 2 == 0) ? 14 : 6;
        double x = 80 + r * std::cos(a), y = 18 + r * std::sin(a);
        if (i == 0)
            cairo_move_to(cr, x, y);
        else
            cairo_line_to(cr, x, y);
    }
    cairo_close_path(cr);
    fillOutlined(cr, kYellow, 3.5);
}

} // namespace ArtGlyphs
