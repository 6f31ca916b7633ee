#include "tools/make-art/ArtPictures.h"

#include "tools/make-art/ArtGlyphs.h"

#include <cairo.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <set>

using namespace ArtGlyphs;

namespace ArtPictures {

namespace {

using Draw = std::function<void(cairo_t*)>;

// Pixels at or above this coverage belong to a masked picture's shape.
constexpr uint32_t kShapeCoverage = 128;

// The drawing as premultiplied ARGB32 pixels on a transparent ground.
std::vector<uint32_t> paint(int32_t width, int32_t height, const Draw& draw)
{
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t* cr = cairo_create(surface);
    draw(cr);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    std::vector<uint32_t> pixels(size_t(width) * size_t(height));
    const unsigned char* data = cairo_image_surface_get_data(surface);
    int stride = cairo_image_surface_get_stride(surface);
    for (int32_t y = 0; y < height; ++y)
        std::memcpy(&pixels[size_t(y) * size_t(width)], data + size_t(y) * size_t(stride), size_t(width) * 4);
    cairo_surface_destroy(surface);
    return pixels;
}

uint32_t channel(uint32_t pixel, int shift) { return (pixel >> shift) & 0xFF; }

Picture opaque(const std::string& path, int32_t width, int32_t height, const Draw& draw)
{
    Picture picture { path, width, height, false, paint(width, height, draw) };
    for (uint32_t& pixel : picture.pixels) {
        uint32_t clear = 255 - channel(pixel, 24);
        uint32_t rgb = 0;
        for (int shift : { 16, 8, 0 })
            rgb |= (channel(pixel, shift) + clear) << shift;
        pixel = rgb;
    }
    return picture;
}

// The shape's own colours, white around it: what masked drawing needs.
Picture shapeImage(const std::string& path, int32_t width, int32_t height, const std::vector<uint32_t>& argb)
{
    Picture picture { path, width, height, false, argb };
    for (uint32_t& pixel : picture.pixels) {
        uint32_t a = channel(pixel, 24);
        if (a < kShapeCoverage) {
            pixel = 0xFFFFFF;
            continue;
        }
        uint32_t rgb = 0;
        for (int shift : { 16, 8, 0 })
            rgb |= std::min<uint32_t>(255, (channel(pixel, shift) * 255 + a / 2) / a) << shift;
        pixel = rgb;
    }
    return picture;
}

// Black where the shape is, white where the target shows through.
Picture shapeMask(const std::string& path, int32_t width, int32_t height, const std::vector<uint32_t>& argb)
{
    Picture picture { path, width, height, false, argb };
    for (uint32_t& pixel : picture.pixels)
        pixel = channel(pixel, 24) >= kShapeCoverage ? 0x000000 : 0xFFFFFF;
    return picture;
}

void addMasked(std::vector<Picture>& out, const std::string& name, int32_t width, int32_t height, const Draw& draw)
{
    std::vector<uint32_t> argb = paint(width, height, draw);
    out.push_back(shapeImage("art/" + name + ".png", width, height, argb));
    out.push_back(shapeMask("art/" + name + "-mask.png", width, height, argb));
}

void addImage(std::vector<Picture>& out, const std::string& name, int32_t width, int32_t height, const Draw& draw)
{
    out.push_back(shapeImage("art/" + name + ".png", width, height, paint(width, height, draw)));
}

void addMask(std::vector<Picture>& out, const std::string& name, int32_t width, int32_t height, const Draw& draw)
{
    out.push_back(shapeMask("art/" + name + ".png", width, height, paint(width, height, draw)));
}

// Draws a glyph of the 100 box into the square at (x, y) of side `size`.
void inBox(cairo_t* cr, double x, double y, double size, const std::function<void(cairo_t*)>& glyph)
{
    cairo_save(cr);
    cairo_translate(cr, x, y);
    cairo_scale(cr, size / 100.0, size / 100.0);
    glyph(cr);
    cairo_restore(cr);
}

// --- The element kinds ----------------------------------------------------

// The glyphs by the index of the modify button's indicator: 0 an empty tape,
// 1 to 10 the element kinds, 11 to 16 the actor actions, 17 actor motion.
struct KindGlyph {
    const char* name;
    std::function<void(cairo_t*)> draw;
};

std::vector<KindGlyph> indicatorGlyphs()
{
    std::vector<KindGlyph> glyphs = {
        { "empty", blankPage },     { "wait", waitForClick },  { "stroke", brushStroke },  { "text", letterText },
        { "speech", speechBubble }, { "pause", pauseClock },   { "sound", musicNotes },    { "transition", pageTurn },
        { "macro", macroGear },     { "movie", movieClapper }, { "image", framedPicture },
    };
    const char* actions[]
        = { "actor-enter", "actor-exit", "actor-move", "actor-jump", "actor-order", "actor-movement", "actor-motion" };
    for (int32_t what = 1; what <= 7; ++what)
        glyphs.push_back({ actions[what - 1], [what](cairo_t* cr) { actorDoing(cr, what); } });
    return glyphs;
}

void roundBadge(cairo_t* cr, double size)
{
    circle(cr, size / 2, size / 2, size / 2 - 1);
    fillOutlined(cr, kWhite, size / 16);
}

void squareBadge(cairo_t* cr, double size)
{
    roundedRectangle(cr, 1, 1, size - 2, size - 2, size / 5);
    fillOutlined(cr, kWhite, size / 16);
}

// The pictures that stand for elements without a place on the page (by
// element type 1 to 12, one round mask), the modify button's indicator (18
// pictures, one square mask) and the navigation filter (12 plain icons).
void addKinds(std::vector<Picture>& out)
{
    std::vector<KindGlyph> glyphs = indicatorGlyphs();
    const int32_t kBadge = 32;
    addMask(out, "kind-mask", kBadge, kBadge, [&](cairo_t* cr) { roundBadge(cr, kBadge); });
    // Types 1 to 10 are the indicator's 1 to 10; 11 and 12 the actor's two.
    for (int32_t type = 1; type <= 12; ++type) {
        const KindGlyph& glyph = glyphs[type <= 10 ? type : (type == 11 ? 11 : 17)];
        std::string name = type == 11 ? "actor-action" : glyph.name;
        addImage(out, "kind-" + name, kBadge, kBadge, [&](cairo_t* cr) {
            roundBadge(cr, kBadge);
            circle(cr, kBadge / 2.0, kBadge / 2.0, kBadge / 2.0 - 3);
            cairo_clip(cr);
            inBox(cr, 6, 6, kBadge - 12, type == 11 ? [](cairo_t* c) { actor(c); } : glyph.draw);
        });
    }
    const int32_t kIndicator = 40;
    addMask(out, "indicator-mask", kIndicator, kIndicator, [&](cairo_t* cr) { squareBadge(cr, kIndicator); });
    for (const KindGlyph& glyph : glyphs) {
        addImage(out, std::string("indicator-") + glyph.name, kIndicator, kIndicator, [&](cairo_t* cr) {
            squareBadge(cr, kIndicator);
            inBox(cr, 5, 5, kIndicator - 10, glyph.draw);
        });
    }
    const int32_t kFilter = 20;
    std::vector<KindGlyph> filters = { { "all", allKinds },        { "stroke", brushStroke },  { "text", letterText },
                                       { "image", framedPicture }, { "movie", movieClapper },  { "sound", musicNotes },
                                       { "speech", speechBubble }, { "transition", pageTurn }, { "wait", waitForClick },
                                       { "pause", pauseClock },    { "actor", actor },         { "macro", macroGear } };
    for (const KindGlyph& glyph : filters)
        out.push_back(opaque(std::string("art/filter-") + glyph.name + ".png", kFilter, kFilter,
                             [&](cairo_t* cr) { inBox(cr, 0, 0, kFilter, glyph.draw); }));
}

// --- The palette buttons --------------------------------------------------

struct Button {
    const char* name;
    int32_t size;
    Rgb base;
    // A white middle for a coloured glyph; without it the glyph is white.
    bool whiteMiddle;
    std::function<void(cairo_t*)> glyph;
};

void playTriangle(cairo_t* cr)
{
    cairo_move_to(cr, 30, 14);
    cairo_line_to(cr, 84, 50);
    cairo_line_to(cr, 30, 86);
    cairo_close_path(cr);
    setColour(cr, kWhite);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(cr, 8);
    cairo_fill_preserve(cr);
    cairo_stroke(cr);
}

void stopSquare(cairo_t* cr)
{
    roundedRectangle(cr, 18, 18, 64, 64, 10);
    setColour(cr, kWhite);
    cairo_fill(cr);
}

// A white arrow to the left or right, with a bar at its tip for the ends.
std::function<void(cairo_t*)> stepArrow(bool right, bool bar)
{
    return [right, bar](cairo_t* cr) {
        cairo_save(cr);
        if (right) {
            cairo_translate(cr, 100, 0);
            cairo_scale(cr, -1, 1);
        }
        double tip = bar ? 24 : 10;
        cairo_move_to(cr, tip, 50);
        cairo_line_to(cr, tip + 50, 14);
        cairo_line_to(cr, tip + 50, 86);
        cairo_close_path(cr);
        if (bar)
            cairo_rectangle(cr, 8, 14, 12, 72);
        setColour(cr, kWhite);
        cairo_fill(cr);
        cairo_restore(cr);
    };
}

void upDownArrows(cairo_t* cr)
{
    arrowPath(cr, 50, 48, 50, 4, 18, 30);
    arrowPath(cr, 50, 52, 50, 96, 18, 30);
    setColour(cr, kWhite);
    cairo_fill(cr);
}

std::vector<Button> toolButtons()
{
    // In the order of the palette's controls, from the size control on.
    return {
        { "size", 62, kGrey, true, nullptr },
        { "play", 62, kGreen, false, playTriangle },
        { "stop", 62, kRed, false, stopSquare },
        { "erase", 62, kOrange, true, eraser },
        { "back", 32, kBlue, false, stepArrow(false, false) },
        { "forward", 32, kBlue, false, stepArrow(true, false) },
        { "beginning", 32, kBlue, false, stepArrow(false, true) },
        { "end", 32, kBlue, false, stepArrow(true, true) },
        { "modify", 62, kYellow, true, nullptr },
        { "updown", 62, kPurple, false, upDownArrows },
        { "text", 62, kBlue, true, letterText },
        { "sound", 62, kPurple, true, musicNotes },
        { "speech", 62, kTeal, true, speechBubble },
        { "image", 62, kGreen, true, framedPicture },
        { "transition", 62, kOrange, true, pageTurn },
        { "movie", 62, kRed, true, movieClapper },
        { "pause", 62, kYellow, true, pauseClock },
        { "wait", 62, kPink, true, waitForClick },
    };
}

void buttonShape(cairo_t* cr, const Button& button)
{
    double s = button.size;
    // The modify button is square: the element's picture stands in it.
    if (std::strcmp(button.name, "modify") == 0)
        roundedRectangle(cr, 1.5, 1.5, s - 3, s - 3, s / 5);
    else
        circle(cr, s / 2, s / 2, s / 2 - 1.5);
}

void drawButton(cairo_t* cr, const Button& button, bool pushed)
{
    double s = button.size;
    buttonShape(cr, button);
    fillOutlined(cr, pushed ? shade(button.base, 0.78) : button.base, s / 20);
    // Pushed, the face sinks: the middle moves down and right by a little.
    double shift = pushed ? s / 40 : 0;
    cairo_translate(cr, shift, shift);
    if (button.whiteMiddle) {
        if (std::strcmp(button.name, "modify") == 0)
            roundedRectangle(cr, s * 0.15, s * 0.15, s * 0.7, s * 0.7, s / 8);
        else
            circle(cr, s / 2, s / 2, s * 0.37);
        setColour(cr, pushed ? shade(kWhite, 0.9) : kWhite);
        cairo_fill(cr);
    }
    if (button.glyph) {
        double box = button.whiteMiddle ? s * 0.58 : s * 0.5;
        inBox(cr, (s - box) / 2, (s - box) / 2, box, button.glyph);
    }
}

void addToolButtons(std::vector<Picture>& out)
{
    for (const Button& button : toolButtons()) {
        std::string name = std::string("tool-") + button.name;
        addMask(out, name + "-mask", button.size, button.size, [&](cairo_t* cr) {
            buttonShape(cr, button);
            fillOutlined(cr, kWhite, button.size / 20.0);
        });
        addImage(out, name, button.size, button.size, [&](cairo_t* cr) { drawButton(cr, button, false); });
        addImage(out, name + "-pushed", button.size, button.size, [&](cairo_t* cr) { drawButton(cr, button, true); });
    }
    // The colour buttons' rounded square, filled with each colour in turn.
    addMasked(out, "colour-button", 32, 32, [](cairo_t* cr) {
        roundedRectangle(cr, 1, 1, 30, 30, 8);
        fillOutlined(cr, kWhite, 2);
    });
}

// --- Navigation, markers, cursor, start-up ----------------------------------

void addNavigation(std::vector<Picture>& out)
{
    struct Step {
        const char* name;
        int32_t width;
        int32_t height;
        bool right;
        bool bar;
    };
    for (const Step& step : { Step { "nav-back", 52, 36, false, false }, Step { "nav-forward", 52, 36, true, false },
                              Step { "nav-beginning", 20, 20, false, true }, Step { "nav-end", 20, 20, true, true } }) {
        addMasked(out, step.name, step.width, step.height, [&](cairo_t* cr) {
            roundedRectangle(cr, 1, 1, step.width - 2, step.height - 2, step.height / 3.0);
            fillOutlined(cr, kBlue, step.height / 14.0);
            double box = step.height * 0.7;
            inBox(cr, (step.width - box) / 2, (step.height - box) / 2, box, stepArrow(step.right, step.bar));
        });
    }
}

void addMarkers(std::vector<Picture>& out)
{
    const int32_t kSize = 64;
    addMask(out, "marker-mask", kSize, kSize, [](cairo_t* cr) {
        circle(cr, kSize / 2.0, kSize / 2.0, kSize / 2.0 - 2);
        fillOutlined(cr, kWhite, 4);
    });
    addImage(out, "marker-pause", kSize, kSize, [](cairo_t* cr) {
        circle(cr, kSize / 2.0, kSize / 2.0, kSize / 2.0 - 2);
        fillOutlined(cr, kOrange, 4);
        roundedRectangle(cr, 20, 16, 9, 32, 3);
        roundedRectangle(cr, 35, 16, 9, 32, 3);
        setColour(cr, kWhite);
        cairo_fill(cr);
    });
    addImage(out, "marker-wait", kSize, kSize, [](cairo_t* cr) {
        circle(cr, kSize / 2.0, kSize / 2.0, kSize / 2.0 - 2);
        fillOutlined(cr, kBlue, 4);
        circle(cr, kSize / 2.0, kSize / 2.0, kSize / 2.0 - 9);
        setColour(cr, kWhite);
        cairo_fill(cr);
        inBox(cr, 14, 12, 38, waitForClick);
    });
}

void addPictures(std::vector<Picture>& out)
{
    addMasked(out, "startup", 128, 128, [](cairo_t* cr) { inBox(cr, 0, 0, 128, storyBook); });
    addMasked(out, "cursor-hand", 32, 32, [](cairo_t* cr) { inBox(cr, 1, 1, 30, pointingHand); });
    // The actor editor's backgrounds: two quiet tiles.
    out.push_back(opaque("art/pattern-checks.png", 16, 16, [](cairo_t* cr) {
        setColour(cr, colour(0xE9EDF5));
        cairo_rectangle(cr, 0, 0, 8, 8);
        cairo_rectangle(cr, 8, 8, 8, 8);
        cairo_fill(cr);
    }));
    out.push_back(opaque("art/pattern-dots.png", 16, 16, [](cairo_t* cr) {
        setColour(cr, colour(0xEAF6FF));
        cairo_paint(cr);
        circle(cr, 4, 4, 2.5);
        circle(cr, 12, 12, 2.5);
        setColour(cr, colour(0xC6E2F7));
        cairo_fill(cr);
    }));
}

// The desktop icon in the sizes of the hicolor theme, with real alpha.
void addIcons(std::vector<Picture>& out)
{
    for (int32_t size : { 16, 24, 32, 48, 64, 128, 256 }) {
        std::string folder = std::to_string(size) + "x" + std::to_string(size);
        out.push_back({ "icons/hicolor/" + folder + "/apps/taleloom.png", size, size, true,
                        paint(size, size, [size](cairo_t* cr) { inBox(cr, 0, 0, size, storyBook); }) });
    }
}

} // namespace

std::vector<Picture> makeAll()
{
    std::vector<Picture> out;
    addPictures(out);
    addToolButtons(out);
    addKinds(out);
    addNavigation(out);
    addMarkers(out);
    addIcons(out);
    return out;
}

bool write(const Picture& picture, const std::string& fileName)
{
    cairo_format_t format = picture.alpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
    cairo_surface_t* surface = cairo_image_surface_create(format, picture.width, picture.height);
    cairo_surface_flush(surface);
    unsigned char* data = cairo_image_surface_get_data(surface);
    int stride = cairo_image_surface_get_stride(surface);
    for (int32_t y = 0; y < picture.height; ++y)
        std::memcpy(data + size_t(y) * size_t(stride), &picture.pixels[size_t(y) * size_t(picture.width)],
                    size_t(picture.width) * 4);
    cairo_surface_mark_dirty(surface);
    bool written = cairo_surface_write_to_png(surface, fileName.c_str()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return written;
}

bool read(const std::string& fileName, Picture& out)
{
    cairo_surface_t* surface = cairo_image_surface_create_from_png(fileName.c_str());
    bool ok = cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
    if (ok) {
        cairo_surface_flush(surface);
        out.width = cairo_image_surface_get_width(surface);
        out.height = cairo_image_surface_get_height(surface);
        out.alpha = cairo_image_surface_get_format(surface) == CAIRO_FORMAT_ARGB32;
        out.pixels.assign(size_t(out.width) * size_t(out.height), 0);
        const unsigned char* data = cairo_image_surface_get_data(surface);
        int stride = cairo_image_surface_get_stride(surface);
        for (int32_t y = 0; y < out.height; ++y)
            std::memcpy(&out.pixels[size_t(y) * size_t(out.width)], data + size_t(y) * size_t(stride),
                        size_t(out.width) * 4);
        if (!out.alpha) {
            for (uint32_t& pixel : out.pixels)
                pixel &= 0xFFFFFF;
        }
    }
    cairo_surface_destroy(surface);
    return ok;
}

bool writeAll(const std::string& dataFolder, std::string& reason)
{
    namespace fs = std::filesystem;
    std::set<std::string> written;
    for (const Picture& picture : makeAll()) {
        fs::path file = fs::path(dataFolder) / picture.path;
        std::error_code failure;
        fs::create_directories(file.parent_path(), failure);
        if (failure || !write(picture, file.string())) {
            reason = file.string() + ": cannot write the picture";
            return false;
        }
        written.insert(file.lexically_normal().string());
    }
    std::error_code failure;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(dataFolder) / "art", failure)) {
        fs::path file = entry.path().lexically_normal();
        if (file.extension() == ".png" && !written.count(file.string()))
            fs::remove(file, failure);
    }
    return true;
}

} // namespace ArtPictures
