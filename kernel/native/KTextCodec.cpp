#include "kernel/KTextCodec.h"

#include <glib.h>

#include <algorithm>
#include <memory>

namespace {

// The bytes that Windows-1252 leaves undefined; iconv refuses them.
bool isUndefinedWindowsByte(unsigned char c) { return c == 0x81 || c == 0x8D || c == 0x8F || c == 0x90 || c == 0x9D; }

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

struct GFreeDeleter {
    void operator()(gchar* p) const { g_free(p); }
};
using GString8 = std::unique_ptr<gchar, GFreeDeleter>;

void appendWindowsRun(std::string& out, std::string_view run)
{
    if (run.empty())
        return;
    gsize written = 0;
    GString8 converted(g_convert(run.data(), gssize(run.size()), "UTF-8", "WINDOWS-1252", nullptr, &written, nullptr));
    if (converted)
        out.append(converted.get(), written);
    else
        out.append(run.size(), '?');
}

void appendUtf8Run(std::string& out, std::string_view run)
{
    if (run.empty())
        return;
    gsize written = 0;
    GString8 converted(g_convert_with_fallback(run.data(), gssize(run.size()), "WINDOWS-1252", "UTF-8", "?", nullptr,
                                               &written, nullptr));
    if (converted)
        out.append(converted.get(), written);
    else
        out.append(size_t(g_utf8_strlen(run.data(), gssize(run.size()))), '?');
}

// One stretch of UTF-8 without zero bytes, into the Windows set.
void appendFromUtf8(std::string& out, std::string_view utf8)
{
    if (utf8.empty())
        return;
    GString8 valid(g_utf8_make_valid(utf8.data(), gssize(utf8.size())));
    std::string_view text(valid.get());
    size_t runStart = 0;
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        // In valid UTF-8, 0xC2 always leads a two-byte character.
        auto next = static_cast<unsigned char>(text[i + 1]);
        if (static_cast<unsigned char>(text[i]) != 0xC2 || !isUndefinedWindowsByte(next))
            continue;
        appendUtf8Run(out, text.substr(runStart, i - runStart));
        out.push_back(char(next));
        runStart = i + 2;
        ++i;
    }
    appendUtf8Run(out, text.substr(runStart));
}

} // namespace

namespace KTextCodec {

std::string toUtf8(std::string_view windowsText)
{
    if (isAscii(windowsText))
        return std::string(windowsText);
    std::string out;
    out.reserve(windowsText.size() * 2);
    size_t runStart = 0;
    for (size_t i = 0; i < windowsText.size(); ++i) {
        auto c = static_cast<unsigned char>(windowsText[i]);
        if (!isUndefinedWindowsByte(c))
            continue;
        appendWindowsRun(out, windowsText.substr(runStart, i - runStart));
        out.push_back(char(0xC2));
        out.push_back(char(c));
        runStart = i + 1;
    }
    appendWindowsRun(out, windowsText.substr(runStart));
    return out;
}

std::string toUtf8(const KString& text)
{
    if (text.isEmpty())
        return {};
    if (text.getCharSet() == KString::kHostCharSet)
        return toUtf8(std::string_view(text.getText(), size_t(text.getLength())));
    KString host(text);
    host.convertToHostCharSet();
    return toUtf8(std::string_view(host.getText(), size_t(host.getLength())));
}

KString fromUtf8(std::string_view utf8)
{
    KString result;
    if (utf8.empty())
        return result;
    if (isAscii(utf8)) {
        result.setText(utf8.data(), int32_t(utf8.size()));
        return result;
    }
    // Zero bytes stay as they are; GLib would take them for broken text.
    std::string out;
    out.reserve(utf8.size());
    size_t start = 0;
    for (size_t zero = utf8.find('\0'); zero != std::string_view::npos; zero = utf8.find('\0', start)) {
        appendFromUtf8(out, utf8.substr(start, zero - start));
        out.push_back('\0');
        start = zero + 1;
    }
    appendFromUtf8(out, utf8.substr(start));
    result.setText(out.data(), int32_t(out.size()));
    return result;
}

} // namespace KTextCodec
