#include "graphics/native/KNativeText.h"

#include "graphics/KFont.h"
#include "kernel/KString.h"

#include <cairo.h>
#include <cmath>
#include <fontconfig/fontconfig.h>
#include <glib.h>
#include <pango/pangocairo.h>
#include <vector>

namespace {

constexpr double kScreenResolution = 96.0;

PangoFontDescription* description(const KNativeFont* font)
{
    return reinterpret_cast<PangoFontDescription*>(const_cast<KNativeFont*>(font));
}

// A context for measuring, not tied to any surface.
PangoContext* measuringContext()
{
    static PangoContext* context = nullptr;
    if (!context) {
        context = pango_font_map_create_context(pango_cairo_font_map_get_default());
        pango_cairo_context_set_resolution(context, kScreenResolution);
    }
    return context;
}

void applyFace(PangoLayout* layout, int32_t face)
{
    if (!(face & (KFont::Underline | KFont::Strikeout)))
        return;
    PangoAttrList* attributes = pango_attr_list_new();
    if (face & KFont::Underline)
        pango_attr_list_insert(attributes, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    if (face & KFont::Strikeout)
        pango_attr_list_insert(attributes, pango_attr_strikethrough_new(TRUE));
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
}

void fillLayout(PangoLayout* layout, const std::string& utf8, const KNativeFont* font, int32_t face)
{
    if (font)
        pango_layout_set_font_description(layout, description(font));
    pango_layout_set_text(layout, utf8.data(), int(utf8.size()));
    applyFace(layout, face);
}

} // namespace

KNativeFont* kCreateNativeFont(const std::string& familyUtf8, double points, int32_t face)
{
    PangoFontDescription* d = pango_font_description_new();
    pango_font_description_set_family(d, familyUtf8.empty() ? "Sans" : familyUtf8.c_str());
    pango_font_description_set_size(d, int(std::lround(points * PANGO_SCALE)));
    pango_font_description_set_weight(d, (face & KFont::Bold) ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(d, (face & KFont::Italic) ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    if (face & KFont::Condense)
        pango_font_description_set_stretch(d, PANGO_STRETCH_CONDENSED);
    else if (face & KFont::Extend)
        pango_font_description_set_stretch(d, PANGO_STRETCH_EXPANDED);
    return reinterpret_cast<KNativeFont*>(d);
}

namespace {

// The family of the font that fontconfig gives for the name.
std::string resolvedFamily(const char* family)
{
    PangoFontDescription* wanted = pango_font_description_new();
    pango_font_description_set_family(wanted, family);
    pango_font_description_set_size(wanted, 12 * PANGO_SCALE);
    PangoFont* font = pango_font_map_load_font(pango_cairo_font_map_get_default(), measuringContext(), wanted);
    pango_font_description_free(wanted);
    if (!font)
        return {};
    PangoFontDescription* found = pango_font_describe(font);
    const char* name = pango_font_description_get_family(found);
    std::string result = name ? name : "";
    pango_font_description_free(found);
    g_object_unref(font);
    return result;
}

} // namespace

bool kFontFamilyResolves(const std::string& familyUtf8)
{
    if (familyUtf8.empty())
        return false;
    static const std::string fallback = resolvedFamily("TaleLoom No Such Family");
    std::string found = resolvedFamily(familyUtf8.c_str());
    if (found.empty())
        return false;
    return found != fallback || g_ascii_strcasecmp(found.c_str(), familyUtf8.c_str()) == 0;
}

void kDisposeNativeFont(KNativeFont* font)
{
    if (font)
        pango_font_description_free(description(font));
}

PangoLayout* kCreateTextLayout(cairo_t* context, const std::string& utf8, const KNativeFont* font, int32_t face)
{
    PangoLayout* layout = pango_cairo_create_layout(context);
    fillLayout(layout, utf8, font, face);
    return layout;
}

KTextMetrics kMeasureFont(const KNativeFont* font)
{
    KTextMetrics result;
    PangoFontMetrics* metrics
        = pango_context_get_metrics(measuringContext(), font ? description(font) : nullptr, nullptr);
    result.ascent = PANGO_PIXELS_CEIL(pango_font_metrics_get_ascent(metrics));
    result.descent = PANGO_PIXELS_CEIL(pango_font_metrics_get_descent(metrics));
    int height = pango_font_metrics_get_height(metrics);
    result.lineHeight = height > 0 ? PANGO_PIXELS_CEIL(height) : result.ascent + result.descent;
    pango_font_metrics_unref(metrics);
    return result;
}

void kMeasureText(const KNativeFont* font, int32_t face, const std::string& utf8, int32_t& width, int32_t& height)
{
    PangoLayout* layout = pango_layout_new(measuringContext());
    fillLayout(layout, utf8, font, face);
    int w = 0, h = 0;
    pango_layout_get_pixel_size(layout, &w, &h);
    g_object_unref(layout);
    width = w;
    height = h;
}

namespace {

// The 256 characters of one set as UTF-8; bytes the converter refuses
// become "?".
std::vector<std::string> characterTable(const char* set)
{
    std::vector<std::string> table(256);
    for (int c = 0; c < 256; ++c) {
        char byte = char(c);
        gsize written = 0;
        gchar* converted = g_convert(&byte, 1, "UTF-8", set, nullptr, &written, nullptr);
        // One code point, and none of the C1 controls that a converter may
        // give for a byte the set leaves undefined.
        bool single = converted && written > 0 && g_utf8_strlen(converted, gssize(written)) == 1;
        gunichar point = single ? g_utf8_get_char_validated(converted, gssize(written)) : 0;
        if (single && point < 0x110000 && (point < 0x80 || point >= 0xA0))
            table[size_t(c)].assign(converted, written);
        else
            table[size_t(c)] = c < 0x80 ? std::string(1, byte) : std::string("?");
        g_free(converted);
    }
    return table;
}

} // namespace

const std::string& kGraphicsCharToUtf8(unsigned char c, int32_t charSet)
{
    static const std::vector<std::string> windows = characterTable("WINDOWS-1252");
    static const std::vector<std::string> macintosh = characterTable("MACINTOSH");
    return (charSet == KString::MacintoshSet ? macintosh : windows)[c];
}

std::string kGraphicsTextToUtf8(const KString& text)
{
    if (text.isEmpty())
        return {};
    gsize written = 0;
    gchar* converted = g_convert_with_fallback(
        text.getText(), text.getLength(), "UTF-8",
        text.getCharSet() == KString::MacintoshSet ? "MACINTOSH" : "WINDOWS-1252", "?", nullptr, &written, nullptr);
    if (!converted)
        return std::string(text.getText(), size_t(text.getLength()));
    std::string result(converted, written);
    g_free(converted);
    return result;
}

KFontFile kFontFileFor(const std::string& familyUtf8, int32_t face)
{
    FcPattern* wanted = FcPatternCreate();
    FcPatternAddString(wanted, FC_FAMILY,
                       reinterpret_cast<const FcChar8*>(familyUtf8.empty() ? "Sans" : familyUtf8.c_str()));
    FcPatternAddInteger(wanted, FC_WEIGHT, (face & KFont::Bold) ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(wanted, FC_SLANT, (face & KFont::Italic) ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    FcPattern* found = FcFontMatch(nullptr, wanted, &result);
    FcPatternDestroy(wanted);
    KFontFile file;
    if (!found)
        return file;
    FcChar8* path = nullptr;
    FcChar8* family = nullptr;
    if (FcPatternGetString(found, FC_FILE, 0, &path) == FcResultMatch && path)
        file.path = reinterpret_cast<const char*>(path);
    if (FcPatternGetString(found, FC_FAMILY, 0, &family) == FcResultMatch && family)
        file.family = reinterpret_cast<const char*>(family);
    FcPatternDestroy(found);
    return file;
}
