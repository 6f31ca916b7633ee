#pragma once

#include "graphics/KGraphicsForward.h"

#include <cstdint>
#include <string>

typedef struct _cairo cairo_t;
typedef struct _PangoLayout PangoLayout;

// The pango side of fonts and text. A KNativeFont is a pango font
// description; family names such as "Arial" resolve through fontconfig.

KNativeFont* kCreateNativeFont(const std::string& familyUtf8, double points, int32_t face);
// Whether fontconfig finds the family or a stand-in made for it (Arial's
// metric twin), rather than the fallback every unknown name gets.
bool kFontFamilyResolves(const std::string& familyUtf8);
void kDisposeNativeFont(KNativeFont* font);
// The file of the font that fontconfig draws the family in with the face's
// weight and slant, and the family's name there; empty when none is found.
struct KFontFile {
    std::string path;
    std::string family;
};
KFontFile kFontFileFor(const std::string& familyUtf8, int32_t face);

// A layout of the text in the font, on the context; styles of `face` that
// pango draws as attributes (underline) are applied here. The caller unrefs.
PangoLayout* kCreateTextLayout(cairo_t* context, const std::string& utf8, const KNativeFont* font, int32_t face);

struct KTextMetrics {
    int32_t ascent = 0;
    int32_t descent = 0;
    int32_t lineHeight = 0;
};

// Measures at screen resolution (96 dots per inch), in whole pixels.
KTextMetrics kMeasureFont(const KNativeFont* font);
void kMeasureText(const KNativeFont* font, int32_t face, const std::string& utf8, int32_t& width, int32_t& height);

// 8-bit text in its character set (the Windows set or the Macintosh set) as
// UTF-8 for pango.
std::string kGraphicsTextToUtf8(const KString& text);
// One character of such a set as UTF-8 (one code point; "?" for a byte the
// set leaves undefined), from a table made once, so that text can be mapped
// character by character.
const std::string& kGraphicsCharToUtf8(unsigned char c, int32_t charSet);
