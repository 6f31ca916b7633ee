#include "tools/taleloom-tool/EpubText.h"

#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KTextBlock.h"
#include "graphics/KTextBlockObject.h"
#include "graphics/KTextStyle.h"
#include "graphics/native/KNativeText.h"
#include "kernel/KTextCodec.h"
#include "tape/StylusText.h"
#include "tools/taleloom-tool/EpubPackage.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace {

std::string hexColour(const KColor& colour)
{
    char text[8];
    std::snprintf(text, sizeof text, "#%06x", unsigned(colour.getNative() & 0xffffff));
    return text;
}

// Control characters have no place in XML.
std::string escapeXml(const std::string& text)
{
    std::string clean = text;
    std::replace_if(
        clean.begin(), clean.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; }, ' ');
    return epubEscape(clean);
}

bool isBreak(char c) { return c == '\r' || c == '\n'; }
bool isSpace(char c) { return c == ' ' || c == '\t' || isBreak(c); }

// For each character, the start of the word it belongs to, or -1 between
// words. The lit words come first; the rest is cut at spaces.
std::vector<int32_t> wordOwners(const std::string& plain, const std::vector<std::pair<int32_t, int32_t>>& lit)
{
    int32_t length = int32_t(plain.size());
    std::vector<int32_t> owner(plain.size(), -1);
    for (const auto& [start, count] : lit) {
        for (int32_t i = std::max(0, start); i < std::min(length, start + count); ++i)
            owner[size_t(i)] = start;
    }
    int32_t run = -1;
    for (int32_t i = 0; i < length; ++i) {
        if (owner[size_t(i)] >= 0 || isSpace(plain[size_t(i)])) {
            run = -1;
            continue;
        }
        if (run < 0)
            run = i;
        owner[size_t(i)] = run;
    }
    return owner;
}

std::string styleOf(const KTextStyle& style, EpubFonts& fonts)
{
    const KFont& font = style.getFont();
    int32_t face = font.getFace();
    std::string css = "font-family:" + fonts.familyFor(KTextCodec::toUtf8(font.getName()), face);
    char size[32];
    std::snprintf(size, sizeof size, ";font-size:%.2fpt", font.getSize());
    css += size;
    css += ";color:" + hexColour(style.getColour());
    if (face & KFont::Bold)
        css += ";font-weight:bold";
    if (face & KFont::Italic)
        css += ";font-style:italic";
    if (face & (KFont::Underline | KFont::Strikeout)) {
        css += ";text-decoration:";
        css += (face & KFont::Underline) ? "underline" : "line-through";
    }
    return css;
}

// The characters [from, to) of a line, cut into runs of one style; the
// text's own style (its first character's) stands on the whole block.
std::string styledRuns(const KTextBlock& block, const std::string& plain, int32_t from, int32_t to, EpubFonts& fonts)
{
    const KTextStyle& base = block.getStyleAt(0);
    std::string html;
    int32_t at = from;
    while (at < to) {
        const KTextStyle& style = block.getStyleAt(at);
        int32_t end = at + 1;
        while (end < to && block.getStyleAt(end).hasSameStyle(style))
            ++end;
        std::string characters
            = escapeXml(KTextCodec::toUtf8(std::string_view(plain).substr(size_t(at), size_t(end - at))));
        if (style.hasSameStyle(base))
            html += characters;
        else
            html += "<span style=\"" + styleOf(style, fonts) + "\">" + characters + "</span>";
        at = end;
    }
    return html;
}

// One visual line: its words in spans with ids, the spaces between them
// plain. A word cut by the line's end keeps its id on the first part only.
std::string lineHtml(const KTextBlock& block, const std::string& plain, const std::vector<int32_t>& owner,
                     int32_t index, int32_t from, int32_t to, std::vector<int32_t>& named, EpubFonts& fonts)
{
    std::string html;
    int32_t at = from;
    while (at < to) {
        int32_t word = owner[size_t(at)];
        int32_t end = at + 1;
        while (end < to && owner[size_t(end)] == word)
            ++end;
        std::string runs = styledRuns(block, plain, at, end, fonts);
        if (word >= 0 && std::find(named.begin(), named.end(), word) == named.end()) {
            named.push_back(word);
            html += "<span id=\"" + epubWordId(index, word) + "\">" + runs + "</span>";
        } else {
            html += runs;
        }
        at = end;
    }
    return html;
}

std::string pixels(const char* name, int64_t value) { return std::string(name) + ":" + std::to_string(value) + "px;"; }

} // namespace

std::string EpubFonts::familyFor(const std::string& fontName, int32_t face)
{
    bool bold = (face & KFont::Bold) != 0;
    bool italic = (face & KFont::Italic) != 0;
    KFontFile file = kFontFileFor(fontName, face);
    std::string fallback = "sans-serif";
    if (file.path.empty())
        return fallback;
    std::string family = "tl-" + file.family;
    std::replace_if(
        family.begin(), family.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '-');
    bool known = std::any_of(faces.begin(), faces.end(), [&](const Face& f) { return f.file == file.path; });
    std::string extension = std::filesystem::path(file.path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    if (!known && (extension == ".ttf" || extension == ".otf")) {
        std::string name = std::filesystem::path(file.path).filename().string();
        faces.push_back({ family, file.path, name, bold, italic });
    }
    return "'" + family + "', '" + file.family + "', " + fallback;
}

std::string EpubFonts::css(const std::string& prefix) const
{
    std::string rules;
    for (const Face& face : faces) {
        rules += "@font-face { font-family: '" + face.family + "'; src: url(\"" + prefix + face.name + "\"); ";
        rules += std::string("font-weight: ") + (face.bold ? "bold" : "normal") + "; ";
        rules += std::string("font-style: ") + (face.italic ? "italic" : "normal") + "; }\n";
    }
    return rules;
}

std::string epubWordId(int32_t index, int32_t wordStart)
{
    return "w" + std::to_string(index) + "-" + std::to_string(wordStart);
}

std::string epubMarkCss(const StylusText& text, int32_t index, const std::string& activeClass)
{
    return "#t" + std::to_string(index) + " ." + activeClass + " { background-color: " + hexColour(text.getMarkColour())
           + "; }\n";
}

std::string epubTextHtml(const StylusText& text, int32_t index, const std::vector<std::pair<int32_t, int32_t>>& words,
                         EpubFonts& fonts)
{
    const KTextBlock& block = text.getTextBlock();
    KString plainText = block.getPlainText();
    std::string plain;
    for (int32_t i = 0; i < plainText.getLength(); ++i)
        plain += plainText.charAt(i);
    std::vector<int32_t> owner = wordOwners(plain, words);
    KTextBlockObjectPtr laid = text.makeTextObject();
    KGraphicRectangle bounds = text.getBounds();
    std::string html = "<div class=\"text\" id=\"t" + std::to_string(index) + "\" style=\"" + pixels("left", bounds.x)
                       + pixels("top", bounds.y) + pixels("width", bounds.width) + pixels("height", bounds.height);
    if (!text.isTransparent())
        html += "background-color:" + hexColour(text.getBackColour()) + ";";
    if (block.getLength() > 0)
        html += styleOf(block.getStyleAt(0), fonts);
    html += "\">";
    std::vector<int32_t> starts = laid->getLineStarts();
    std::vector<int32_t> named;
    for (size_t line = 0; line < starts.size(); ++line) {
        int32_t from = starts[line];
        int32_t to = line + 1 < starts.size() ? starts[line + 1] : int32_t(plain.size());
        while (to > from && isBreak(plain[size_t(to - 1)]))
            --to;
        if (to <= from)
            continue;
        std::vector<KWideRectangle> boxes = laid->getCharacterBoxes(from, to - from);
        if (boxes.empty())
            continue;
        const KWideRectangle& box = boxes.front();
        html += "<div class=\"line\" style=\"" + pixels("left", box.x) + pixels("top", box.y)
                + pixels("height", box.height) + pixels("line-height", box.height) + "\">";
        html += lineHtml(block, plain, owner, index, from, to, named, fonts);
        html += "</div>";
    }
    html += "</div>\n";
    return html;
}
